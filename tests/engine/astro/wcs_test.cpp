#include "engine/astro/wcs.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/astro/astrometric_metadata.h"
#include "tests/engine/astro/keyword_text.h"

using zre::Wcs;

TEST(SyntheticWcs, MapsItsCentreAndCornersWithoutParityFlip)
{
    Wcs wcs;
    ASSERT_TRUE(zre::makeSyntheticWcs(83.6, -5.4, 3.6, 30.0, 1000, 800, wcs));
    EXPECT_NEAR(wcs.resolutionArcsec, 3.6, 1e-12);
    struct Corner
    {
        double x, y, ra, dec;
    };
    for (const Corner& corner :
         {Corner{0, 0, 83.365719349, -5.996338858}, Corner{1000, 0, 84.235909598, -5.496073619},
          Corner{1000, 800, 83.833820059, -4.803571566}, Corner{500, 400, 83.6, -5.4}}) {
        double ra = 0.0, dec = 0.0, x = 0.0, y = 0.0;
        ASSERT_TRUE(wcs.imageToCelestial(corner.x, corner.y, ra, dec));
        EXPECT_NEAR(ra, corner.ra, 1e-9);
        EXPECT_NEAR(dec, corner.dec, 1e-9);
        ASSERT_TRUE(wcs.celestialToImage(ra, dec, x, y));
        EXPECT_NEAR(x, corner.x, 1e-8);
        EXPECT_NEAR(y, corner.y, 1e-8);
    }
}

TEST(SyntheticWcs, ImpossibleValuesLeaveTheOutputAlone)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    struct Values
    {
        double ra, dec, resolution, rotation;
    };
    for (const Values& v : {Values{10, 20, 0, 0}, Values{nan, 20, 1, 0}, Values{10, inf, 1, 0},
                            Values{10, 20, nan, 0}, Values{10, 20, 1, inf}, Values{10, 95, 1, 0},
                            Values{10, 20, 1e-200, 0}, Values{10, 20, 1e300, 0}}) {
        Wcs wcs;
        wcs.resolutionArcsec = 42.0;
        EXPECT_FALSE(zre::makeSyntheticWcs(v.ra, v.dec, v.resolution, v.rotation, 100, 100, wcs));
        EXPECT_FALSE(wcs.valid);
        EXPECT_EQ(wcs.resolutionArcsec, 42.0);
    }
}

TEST(Gnomonic, PointsFromTheHorizonOnFail)
{
    Wcs wcs;
    ASSERT_TRUE(zre::makeSyntheticWcs(83.6, -5.4, 3.6, 0.0, 1000, 800, wcs));
    double x = 7.0;
    double y = 8.0;
    for (const auto& [ra, dec] :
         {std::pair{83.6, 84.6}, std::pair{83.6, 84.6 - 1e-10}, std::pair{263.6, 5.4},
          std::pair{173.6, 0.0}, std::pair{200.0, 30.0}})
        EXPECT_FALSE(wcs.celestialToImage(ra, dec, x, y)) << ra << ' ' << dec;
    EXPECT_EQ(x, 7.0);
    EXPECT_EQ(y, 8.0);
    EXPECT_TRUE(wcs.celestialToImage(83.6, 84.6 - 1e-6, x, y));
}

TEST(CenterCelestial, StaysInRangeAcrossRightAscensionZero)
{
    for (const double ra0 : {-0.001, 0.0, 359.9999, 720.5}) {
        Wcs wcs;
        ASSERT_TRUE(zre::makeSyntheticWcs(ra0, 10.0, 10.0, 45.0, 641, 480, wcs));
        for (double x = -500.0; x <= 1000.0; x += 125.0) {
            double ra = 0.0, dec = 0.0;
            ASSERT_TRUE(wcs.imageToCelestial(x, 240.0, ra, dec));
            EXPECT_GE(ra, 0.0);
            EXPECT_LT(ra, 360.0);
        }
        double ra = 0.0, dec = 0.0;
        ASSERT_TRUE(wcs.centerCelestial(ra, dec));
        EXPECT_NEAR(std::remainder(ra - ra0, 360.0), 0.0, 1e-11);
        EXPECT_NEAR(dec, 10.0, 1e-12);
    }
}

