#include "engine/image/midtones.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace zre {

namespace {

constexpr double kShadowDeviations = 2.8;
constexpr double kNormalDeviation = 1.4826; // median deviation to standard deviation, normal noise

/// The lower median of what `sampleOf` makes of the data, of the values above 0 that pass.
///
/// Positive floats sort as their bits do, so two counts of 16 bits each find it exactly, without a
/// copy of the picture.
template <class SampleOf>
double medianOf(const std::vector<float>& data, SampleOf sampleOf)
{
    std::vector<std::uint64_t> upper(65536, 0);
    std::uint64_t count = 0;
    for (const float v : data)
        if (const float sample = sampleOf(v); sample >= 0.0f) {
            ++upper[std::bit_cast<std::uint32_t>(sample + 0.0f) >> 16];
            ++count;
        }
    if (count == 0)
        return 0.0;
    std::uint64_t rank = (count - 1) / 2;
    const auto find = [&rank](const std::vector<std::uint64_t>& bins) {
        std::uint32_t bin = 0;
        while (rank >= bins[bin])
            rank -= bins[bin++];
        return bin;
    };
    const std::uint32_t high = find(upper);
    std::vector<std::uint64_t> lower(65536, 0);
    for (const float v : data)
        if (const float sample = sampleOf(v); sample >= 0.0f) {
            const auto bits = std::bit_cast<std::uint32_t>(sample + 0.0f);
            if (bits >> 16 == high)
                ++lower[bits & 0xffff];
        }
    return std::bit_cast<float>(high << 16 | find(lower));
}

constexpr float kNoData = -1.0f;

} // namespace

double midtonesTransfer(double midtones, double value)
{
    if (!(value > 0.0))
        return 0.0;
    if (value >= 1.0)
        return 1.0;
    if (!std::isfinite(midtones))
        return value;
    const double m = std::clamp(midtones, 0.0, 1.0);
    return (m - 1.0) * value / ((2.0 * m - 1.0) * value - m);
}

double sampleMedian(const Image& img)
{
    return medianOf(img.data, [](float v) { return v > 0.0f ? v : kNoData; });
}

MidtonesStretch autoStretch(const Image& img, double targetBackground)
{
    const double median = sampleMedian(img);
    const double deviation = medianOf(img.data, [median](float v) {
        return v > 0.0f ? static_cast<float>(std::abs(v - median)) : kNoData;
    });
    if (!(deviation > 0.0) || !(median < 1.0) ||
        !(targetBackground > 0.0 && targetBackground < 1.0))
        return {};
    MidtonesStretch stretch;
    stretch.shadows = std::max(0.0, median - kShadowDeviations * kNormalDeviation * deviation);
    // The transfer is its own inverse in this sense: mtf(mtf(t, x), x) = t.
    const double background = (median - stretch.shadows) / (1.0 - stretch.shadows);
    stretch.midtones = midtonesTransfer(targetBackground, background);
    return stretch;
}

void applyStretch(Image& img, const MidtonesStretch& stretch)
{
    if (!img.usable() || !std::isfinite(stretch.shadows) || !std::isfinite(stretch.midtones) ||
        !(stretch.shadows < 1.0))
        return;
    const double span = 1.0 - stretch.shadows;
    for (float& v : img.data)
        v = static_cast<float>(
            midtonesTransfer(stretch.midtones, (static_cast<double>(v) - stretch.shadows) / span));
}

} // namespace zre
