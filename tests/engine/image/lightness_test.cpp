#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "engine/image/raster.h"
#include "tests/engine/image/naive.h"
#include "tests/engine/image/plain_lightness.h"
#include "tests/support/testkit.h"

using zre::Image;

namespace {

constexpr double kTolerance = 2e-7;

/// Every 997th float from 0 to beyond 1, and all floats about the two seams of the rule.
std::vector<float> greySweep()
{
    std::vector<float> values;
    const std::uint32_t end = std::bit_cast<std::uint32_t>(1.3f);
    for (std::uint32_t bits = 0; bits < end; bits += 997)
        values.push_back(std::bit_cast<float>(bits));
    for (const float seam : {0.04045f, 0.0992f, 1.0f}) {
        const std::uint32_t middle = std::bit_cast<std::uint32_t>(seam);
        for (std::uint32_t bits = middle - 3000; bits < middle + 3000; ++bits)
            values.push_back(std::bit_cast<float>(bits));
    }
    return values;
}

} // namespace

TEST(Lightness, OfGreyStaysWithinItsToleranceOverTheWholeRange)
{
    const std::vector<float> values = greySweep();
    Image src(static_cast<int>(values.size()), 1, 0);
    src.data = values;
    Image dst;
    zre::getLightness(src, dst);
    ASSERT_EQ(dst.data.size(), values.size());
    double worst = 0.0;
    float where = 0.0f;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double error = std::fabs(static_cast<double>(dst.data[i]) -
                                       naive::lightness(naive::linearised(values[i])));
        if (!(error <= worst)) {
            worst = error;
            where = values[i];
        }
    }
    EXPECT_LE(worst, kTolerance) << "at " << where;
}

TEST(Lightness, OfColoursStaysWithinItsTolerance)
{
    struct Case
    {
        float scale, offset;
    };
    // Pictures in range, dark ones, ones with negative noise, and ones far out on both sides.
    for (const Case& c : {Case{1.0f, 0.0f}, Case{0.08f, 0.0f}, Case{0.1f, -0.03f},
                          Case{1.5f, -0.05f}, Case{4.0f, -1.5f}, Case{200.0f, -120.0f}}) {
        Image src = zrtest::noise(701, 300, 1, 31);
        for (float& v : src.data)
            v = v * c.scale + c.offset;
        Image dst;
        zre::getLightness(src, dst);
        ASSERT_EQ(dst.channels, 1);
        ASSERT_EQ(dst.colorModel, 0);
        double worst = 0.0;
        for (std::size_t i = 0; i < src.pixelCount(); ++i) {
            const double expected = naive::lightness(
                naive::luminance(src.plane(0)[i], src.plane(1)[i], src.plane(2)[i]));
            const double error = std::fabs(static_cast<double>(dst.data[i]) - expected);
            worst = error <= worst ? worst : error;
        }
        EXPECT_LE(worst, kTolerance) << "scale " << c.scale << " offset " << c.offset;
    }
}

TEST(Lightness, OfChannelsThatCancelStaysWithinItsTolerance)
{
    // Blue is so far below 0 that the luminance of a bright red and green ends near black, where
    // an error of theirs would show most.
    Image src = zrtest::noise(997, 101, 1, 34);
    for (std::size_t i = 0; i < src.pixelCount(); ++i) {
        const float red = src.plane(0)[i] = 0.3f + 2.0f * src.plane(0)[i];
        const float green = src.plane(1)[i] = 0.3f + 2.0f * src.plane(1)[i];
        const double wanted = 0.03 * static_cast<double>(src.plane(2)[i]);
        src.plane(2)[i] =
            static_cast<float>((wanted - naive::luminance(red, green, 0.0f)) / 0.0722 * 12.92);
    }
    Image dst;
    zre::getLightness(src, dst);
    for (std::size_t i = 0; i < src.pixelCount(); ++i) {
        const double expected =
            naive::lightness(naive::luminance(src.plane(0)[i], src.plane(1)[i], src.plane(2)[i]));
        ASSERT_NEAR(static_cast<double>(dst.data[i]), expected, kTolerance) << "at " << i;
    }
}

TEST(Lightness, OfOddSamplesFollowsTheDefinition)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float largest = std::numeric_limits<float>::max();
    const std::vector<float> values{0.0f, -0.0f,    1.0f,      -1.0f,   0.5f,     3.0f, 1e-30f,
                                    1e9f, infinity, -infinity, largest, -largest, nan,  1e-45f};
    const int n = static_cast<int>(values.size());
    Image src(n * n, n, 1);
    std::size_t i = 0;
    for (const float r : values)
        for (const float g : values)
            for (const float b : values) {
                src.plane(0)[i] = r;
                src.plane(1)[i] = g;
                src.plane(2)[i++] = b;
            }
    Image dst;
    zre::getLightness(src, dst);
    for (i = 0; i < src.pixelCount(); ++i) {
        const float r = src.plane(0)[i];
        const float g = src.plane(1)[i];
        const float b = src.plane(2)[i];
        const double expected = naive::lightness(naive::luminance(r, g, b));
        if (std::isnan(expected))
            EXPECT_TRUE(std::isnan(dst.data[i])) << r << " " << g << " " << b;
        else
            EXPECT_NEAR(static_cast<double>(dst.data[i]), expected, kTolerance)
                << r << " " << g << " " << b;
    }
}

TEST(Lightness, HasTheSameBitsOnEveryProcessor)
{
    Image src(static_cast<int>(greySweep().size()), 1, 0);
    src.data = greySweep();
    Image dst;
    zre::getLightness(src, dst);
    EXPECT_EQ(dst.data, plainLightness(src.data, src.width, 1));

    Image colours = zrtest::noise(1023, 77, 1, 33);
    for (float& v : colours.data)
        v = 1.4f * v - 0.07f;
    zre::getLightness(colours, dst);
    EXPECT_EQ(dst.data, plainLightness(colours.data, colours.width, colours.height));
}

TEST(Lightness, OfAPixelDoesNotDependOnItsNeighbours)
{
    // The same pixel alone, at every place of a vector, and beside one that needs the slow way.
    const Image colours = zrtest::noise(41, 1, 1, 32);
    Image whole;
    zre::getLightness(colours, whole);
    for (int x = 0; x < colours.width; ++x) {
        Image single(1, 1, 1);
        for (int c = 0; c < 3; ++c)
            single.data[static_cast<std::size_t>(c)] = colours.plane(c)[x];
        Image alone;
        zre::getLightness(single, alone);
        EXPECT_EQ(alone.data[0], whole.data[static_cast<std::size_t>(x)]) << "at " << x;
    }
    Image ends(2, 1, 1);
    ends.data = {0.0f, 1.0f, 0.0f, 1.0f, 0.0f, 1.0f};
    zre::getLightness(ends, ends);
    EXPECT_EQ(ends.data, (std::vector<float>{0.0f, 1.0f})) << "black is 0 and white is 1";
}