TEST(SearchRadius, IsTheAngleOfTheFarthestCorner)
{
    Wcs wcs;
    EXPECT_EQ(wcs.searchRadiusDeg(), 0.0);
    for (const double arcsec : {1e-6, 1.0, 3600.0}) {
        ASSERT_TRUE(zre::makeSyntheticWcs(83.6, -5.4, arcsec, 20.0, 1000, 600, wcs));
        const double planeRadians = std::hypot(500.0, 300.0) * arcsec / 3600.0 * M_PI / 180.0;
        EXPECT_NEAR(wcs.searchRadiusDeg() / (std::atan(planeRadians) * 180.0 / M_PI), 1.0, 1e-7);
    }
    // A corner beyond the edge of the map has no distance.
    const std::string edge = "CTYPE1='RA---SIN' CTYPE2='DEC--SIN' CRVAL1=0 CRVAL2=0 CRPIX1=500 "
                             "CRPIX2=400 CD1_1=-1 CD2_2=1";
    ASSERT_TRUE(acl::makeWcs(zrtest::solutionOf(edge), wcs));
    EXPECT_EQ(wcs.searchRadiusDeg(), 0.0);
    EXPECT_THROW(wcs.solution->searchRadius(), acl::Error);
}

TEST(Projections, PointsBeyondTheEdgeOfTheMapFail)
{
    for (const auto& [code, x, y] :
         {std::tuple{"ZEA", 115.0, 0.0}, std::tuple{"SIN", 57.4, 0.0}, std::tuple{"CAR", 0.0, 90.1},
          std::tuple{"AIT", 162.1, 0.0}, std::tuple{"AIT", 0.0, 81.1}}) {
        const auto projection = acl::ProjectionFactory::Create(code, {40.0, 0.0});
        acl::Point sky;
        EXPECT_FALSE(projection->planeToCelestial({x, y}, sky)) << code;
        EXPECT_TRUE(projection->planeToCelestial({x * 0.98, y * 0.98}, sky)) << code;
    }
    acl::Point plane;
    EXPECT_FALSE(
        acl::ProjectionFactory::Create("STG", {0.0, 0.0})->celestialToPlane({180.0, 0.0}, plane));
    EXPECT_FALSE(
        acl::ProjectionFactory::Create("SIN", {0.0, 0.0})->celestialToPlane({91.0, 0.0}, plane));
    EXPECT_FALSE(
        acl::ProjectionFactory::Create("MER", {0.0, 0.0})->celestialToPlane({0.0, 90.0}, plane));
    EXPECT_EQ(acl::ProjectionFactory::Create("XXX", {0.0, 0.0}), nullptr);
}

TEST(Wcs, NonFiniteCoordinatesFailInEveryProjection)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (const char* code : {"TAN", "STG", "ZEA", "SIN", "CAR", "MER", "AIT"}) {
        const std::string types = std::string("CTYPE1='RA---") + code + "' CTYPE2='DEC--" + code;
        Wcs wcs;
        ASSERT_TRUE(acl::makeWcs(
            zrtest::solutionOf(types + "' CRVAL1=1 CRVAL2=2 CRPIX1=1 CRPIX2=1 " + zrtest::kCd),
            wcs));
        for (const double bad : {nan, inf, -inf}) {
            double a = 7.0;
            double b = 8.0;
            EXPECT_FALSE(wcs.imageToCelestial(bad, 0.0, a, b)) << code << bad;
            EXPECT_FALSE(wcs.celestialToImage(bad, 0.0, a, b)) << code << bad;
            EXPECT_EQ(a, 7.0);
            EXPECT_EQ(b, 8.0);
        }
    }
}

TEST(WcsBuildSpike, TellsEveryStepAndPasses)
{
    EXPECT_THAT(zre::wcsBuildSpike(),
                testing::AllOf(testing::StartsWith("proj=Gnomonic OK; linear wt OK; astro built "
                                                   "valid=1; resolution=3.6000 as/px; "),
                               testing::HasSubstr("RA/Dec->img=(500.00,400.00); "),
                               testing::EndsWith("PASS")));
}
