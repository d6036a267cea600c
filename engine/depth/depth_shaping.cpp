#include "engine/depth/depth_shaping.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "engine/image/blur.h"
#include "engine/image/multiversion.h"
#include "engine/image/power.h"

namespace zre {

static float edgeEpsilon(float edgePreservation)
{
    if (edgePreservation < 0.0f)
        return 0.1002f;
    if (edgePreservation > 1.0f)
        return 0.0002f;
    const double flattening = 1.0 - static_cast<double>(edgePreservation);
    return static_cast<float>(0.1 * flattening * flattening + 0.0002);
}

bool smooths(float sigma)
{
    return sigma > 0.0f && std::isfinite(sigma);
}

bool smoothsAlongEdges(float sigma, float edgePreservation)
{
    return smooths(sigma) && !std::isnan(edgePreservation);
}

void smoothDepth(const Image& guide, Image& depth, float sigma, float edgePreservation,
                 const Progress& progress)
{
    if (smoothsAlongEdges(sigma, edgePreservation))
        guidedFilter(guide, depth, static_cast<double>(sigma), edgeEpsilon(edgePreservation),
                     progress);
}

bool raises(float gamma)
{
    return std::isfinite(gamma) && gamma >= 0.0f && gamma != 1.0f;
}

void raiseDepth(Image& depth, float gamma)
{
    if (!raises(gamma))
        return;
    raiseToPower(depth.plane(0), depth.pixelCount(), static_cast<double>(gamma));
}

static constexpr std::size_t kLanes = 16;
using Lanes = std::array<float, kLanes>;

/// Extremes of the finite samples, lane by lane: sixteen independent chains instead of one.
ZR_MULTIVERSION static void laneExtremes(const float* samples, std::size_t size, Lanes& lowest,
                                         Lanes& highest)
{
    Lanes low = lowest;
    Lanes high = highest;
    for (std::size_t i = 0; i + kLanes <= size; i += kLanes)
        for (std::size_t k = 0; k < kLanes; ++k) {
            const float v = samples[i + k];
            const bool finite = v - v == 0.0f;
            const float lower = v < low[k] ? v : low[k];
            const float higher = v > high[k] ? v : high[k];
            low[k] = finite ? lower : low[k];
            high[k] = finite ? higher : high[k];
        }
    lowest = low;
    highest = high;
}

ZR_MULTIVERSION static void stretchSamples(float* samples, std::size_t size, float lowest,
                                           float range)
{
    for (std::size_t i = 0; i < size; ++i) {
        const float v = (samples[i] - lowest) / range;
        samples[i] = v - v == 0.0f ? v : 0.0f;
    }
}

void normaliseDepth(Image& depth)
{
    float* samples = depth.plane(0);
    const std::size_t n = depth.pixelCount();
    Lanes lowest;
    Lanes highest;
    lowest.fill(std::numeric_limits<float>::max());
    highest.fill(std::numeric_limits<float>::lowest());
    laneExtremes(samples, n, lowest, highest);
    for (std::size_t i = n - n % kLanes; i < n; ++i)
        if (std::isfinite(samples[i])) {
            lowest[0] = std::min(lowest[0], samples[i]);
            highest[0] = std::max(highest[0], samples[i]);
        }
    const float low = *std::min_element(lowest.begin(), lowest.end());
    const float range = *std::max_element(highest.begin(), highest.end()) - low;
    if (range > 0.0f)
        stretchSamples(samples, n, low, range);
    else
        std::fill(depth.data.begin(), depth.data.end(), 0.0f);
}

} // namespace zre
