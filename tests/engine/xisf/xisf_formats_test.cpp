#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "engine/xisf/xisf.h"
#include "tests/engine/xisf/xisf_bytes.h"
#include "tests/support/testkit.h"

using namespace zrtest;
using zre::Image;
using zre::Wcs;

namespace {

struct Format
{
    const char* name;
    std::size_t size;
};

/// Sizes on both sides of the portions in which a reader works.
struct Shape
{
    int width, height, channels;
};

Bytes randomSamples(const Format& format, const Shape& shape)
{
    std::mt19937 random(5);
    const auto count = static_cast<std::size_t>(shape.width) *
                       static_cast<std::size_t>(shape.height) *
                       static_cast<std::size_t>(shape.channels);
    if (std::string(format.name) == "Float32") {
        std::vector<float> samples(count);
        for (float& sample : samples)
            sample = static_cast<float>(random()) * 3e-10F - 0.1F;
        return bytesOf(samples);
    }
    Bytes bytes(count * format.size);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random() % 7 == 0 ? random() : 255);
    return bytes;
}

std::string attributes(const Format& format, const Shape& shape, const std::string& more)
{
    return "geometry=\"" + std::to_string(shape.width) + ":" + std::to_string(shape.height) + ":" +
           std::to_string(shape.channels) + "\" sampleFormat=\"" + format.name + "\"" + more;
}

Image load(const Bytes& file)
{
    const auto path = scratchFolder() / "formats.xisf";
    writeBytes(path, file);
    Image image;
    Wcs wcs;
    std::string error;
    EXPECT_TRUE(zre::loadXisf(path.string(), image, wcs, &error)) << error;
    EXPECT_FALSE(wcs.valid);
    return image;
}

/// The sample at `index` of little-endian bytes as the fraction of the format's range.
double fraction(const Bytes& bytes, const Format& format, std::size_t index)
{
    if (std::string(format.name) == "Float32") {
        float value = 0.0F;
        std::memcpy(&value, bytes.data() + 4 * index, 4);
        return std::min(1.0, std::max(0.0, static_cast<double>(value)));
    }
    double value = 0.0;
    for (std::size_t j = format.size; j-- > 0;)
        value = value * 256.0 + bytes[index * format.size + j];
    return value / (std::pow(256.0, static_cast<double>(format.size)) - 1.0);
}

} // namespace

class XisfFormats : public testing::TestWithParam<std::tuple<Format, Shape>>
{
};

TEST_P(XisfFormats, EveryByteOrderCodecAndShuffleGivesTheSamePixels)
{
    const auto& [format, shape] = GetParam();
    const Bytes samples = randomSamples(format, shape);
    const Image expected = load(xisfFile(attributes(format, shape, ""), samples));
    ASSERT_EQ(expected.width, shape.width);
    ASSERT_EQ(expected.height, shape.height);
    ASSERT_EQ(expected.channels, shape.channels < 3 ? 1 : 3);
    ASSERT_EQ(expected.colorModel, shape.channels < 3 ? 0 : 1);
    ASSERT_EQ(expected.data.size(),
              expected.pixelCount() * static_cast<std::size_t>(expected.channels));
    for (std::size_t i = 0; i < expected.data.size(); ++i)
        ASSERT_NEAR(expected.data[i], fraction(samples, format, i), 1.2e-7) << i;

    for (const bool big : {false, true}) {
        const Bytes ordered = big ? byteSwapped(samples, format.size) : samples;
        const std::string order = big ? " byteOrder=\"big\"" : " byteOrder=\"little\"";
        EXPECT_TRUE(
            imagesNear(load(xisfFile(attributes(format, shape, order), ordered)), expected, 0));
        for (const std::string codec : {"zlib", "lz4", "lz4hc", "zstd"})
            // 0: not shuffled; 5 leaves bytes over and 1 << 30 leaves nothing but bytes over.
            for (const std::size_t item :
                 {std::size_t{0}, format.size, std::size_t{5}, std::size_t{1} << 30}) {
                const Bytes stored = item > 0 ? shuffled(ordered, item) : ordered;
                std::string how = " compression=\"";
                how.append(codec).append(item > 0 ? "+sh:" : ":");
                how.append(std::to_string(stored.size()));
                if (item != 0 && item != format.size)
                    how.append(":").append(std::to_string(item));
                const Image image =
                    load(xisfFile(attributes(format, shape, order + how.append("\"")),
                                  compressed(codec, stored)));
                EXPECT_TRUE(imagesNear(image, expected, 0)) << how << order;
            }
    }
}

