#include "tools/render/solution_report.h"

#include <cmath>
#include <numbers>

#include "engine/astro/astrometric_metadata.h"
#include "engine/qt/image_file.h"
#include "tests/support/testkit.h"

namespace zrrender {
namespace {

/// A gnomonic solution with a given position angle of up, built from keywords as files have them.
zre::Wcs solutionAt(double ra, double dec, double upDeg, bool mirrored, double scaleArcsec,
                    int width, int height)
{
    const double s = scaleArcsec / 3600.0;
    const double up = upDeg * std::numbers::pi / 180.0;
    const double parity = mirrored ? -1.0 : 1.0;
    const auto text = [](double value) { return QString::number(value, 'g', 17).toStdString(); };
    const std::vector<acl::FITSKeyword> keywords{
        {"CTYPE1", "'RA---TAN'", ""},
        {"CTYPE2", "'DEC--TAN'", ""},
        {"CRVAL1", text(ra), ""},
        {"CRVAL2", text(dec), ""},
        {"CRPIX1", text(0.5 * width + 0.5), ""},
        {"CRPIX2", text(0.5 * height + 0.5), ""},
        {"CD1_1", text(-parity * s * std::cos(up)), ""},
        {"CD2_1", text(parity * s * std::sin(up)), ""},
        {"CD1_2", text(-s * std::sin(up)), ""},
        {"CD2_2", text(-s * std::cos(up)), ""},
        {"ROWORDER", "'TOP-DOWN'", ""},
    };
    zre::Wcs wcs;
    EXPECT_TRUE(acl::makeWcs(acl::AstrometricMetadata::Build({}, keywords, width, height), wcs));
    return wcs;
}

TEST(SolutionReport, TellsRotationAndParityOfEveryOrientation)
{
    for (const double dec : {-89.5, -41.0, 0.0, 60.0, 89.5})
        for (const double up : {-179.0, -90.0, -1.07, 0.0, 30.0, 145.0})
            for (const bool mirrored : {false, true}) {
                const auto report =
                    describeSolution(solutionAt(0.01, dec, up, mirrored, 2.0, 600, 400), 600, 400);
                ASSERT_TRUE(report);
                EXPECT_NEAR(report->upDeg, up, 1e-6) << dec << mirrored;
                EXPECT_EQ(report->mirrored, mirrored) << dec << up;
                EXPECT_NEAR(report->centre.decDeg, dec, 1e-9);
                EXPECT_NEAR(report->scaleArcsec, 2.0, 1e-9);
            }
}

TEST(SolutionReport, FieldIsTheGnomonicAngleNotThePlanesLength)
{
    const auto report =
        describeSolution(solutionAt(80.0, 20.0, 0.0, false, 360.0, 300, 200), 300, 200);
    ASSERT_TRUE(report && report->widthDeg && report->heightDeg);
    const double degree = 180.0 / std::numbers::pi; // 15 and 10 degrees to each side on the plane
    EXPECT_NEAR(*report->widthDeg, 2.0 * degree * std::atan(15.0 / degree), 1e-9);
    EXPECT_NEAR(*report->heightDeg, 2.0 * degree * std::atan(10.0 / degree), 1e-9);
}

TEST(SolutionReport, IsAbsentWithoutASolution)
{
    EXPECT_FALSE(describeSolution({}, 100, 100));
}

TEST(SolutionReport, AgreesWithTheKnownPlaceOfARealPhotograph)
{
    const auto path = zrtest::sample("rcw32_dss2.xisf");
    if (!path)
        GTEST_SKIP() << "rcw32_dss2.xisf is not here";
    zre::Wcs wcs;
    zre::Image image;
    QImage preview;
    ASSERT_TRUE(decodeImageFile(QString::fromStdString(path->string()), preview, image, wcs,
                                nullptr, nullptr));
    const auto report = describeSolution(wcs, image.width, image.height);
    ASSERT_TRUE(report);
    EXPECT_NEAR(report->centre.raDeg, 131.18468, 2e-5);
    EXPECT_NEAR(report->centre.decDeg, -41.31613, 2e-5);
    EXPECT_NEAR(report->scaleArcsec, 14.2255, 1e-3);
    EXPECT_NEAR(report->upDeg, -1.07, 0.01);
    EXPECT_FALSE(report->mirrored);
}

} // namespace
} // namespace zrrender
