#include <cmath>

#include <gtest/gtest.h>

#include "engine/astro/astrometric_metadata.h"
#include "tests/engine/astro/keyword_text.h"
#include "tests/engine/astro/wcs_vectors.h"

using namespace zrtest;

namespace {

constexpr double kRadians = 0.017453292519943295;
constexpr double kToleranceDeg = 1e-9;

/// Offset on the sky in degrees, for points that are nearly the same.
double skyError(double ra, double dec, const WcsVector& expected)
{
    const double deltaRa = std::remainder(ra - expected.ra, 360.0);
    return std::hypot(deltaRa * std::cos(expected.dec * kRadians), dec - expected.dec);
}

enum class Rows
{
    TopDown,
    BottomUp
};

double rowOf(const WcsVector& point, Rows rows)
{
    return rows == Rows::TopDown ? point.p2 - 0.5 : kHeight + 0.5 - point.p2;
}

const char* rowOrderKeyword(Rows rows)
{
    return rows == Rows::TopDown ? " ROWORDER='TOP-DOWN'" : " ROWORDER='BOTTOM-UP'";
}

} // namespace

class WcsVectors : public testing::TestWithParam<Rows>
{
};

TEST_P(WcsVectors, PixelsReachTheSkyPositionsOfAnIndependentProgram)
{
    for (const WcsVectorCase& entry : kWcsVectors) {
        const auto solution = solutionOf(std::string(entry.keywords) + rowOrderKeyword(GetParam()));
        ASSERT_TRUE(solution.isValid()) << entry.keywords;
        for (const WcsVector& point : entry.points) {
            double ra = 0.0;
            double dec = 0.0;
            ASSERT_TRUE(
                solution.imageToCelestial(point.p1 - 0.5, rowOf(point, GetParam()), ra, dec))
                << entry.keywords;
            EXPECT_LT(skyError(ra, dec, point), kToleranceDeg) << entry.keywords << ' ' << point.p1;
        }
    }
}

TEST_P(WcsVectors, SkyPositionsReachThePixelsOfAnIndependentProgram)
{
    for (const WcsVectorCase& entry : kWcsVectors) {
        const auto solution = solutionOf(std::string(entry.keywords) + rowOrderKeyword(GetParam()));
        for (const WcsVector& point : entry.points) {
            double x = 0.0;
            double y = 0.0;
            ASSERT_TRUE(solution.celestialToImage(point.ra, point.dec, x, y)) << entry.keywords;
            const double pixels = std::hypot(x - (point.p1 - 0.5), y - rowOf(point, GetParam()));
            EXPECT_LT(pixels * solution.resolution(), kToleranceDeg) << entry.keywords;
        }
    }
}

TEST_P(WcsVectors, WrittenKeywordsReadBackToTheSameBits)
{
    for (const WcsVectorCase& entry : kWcsVectors) {
        const auto solution = solutionOf(std::string(entry.keywords) + rowOrderKeyword(GetParam()));
        std::vector<acl::FITSKeyword> written = keywordsOf(entry.keywords);
        solution.UpdateWCSKeywords(written);
        const auto again = acl::AstrometricMetadata::Build({}, written, kWidth, kHeight);
        ASSERT_TRUE(again.isValid()) << entry.keywords;
        EXPECT_EQ(solution.transformationOf()->matrix(), again.transformationOf()->matrix())
            << entry.keywords;
        for (const WcsVector& point : entry.points) {
            double ra = 0.0, dec = 0.0, ra2 = 0.0, dec2 = 0.0, x = 0.0, y = 0.0, x2 = 0.0, y2 = 0.0;
            solution.imageToCelestial(point.p1, point.p2, ra, dec);
            again.imageToCelestial(point.p1, point.p2, ra2, dec2);
            solution.celestialToImage(point.ra, point.dec, x, y);
            again.celestialToImage(point.ra, point.dec, x2, y2);
            EXPECT_EQ(ra, ra2) << entry.keywords;
            EXPECT_EQ(dec, dec2) << entry.keywords;
            EXPECT_EQ(x, x2) << entry.keywords;
            EXPECT_EQ(y, y2) << entry.keywords;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(RowOrders, WcsVectors, testing::Values(Rows::TopDown, Rows::BottomUp));
