#include "engine/image/histogram.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "engine/image/raster.h"
#include "tests/engine/image/naive.h"
#include "tests/support/testkit.h"

using zre::Histogram;
using zre::Image;

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// Noise beyond both ends, every bin edge with its neighbours, and the odd values.
std::vector<float> awkwardSamples()
{
    std::vector<float> samples = zrtest::noise(101, 97, 0, 51).data;
    for (float& v : samples)
        v = v * 1.4f - 0.2f;
    for (int bin = -2; bin <= 1026; ++bin) {
        const float edge = static_cast<float>(bin) / 1024.0f;
        samples.insert(samples.end(),
                       {edge, std::nextafter(edge, -9.0f), std::nextafter(edge, 9.0f)});
    }
    samples.insert(samples.end(), {kNaN, -kNaN, kInfinity, -kInfinity, -0.0f, 1e-45f, 1e30f, -1e30f,
                                   2097152.0f, 2.2e6f, 4.3e9f});
    return samples;
}

Image flat(float value, int count)
{
    Image img(count, 1, 0);
    std::fill(img.data.begin(), img.data.end(), value);
    return img;
}

} // namespace

TEST(Histogram, CountsEverySampleInTheBinOfItsFloor)
{
    const std::vector<float> samples = awkwardSamples();
    // Every length about the width of a vector.
    for (std::size_t skip = 0; skip < 20; ++skip) {
        const std::size_t size = skip < 10 ? samples.size() - 7 * skip : skip - 10;
        Histogram expected;
        for (std::size_t i = 0; i < size; ++i)
            ++expected.count[naive::bin(samples[i])];
        EXPECT_EQ(zre::histogramOf(samples.data(), size).count, expected.count) << size;
    }
}

TEST(Histogram, AboveAFloorCountsOnlyWhatIsStrictlyGreater)
{
    const std::vector<float> samples = awkwardSamples();
    const double between =
        0.5 * (static_cast<double>(0.3f) + static_cast<double>(std::nextafter(0.3f, 1.0f)));
    for (const double floor : {-1.0, 0.0, 0.5, static_cast<double>(0.3f), between, 0.15, 1.0, 1e300,
                               -1e300, static_cast<double>(kInfinity), std::nan("")}) {
        Histogram expected;
        for (const float v : samples)
            if (static_cast<double>(v) > floor)
                ++expected.count[naive::bin(v)];
        EXPECT_EQ(zre::histogramAbove(samples.data(), samples.size(), floor).count, expected.count)
            << "floor " << floor;
    }
    // A floor between two neighbouring floats separates them.
    const std::vector<float> pair{0.3f, std::nextafter(0.3f, 1.0f)};
    const Histogram above = zre::histogramAbove(pair.data(), pair.size(), between);
    EXPECT_EQ(std::accumulate(above.count.begin(), above.count.end(), 0u), 1u);
}

TEST(Percentile, AgreesWithSortingToTheWidthOfABin)
{
    for (const int count : {1, 2, 3, 10, 1000, 4001}) {
        const Image img = zrtest::noise(count, 1, 0, 52);
        std::vector<float> sorted = img.data;
        std::sort(sorted.begin(), sorted.end());
        for (const double fraction : {0.01, 0.25, 0.5, 0.9, 0.995, 1.0}) {
            const std::size_t rank =
                static_cast<std::size_t>(std::floor(fraction * static_cast<double>(count)));
            const double expected =
                rank == 0 ? 0.5 / 1024.0 : (naive::bin(sorted[rank - 1]) + 0.5) / 1024.0;
            EXPECT_EQ(zre::percentileValue(img, fraction), expected) << count << " " << fraction;
        }
        const std::size_t half = static_cast<std::size_t>(count) / 2;
        EXPECT_EQ(zre::medianValue(img),
                  half == 0 ? 0.5 / 1024.0 : (naive::bin(sorted[half - 1]) + 0.5) / 1024.0);
    }
}

TEST(Percentile, EndsOfTheRange)
{
    const double first = 0.5 / 1024.0;
    const double last = 1023.5 / 1024.0;
    const Image white = flat(1.0f, 10);
    EXPECT_EQ(zre::medianValue(white), last);
    EXPECT_EQ(zre::percentileValue(white, 1.0), last);
    EXPECT_EQ(zre::percentileValue(white, 7.0), last);
    EXPECT_EQ(zre::percentileValue(white, static_cast<double>(kInfinity)), last);
    for (const double nothing : {0.0, -3.0, 0.05, static_cast<double>(-kInfinity), std::nan("")})
        EXPECT_EQ(zre::percentileValue(white, nothing), first) << nothing;
    EXPECT_EQ(zre::medianValue(flat(1.0f, 1)), first) << "half of one pixel is reached at once";
    EXPECT_EQ(zre::medianValue(flat(kNaN, 8)), first);
    EXPECT_EQ(zre::medianValue(Image()), 0.5);
    EXPECT_EQ(zre::percentileValue(Image(), 0.3), 0.5);
}

TEST(Histogram, AWalkThatAsksForMoreThanThereIsFindsNothing)
{
    const std::vector<float> samples{0.25f, 0.75f};
    const Histogram histogram = zre::histogramOf(samples.data(), samples.size());
    EXPECT_EQ(histogram.binReaching(0), 0);
    EXPECT_EQ(histogram.binReaching(1), 256);
    EXPECT_EQ(histogram.binReaching(2), 768);
    EXPECT_EQ(histogram.binReaching(3), -1);
}
