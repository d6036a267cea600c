#include "engine/image/histogram.h"

#include <algorithm>
#include <cmath>

#include "engine/image/multiversion.h"
#include "engine/image/raster.h"

namespace zre {

/// Where samples that do not count go, behind the last bin.
static constexpr std::int32_t kIgnored = Histogram::kBins;

/// Samples whose bins are found together, before they are counted.
static constexpr std::size_t kBatch = 1024;

/// Neighbouring samples are often of one bin, and a count must not wait for the one before it; so
/// they go to tables of their own.
static constexpr std::size_t kTables = 4;

ZR_MULTIVERSION static void findBins(const float* __restrict samples, std::size_t count,
                                     std::int32_t* __restrict bins)
{
    const float last = static_cast<float>(Histogram::kBins - 1);
    for (std::size_t i = 0; i < count; ++i) {
        const float scaled = samples[i] * static_cast<float>(Histogram::kBins);
        // Written so that a NaN fails the first comparison.
        const float low = scaled > 0.0f ? scaled : 0.0f;
        bins[i] = static_cast<std::int32_t>(low < last ? low : last);
    }
}

ZR_MULTIVERSION static void ignoreUpTo(double floor, const float* __restrict samples,
                                       std::size_t count, std::int32_t* __restrict bins)
{
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t bin = bins[i];
        bins[i] = static_cast<double>(samples[i]) > floor ? bin : kIgnored;
    }
}

/// Counts all samples, or with a `floor` those above it.
static Histogram countBins(const float* samples, std::size_t size, const double* floor)
{
    std::array<std::array<std::uint32_t, Histogram::kBins + 1>, kTables> tables{};
    std::array<std::int32_t, kBatch> bins;
    for (std::size_t first = 0; first < size; first += kBatch) {
        const std::size_t count = std::min(kBatch, size - first);
        findBins(samples + first, count, bins.data());
        if (floor)
            ignoreUpTo(*floor, samples + first, count, bins.data());
        std::size_t i = 0;
        for (; i + kTables <= count; i += kTables)
            for (std::size_t table = 0; table < kTables; ++table)
                ++tables[table][static_cast<std::size_t>(bins[i + table])];
        for (; i < count; ++i)
            ++tables[0][static_cast<std::size_t>(bins[i])];
    }
    Histogram histogram;
    for (const auto& table : tables)
        for (std::size_t bin = 0; bin < histogram.count.size(); ++bin)
            histogram.count[bin] += table[bin];
    return histogram;
}

Histogram histogramOf(const float* samples, std::size_t size)
{
    return countBins(samples, size, nullptr);
}

Histogram histogramAbove(const float* samples, std::size_t size, double floor)
{
    return countBins(samples, size, &floor);
}

int Histogram::binReaching(std::uint64_t target) const
{
    std::uint64_t running = 0;
    for (int bin = 0; bin < kBins; ++bin) {
        running += count[static_cast<std::size_t>(bin)];
        if (running >= target)
            return bin;
    }
    return -1;
}

double medianValue(const Image& oneChannel)
{
    if (!oneChannel.usable())
        return 0.5;
    const std::size_t count = oneChannel.pixelCount();
    const int bin = histogramOf(oneChannel.plane(0), count).binReaching(count / 2);
    return bin < 0 ? 0.5 : Histogram::centre(bin);
}

double percentileValue(const Image& oneChannel, double fraction)
{
    if (!oneChannel.usable())
        return 0.5;
    const std::size_t count = oneChannel.pixelCount();
    const double share = fraction > 0.0 ? (fraction < 1.0 ? fraction : 1.0) : 0.0;
    const std::uint64_t target =
        static_cast<std::uint64_t>(std::floor(share * static_cast<double>(count)));
    const int bin = histogramOf(oneChannel.plane(0), count).binReaching(target);
    return bin < 0 ? 1.0 : Histogram::centre(bin);
}

} // namespace zre