INSTANTIATE_TEST_SUITE_P(All, XisfFormats,
                         testing::Combine(testing::Values(Format{"UInt8", 1}, Format{"UInt16", 2},
                                                          Format{"UInt32", 4},
                                                          Format{"Float32", 4}),
                                          testing::Values(Shape{7, 5, 1}, Shape{3, 2, 2},
                                                          Shape{211, 160, 3}, Shape{9, 4, 4})));

TEST(XisfFloat, SamplesAreLimitedAndNaNBecomesOne)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const std::vector<float> in{1.5F, nan, -nan, -0.25F, inf, -inf, 1e-40F, 0.3F, 1.0F, 0.0F, 2.0F};
    const std::vector<float> expected{1, 1, 1, 0, 1, 0, 1e-40F, 0.3F, 1, 0, 1};
    const Image image = load(xisfFile("geometry=\"11:1:1\" sampleFormat=\"Float32\"", bytesOf(in)));
    EXPECT_EQ(image.data, expected);
}

TEST(XisfIntegers, EndsOfTheRangeAreExactlyZeroAndOne)
{
    for (const Format& format : {Format{"UInt8", 1}, Format{"UInt16", 2}, Format{"UInt32", 4}}) {
        Bytes block(2 * format.size, 0);
        std::fill(block.begin() + static_cast<std::ptrdiff_t>(format.size), block.end(), 255);
        EXPECT_EQ(load(xisfFile(attributes(format, {2, 1, 1}, ""), block)).data,
                  (std::vector{0.0F, 1.0F}))
            << format.name;
    }
}

TEST(XisfZstd, ConcatenatedAndSkippableFramesAreJoined)
{
    const Bytes samples = randomSamples({"UInt8", 1}, {90, 10, 1});
    Bytes block;
    for (const auto& [from, to] : {std::pair{0, 100}, std::pair{100, 101}, std::pair{101, 900}}) {
        const Bytes frame = compressed("zstd", {samples.begin() + from, samples.begin() + to});
        block.insert(block.end(), frame.begin(), frame.end());
        const Bytes skippable{0x50, 0x2A, 0x4D, 0x18, 3, 0, 0, 0, 1, 2, 3};
        block.insert(block.end(), skippable.begin(), skippable.end());
    }
    const std::string geometry = "geometry=\"90:10:1\" sampleFormat=\"UInt8\"";
    EXPECT_TRUE(imagesNear(load(xisfFile(geometry + " compression=\"zstd:900\"", block)),
                           load(xisfFile(geometry, samples)), 0));
}

TEST(XisfBlock, MoreBytesThanTheGeometryAsksAreAllowed)
{
    const Bytes samples = randomSamples({"UInt16", 2}, {5, 4, 2});
    const std::string smaller = "geometry=\"5:4:1:77\" sampleFormat=\"UInt16\"";
    const Image expected = load(xisfFile("geometry=\"5:4:2\" sampleFormat=\"UInt16\"", samples));
    EXPECT_TRUE(imagesNear(load(xisfFile(smaller, samples)), expected, 0));
    EXPECT_TRUE(imagesNear(load(xisfFile(smaller + " compression=\"lz4+sh:80:2\"",
                                         compressed("lz4", shuffled(samples, 2)))),
                           expected, 0));
}
