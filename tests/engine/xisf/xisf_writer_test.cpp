#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/astro/astrometric_metadata.h"
#include "engine/xisf/xisf.h"
#include "tests/engine/xisf/xisf_bytes.h"
#include "tests/support/testkit.h"

using namespace zrtest;
using zre::Image;
using zre::Wcs;

namespace {

Image reload(const Bytes& file, Wcs& wcs)
{
    const auto path = scratchFolder() / "written.xisf";
    writeBytes(path, file);
    Image image;
    std::string error;
    EXPECT_TRUE(zre::loadXisf(path.string(), image, wcs, &error)) << error;
    return image;
}

std::string headerOf(const Bytes& file)
{
    std::uint32_t length = 0;
    std::memcpy(&length, file.data() + 8, 4);
    return {file.begin() + 16, file.begin() + 16 + length};
}

} // namespace

TEST(XisfWriter, ImagesLoadBackBitForBit)
{
    for (const int model : {0, 1}) {
        const Image image = noise(37, 23, model, 3);
        Bytes file(5, 1);
        ASSERT_TRUE(zre::writeXisf(image, file, nullptr));
        Wcs wcs;
        EXPECT_TRUE(imagesNear(reload(file, wcs), image, 0));
        EXPECT_FALSE(wcs.valid);
    }
}

TEST(XisfWriter, HeaderStandsInItsExactForm)
{
    Bytes file;
    ASSERT_TRUE(zre::writeXisf(noise(2, 3, 1, 1), file, nullptr));
    EXPECT_EQ(headerOf(file),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<xisf version=\"1.0\" xmlns=\"http://www.pixinsight.com/xisf\">\n"
              "<Image geometry=\"2:3:3\" sampleFormat=\"Float32\" colorSpace=\"RGB\" "
              "location=\"attachment:238:72\" bounds=\"0:1\">\n"
              "</Image>\n</xisf>");
    EXPECT_EQ(file.size(), 238U + 72U);
    EXPECT_EQ(std::string(file.begin(), file.begin() + 8), "XISF0100");
    EXPECT_EQ((Bytes{file.begin() + 12, file.begin() + 16}), Bytes(4, 0));
}

TEST(XisfWriter, TheNamedPositionIsTheBlocksOwn)
{
    Wcs wcs;
    ASSERT_TRUE(zre::makeSyntheticWcs(83.6, -5.4, 3.6, 30.0, 10, 10, wcs));
    for (const Wcs* solution : {static_cast<const Wcs*>(nullptr), static_cast<const Wcs*>(&wcs)}) {
        const Image image = noise(11, 7, 0, 9);
        Bytes file;
        ASSERT_TRUE(zre::writeXisf(image, file, solution));
        const std::string header = headerOf(file);
        const std::size_t position = header.size() + 16;
        EXPECT_THAT(header,
                    testing::HasSubstr("attachment:" + std::to_string(position) + ":308\""));
        EXPECT_EQ(std::memcmp(file.data() + position, image.data.data(), 308), 0);
    }
}

TEST(XisfWriter, TwoChannelsBecomeOnePlaneAndMoreThanThreeBecomeThree)
{
    for (const auto& [channels, kept] : {std::pair{2, 1}, std::pair{5, 3}}) {
        Image image = noise(4, 3, 0, 2);
        image.channels = channels;
        image.data.resize(static_cast<std::size_t>(12 * channels), 0.25F);
        Bytes file;
        Wcs wcs;
        ASSERT_TRUE(zre::writeXisf(image, file, nullptr));
        EXPECT_THAT(headerOf(file), testing::HasSubstr("\"4:3:" + std::to_string(kept) + "\""));
        image.data.resize(static_cast<std::size_t>(12 * kept));
        EXPECT_EQ(reload(file, wcs).data, image.data);
    }
}

TEST(XisfWriter, SamplesBeyondTheRangeAreWrittenAsTheyAre)
{
    Image image(2, 2, 0);
    image.data = {1.5F, -2.0F, std::numeric_limits<float>::quiet_NaN(), 1e30F};
    Bytes file;
    ASSERT_TRUE(zre::writeXisf(image, file, nullptr));
    EXPECT_EQ(std::memcmp(file.data() + file.size() - 16, image.data.data(), 16), 0);
}

TEST(XisfWriter, AnImageWithoutItsPixelsIsRefused)
{
    Image image = noise(4, 3, 1, 2);
    const auto refused = [](const Image& bad) {
        Bytes out{1, 2, 3};
        return !zre::writeXisf(bad, out, nullptr) && out == Bytes{1, 2, 3};
    };
    image.data.pop_back();
    EXPECT_TRUE(refused(image));
    for (int Image::*field : {&Image::width, &Image::height, &Image::channels}) {
        Image empty = noise(4, 3, 1, 2);
        empty.*field = 0;
        EXPECT_TRUE(refused(empty));
    }
}

TEST(XisfWriter, SolutionsComeBackToTheLastBit)
{
    for (const auto& [ra, dec, scale, turn] :
         {std::tuple{83.6, -5.4, 3.6, 30.0}, std::tuple{0.0, 0.0, 1.0 / 3, 200.0},
          std::tuple{359.99999, 89.9, 100.0, -77.7}, std::tuple{12.3, -90.0, 0.05, 1e-7}}) {
        const Image image = noise(33, 20, 0, 4);
        Wcs wcs;
        ASSERT_TRUE(zre::makeSyntheticWcs(ra, dec, scale, turn, 33, 20, wcs));
        Bytes file;
        ASSERT_TRUE(zre::writeXisf(image, file, &wcs));
        Wcs again;
        reload(file, again);
        ASSERT_TRUE(again.valid);
        EXPECT_EQ(again.resolutionArcsec, wcs.resolutionArcsec);
        for (int i = 0; i < 50; ++i) {
            const double x = 0.7 * i;
            const double y = 20 - 0.4 * i;
            double ra1 = 0, dec1 = 0, ra2 = 1, dec2 = 1, x1 = 0, y1 = 0, x2 = 1, y2 = 1;
            ASSERT_TRUE(wcs.imageToCelestial(x, y, ra1, dec1));
            ASSERT_TRUE(again.imageToCelestial(x, y, ra2, dec2));
            EXPECT_EQ(ra1, ra2);
            EXPECT_EQ(dec1, dec2);
            ASSERT_TRUE(wcs.celestialToImage(ra1, dec1, x1, y1));
            ASSERT_TRUE(again.celestialToImage(ra1, dec1, x2, y2));
            EXPECT_EQ(x1, x2);
            EXPECT_EQ(y1, y2);
        }
    }
}
