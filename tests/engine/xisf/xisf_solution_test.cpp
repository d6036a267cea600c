#include <cmath>

#include <gtest/gtest.h>

#include "engine/astro/astrometric_metadata.h"
#include "engine/xisf/xisf.h"
#include "tests/engine/xisf/xisf_bytes.h"
#include "tests/support/testkit.h"

using namespace zrtest;
using zre::Image;
using zre::Wcs;

namespace {

Wcs solutionOf(const std::string& children)
{
    const auto path = scratchFolder() / "solution.xisf";
    writeBytes(path,
               xisfFile("geometry=\"10:8:1\" sampleFormat=\"UInt8\"", Bytes(80, 3), children));
    Image image;
    Wcs wcs;
    std::string error;
    EXPECT_TRUE(zre::loadXisf(path.string(), image, wcs, &error)) << error;
    return wcs;
}

std::string keyword(const std::string& name, const std::string& value)
{
    return "<FITSKeyword name=\"" + name + "\" value=\"" + value + "\"/>";
}

const std::string kKeywords = keyword("CTYPE1", "'RA---TAN'") + keyword("CTYPE2", "'DEC--TAN'") +
                              keyword("CRVAL1", "83.6") + keyword("CRVAL2", "-5.4") +
                              keyword("CRPIX1", "5.5") + keyword("CRPIX2", "4.5") +
                              keyword("CDELT1", "-0.01") + keyword("CDELT2", "0.01");

/// Degrees between two sky positions that are close.
double offset(double ra, double dec, double ra2, double dec2)
{
    return std::hypot((ra - ra2) * std::cos(dec * M_PI / 180.0), dec - dec2);
}

} // namespace

TEST(XisfSolution, ABadAstrometricBlockStillLoadsThePixels)
{
    EXPECT_TRUE(solutionOf(kKeywords).valid);
    for (const std::string& children :
         {std::string(), kKeywords + "<unclosed>", kKeywords + keyword("LONPOLE", "x"),
          keyword("CTYPE1", "'RA---TAN'") + keyword("CTYPE2", "'DEC--TAN'"),
          kKeywords + "<Property id=\"PCL:AstrometricSolution:LinearTransformationMatrix\" "
                      "type=\"F64Matrix\" rows=\"2\" columns=\"2\" "
                      "location=\"attachment:999999:32\"/>"})
        EXPECT_FALSE(solutionOf(children).valid) << children;
}

TEST(XisfSolution, ASplineInTheFileChangesNothing)
{
    const Wcs plain = solutionOf(kKeywords);
    const Wcs splined = solutionOf(
        kKeywords +
        "<Property id=\"PCL:AstrometricSolution:SplineWorldTransformation:Version\" "
        "type=\"String\">1.2</Property><Property id=\"Transformation_ImageToProjection\" "
        "type=\"UI8Vector\" length=\"9\" location=\"attachment:7:9\"/>");
    ASSERT_TRUE(splined.valid);
    EXPECT_EQ(splined.solution->transformationOf()->matrix(),
              plain.solution->transformationOf()->matrix());
}

TEST(XisfSolution, PropertiesInAnAttachmentAreRead)
{
    // The reference point stands in the first bytes of the pixel block: (83.6, -5.4).
    const auto path = scratchFolder() / "attached.xisf";
    Bytes block = bytesOf(std::vector{10.0, 40.0});
    block.resize(80);
    writeBytes(path, xisfFile("geometry=\"10:8:1\" sampleFormat=\"UInt8\"", block,
                              kKeywords + "<Property id=\"PCL:AstrometricSolution:"
                                          "ReferenceCelestialCoordinates\" type=\"F64Vector\" "
                                          "length=\"2\" location=\"attachment:2048:16\"/>"));
    Image image;
    Wcs wcs;
    ASSERT_TRUE(zre::loadXisf(path.string(), image, wcs, nullptr));
    double ra = 0.0;
    double dec = 0.0;
    ASSERT_TRUE(wcs.centerCelestial(ra, dec));
    EXPECT_NEAR(ra, 10.0, 1e-12);
    EXPECT_NEAR(dec, 40.0, 1e-12);
}

TEST(XisfInfo, TellsTheGeometryWithoutItsPixels)
{
    const auto path = scratchFolder() / "info.xisf";
    writeBytes(path, xisfFile("geometry=\"1000:8:3\" sampleFormat=\"UInt16\" byteOrder=\"big\" "
                              "compression=\"lz4+sh:48000:2\"",
                              {}));
    zre::XisfInfo info;
    ASSERT_TRUE(zre::readXisfInfo(path.string(), info, nullptr));
    EXPECT_EQ(info.width, 1000);
    EXPECT_EQ(info.channels, 3);
    EXPECT_EQ(info.sampleFormat, "UInt16");
    EXPECT_EQ(info.compression, "lz4+sh:48000:2");
    EXPECT_TRUE(info.bigEndian);
}

struct SampleFile
{
    const char* name;
    int width, height, channels;
    double weightedSum; ///< of sample i times i modulo 1009, from a decoding by other software
    double ra, dec, arcsec;
};

class XisfSamples : public testing::TestWithParam<SampleFile>
{
};

TEST_P(XisfSamples, PixelsAndSolutionAgreeWithOtherSoftware)
{
    const SampleFile& expected = GetParam();
    const auto path = sample(expected.name);
    if (!path)
        GTEST_SKIP() << "no sample " << expected.name;
    Image image;
    Wcs wcs;
    std::string error;
    ASSERT_TRUE(zre::loadXisf(path->string(), image, wcs, &error)) << error;
    EXPECT_EQ(image.width, expected.width);
    EXPECT_EQ(image.height, expected.height);
    EXPECT_EQ(image.channels, expected.channels);
    double sum = 0.0;
    for (std::size_t i = 0; i < image.data.size(); ++i)
        sum += static_cast<double>(i % 1009) * static_cast<double>(image.data[i]);
    EXPECT_NEAR(sum / expected.weightedSum, 1.0, 1e-7);
    double ra = 0.0;
    double dec = 0.0;
    ASSERT_TRUE(wcs.centerCelestial(ra, dec));
    EXPECT_LT(offset(ra, dec, expected.ra, expected.dec) * 3600.0, expected.arcsec);
    EXPECT_NEAR(wcs.resolutionArcsec, expected.arcsec, 1e-4);
    EXPECT_GT(wcs.solution->transformationOf()->determinant(), 0.0);
}

INSTANTIATE_TEST_SUITE_P(Photographs, XisfSamples,
                         testing::Values(SampleFile{"rcw32_dss2.xisf", 1024, 1024, 3,
                                                    196617026.79215688, 131.18468, -41.31613,
                                                    14.2255},
                                         SampleFile{"w5_wise.xisf", 1000, 1000, 1, 83447255.3322652,
                                                    43.46, 60.38, 10.8}));
