#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "engine/astro/astrometric_metadata.h"
#include "tests/engine/astro/keyword_text.h"

using namespace zrtest;

namespace {

const std::string kTopDown = "ROWORDER='TOP-DOWN' ";

double determinant(const acl::AstrometricMetadata& solution)
{
    return solution.transformationOf()->determinant();
}

std::vector<acl::Property> propertiesWith(const std::string& prefix)
{
    return {{prefix + "ProjectionSystem", "Stereographic"},
            {prefix + "ReferenceCelestialCoordinates", std::vector{10.0, 40.0}},
            {prefix + "ReferenceImageCoordinates", std::vector{500.0, 400.0}},
            {prefix + "LinearTransformationMatrix", std::vector{-0.01, 0.0, 0.0, -0.01}}};
}

} // namespace

TEST(RowOrder, WithoutKeywordTheUnmirroredReadingIsTaken)
{
    // The same sky in both conventions: the determinant of the shown picture is positive in both.
    const auto fromBottom = solutionOf(kGnomonic + "CDELT1=-0.01 CDELT2=0.01");
    const auto fromTop = solutionOf(kGnomonic + "CDELT1=-0.01 CDELT2=-0.01");
    EXPECT_GT(determinant(fromBottom), 0.0);
    EXPECT_GT(determinant(fromTop), 0.0);
    double x = 0.0;
    double y = 0.0;
    ASSERT_TRUE(fromBottom.celestialToImage(83.6, -5.4, x, y));
    EXPECT_DOUBLE_EQ(y, kHeight + 0.5 - 410.75);
    ASSERT_TRUE(fromTop.celestialToImage(83.6, -5.4, x, y));
    EXPECT_DOUBLE_EQ(y, 410.75 - 0.5);
    EXPECT_DOUBLE_EQ(x, 480.25 - 0.5);
}

TEST(RowOrder, KeywordWinsOverTheUnmirroredReading)
{
    EXPECT_LT(determinant(solutionOf(kGnomonic + kCd + kTopDown)), 0.0);
    EXPECT_GT(determinant(solutionOf(kGnomonic + kCd + "ROWORDER='BOTTOM-UP'")), 0.0);
    EXPECT_GT(determinant(solutionOf(kGnomonic + kCd + "ROWORDER='SIDEWAYS'")), 0.0);
}

TEST(Properties, WinOverKeywordsUnderBothPrefixes)
{
    for (const char* prefix : {"PCL:AstrometricSolution:", "AstrometricSolution:"}) {
        const auto solution = solutionOf(kGnomonic + kCd, propertiesWith(prefix));
        ASSERT_TRUE(solution.isValid());
        EXPECT_STREQ(solution.projectionOf()->identifier(), "Stereographic");
        double ra = 0.0;
        double dec = 0.0;
        // Corner-origin, y down: x = 510 is 0.1 degrees west, y = 390 north.
        ASSERT_TRUE(solution.imageToCelestial(500.0, 390.0, ra, dec));
        EXPECT_NEAR(ra, 10.0, 1e-12);
        EXPECT_NEAR(dec, 40.1, 1e-7);
    }
}

TEST(Properties, KeywordsStandInForAbsentOnes)
{
    auto properties = propertiesWith("PCL:AstrometricSolution:");
    properties.pop_back();
    const auto solution = solutionOf(kGnomonic + kCd, properties);
    ASSERT_TRUE(solution.isValid());
    EXPECT_EQ(solution.transformationOf()->matrix()[1], -0.002);
    EXPECT_EQ(solution.transformationOf()->reference().x, 500.0);
}

TEST(Properties, ArbitraryReferenceSurvivesBeingWrittenAsKeywords)
{
    auto properties = propertiesWith("AstrometricSolution:");
    for (const double coordinate : {511.7777777777778, 1023.9999999999998, -0.1, 1e-17, 1.0 / 3}) {
        properties[2].value = std::vector{coordinate, -coordinate};
        const auto solution = solutionOf("", properties);
        std::vector<acl::FITSKeyword> written;
        solution.UpdateWCSKeywords(written);
        const auto again = acl::AstrometricMetadata::Build({}, written, kWidth, kHeight);
        EXPECT_EQ(again.transformationOf()->matrix(), solution.transformationOf()->matrix());
        EXPECT_NEAR(solution.transformationOf()->reference().x, coordinate, 1e-12);
    }
}

TEST(Build, NamesTheMissingReference)
{
    const auto messageOf = [](const std::string& text) -> std::string {
        try {
            solutionOf(text);
        } catch (const acl::Error& error) {
            return error.what();
        }
        return "";
    };
    const std::string types = "CTYPE1='RA---TAN' CTYPE2='DEC--TAN' ";
    EXPECT_EQ(messageOf(types + "CRVAL2=1"), "Invalid WCS metadata: Undefined CRVAL1 field");
    EXPECT_EQ(messageOf(types + "CRVAL1=1"), "Invalid WCS metadata: Undefined CRVAL2 field");
}

