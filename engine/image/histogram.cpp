#include "engine/image/histogram.h"

#include <cmath>

#include "engine/image/raster.h"

namespace zre {

static int binOf(float value)
{
    const float scaled = value * static_cast<float>(Histogram::kBins);
    // Written so that a NaN fails the first comparison.
    const float low = scaled > 0.0f ? scaled : 0.0f;
    const float last = static_cast<float>(Histogram::kBins - 1);
    return static_cast<int>(low < last ? low : last);
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

Histogram histogramOf(const float* samples, std::size_t size)
{
    Histogram histogram;
    for (std::size_t i = 0; i < size; ++i)
        ++histogram.count[static_cast<std::size_t>(binOf(samples[i]))];
    return histogram;
}

Histogram histogramAbove(const float* samples, std::size_t size, double floor)
{
    Histogram histogram;
    for (std::size_t i = 0; i < size; ++i)
        if (static_cast<double>(samples[i]) > floor)
            ++histogram.count[static_cast<std::size_t>(binOf(samples[i]))];
    return histogram;
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