TEST(Build, IncompleteOrForeignKeywordsGiveNoSolution)
{
    for (const std::string& text :
         {std::string(), std::string("CRVAL1=1 CRVAL2=2"), kGnomonic, kGnomonic + "CDELT1=0.1",
          "CTYPE1='GLON-TAN' CTYPE2='GLAT-TAN' CRVAL1=1 CRVAL2=2 CRPIX1=1 CRPIX2=1 " + kCd,
          "CTYPE1='RA---TAN' CTYPE2='DEC--STG' CRVAL1=1 CRVAL2=2 CRPIX1=1 CRPIX2=1 " + kCd,
          "CTYPE1='RA---XYZ' CTYPE2='DEC--XYZ' CRVAL1=1 CRVAL2=2 CRPIX1=1 CRPIX2=1 " + kCd,
          "CTYPE1='RA---TAN' CTYPE2='DEC--TAN' CRVAL1=1 CRVAL2=2 CRPIX1=1 " + kCd})
        EXPECT_FALSE(solutionOf(text).isValid()) << text;
}

TEST(Build, DamagedNumbersAreRefused)
{
    for (const std::string& text :
         {kGnomonic + "CD1_1=nan CD2_2=0.01", kGnomonic + "CD1_1=1e999 CD2_2=0.01",
          kGnomonic + "CD1_1=0.01 CD2_2=0.01x", kGnomonic + kCd + "LONPOLE=inf",
          kGnomonic + "CD1_1=0.01 CD1_2=0.02 CD2_1=0.02 CD2_2=0.04",
          kGnomonic + "CD1_1=1e-200 CD2_2=1e-200", kGnomonic + "CD1_1=0 CD2_2=0.01",
          std::string("CTYPE1='RA---TAN' CTYPE2='DEC--TAN' CRVAL1=0 CRVAL2=91 CRPIX1=1 CRPIX2=1 ") +
              kCd,
          // No position of the celestial pole fits these.
          std::string("CTYPE1='RA---CAR' CTYPE2='DEC--CAR' CRVAL1=0 CRVAL2=60 CRPIX1=1 CRPIX2=1 "
                      "LONPOLE=180 ") +
              kCd})
        EXPECT_THROW(solutionOf(text), acl::Error) << text;
}

TEST(Build, DamagedPropertiesAreRefused)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const acl::Property& damaged : std::vector<acl::Property>{
             {"PCL:AstrometricSolution:ReferenceNativeCoordinates", std::vector{nan, nan}},
             {"PCL:AstrometricSolution:CelestialPoleNativeCoordinates", std::vector{180.0}},
             {"PCL:AstrometricSolution:ReferenceNativeCoordinates", "text"}}) {
        auto properties = propertiesWith("PCL:AstrometricSolution:");
        properties.push_back(damaged);
        EXPECT_THROW(solutionOf("", properties), acl::Error) << damaged.id;
    }
}

TEST(Build, DistortionTermsLeaveTheLinearSolution)
{
    const auto plain = solutionOf(kGnomonic + kCd);
    const auto sip =
        solutionOf("CTYPE1='RA---TAN-SIP' CTYPE2='DEC--TAN-SIP' A_2_0=1e-5 " + kGnomonic + kCd);
    const auto polynomial = solutionOf(kGnomonic + kCd + "PV1_1=1.0 PV1_2=0.01 PV2_1=1.0");
    for (const auto* distorted : {&sip, &polynomial}) {
        double ra = 0.0, dec = 0.0, ra2 = 0.0, dec2 = 0.0;
        ASSERT_TRUE(plain.imageToCelestial(100.0, 100.0, ra, dec));
        ASSERT_TRUE(distorted->imageToCelestial(100.0, 100.0, ra2, dec2));
        EXPECT_EQ(ra, ra2);
        EXPECT_EQ(dec, dec2);
    }
}

TEST(Build, ReadsOldAndQuotedSpellings)
{
    std::vector<acl::FITSKeyword> keywords = keywordsOf(kGnomonic + "CD1_1=-1.0D-2 CD2_2=+.01");
    keywords.insert(keywords.begin(), {"CRVAL1", " '  10.5  ' ", ""}); // the first of a name counts
    keywords.push_back({"CD1_2", "", "an undefined value"});
    const auto solution = acl::AstrometricMetadata::Build({}, keywords, kWidth, kHeight);
    ASSERT_TRUE(solution.isValid());
    EXPECT_EQ(solution.transformationOf()->matrix()[0], -0.01);
    EXPECT_EQ(solution.projectionOf()->reference().ra, 10.5);
}

TEST(UpdateKeywords, LeavesForeignOnesAndReplacesTheOldSolution)
{
    auto keywords = keywordsOf("OBJECT='M42' CDELT1=5 CROTA2=7 CTYPE1='RA---CAR' PV1_2=30");
    solutionOf(kGnomonic + kCd).UpdateWCSKeywords(keywords);
    EXPECT_EQ(keywords.front().name, "OBJECT");
    const auto again = acl::AstrometricMetadata::Build({}, keywords, kWidth, kHeight);
    ASSERT_TRUE(again.isValid());
    EXPECT_STREQ(again.projectionOf()->code(), "TAN");
    EXPECT_EQ(again.projectionOf()->rotation().poleDec, -5.4);
}
