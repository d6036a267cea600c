#include "engine/stars/star_depth.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>

namespace zre {

namespace {

/// 0 to 1; what is no number counts as 0, the far end.
double unit(double value)
{
    return value > 0.0 ? std::min(value, 1.0) : 0.0;
}

std::size_t nearestIndex(double position, int side)
{
    const double rounded = std::trunc(position + 0.5);
    return rounded > 0.0 ? static_cast<std::size_t>(std::min(rounded, side - 1.0)) : 0;
}

double sceneDepthAt(const Image& depthMap, const Star& star)
{
    const std::size_t column = nearestIndex(star.x, depthMap.width);
    const std::size_t row = nearestIndex(star.y, depthMap.height);
    return depthMap.data[row * static_cast<std::size_t>(depthMap.width) + column];
}

/// The faintest peak still drawn, -1 when all are. A peak that is no number has no place in an
/// order and counts as the faintest.
float leastPeak(const std::vector<Star>& stars, int maxRendered)
{
    constexpr float kAll = -1.0f;
    if (maxRendered < 1 || static_cast<std::size_t>(maxRendered) >= stars.size())
        return kAll;
    std::vector<float> peaks;
    peaks.reserve(stars.size());
    for (const Star& star : stars)
        if (!star.erased)
            peaks.push_back(std::isnan(star.peak) ? -std::numeric_limits<float>::infinity()
                                                  : star.peak);
    if (static_cast<std::size_t>(maxRendered) >= peaks.size())
        return kAll;
    const auto last = peaks.begin() + (maxRendered - 1);
    std::nth_element(peaks.begin(), last, peaks.end(), std::greater<>());
    return *last;
}

/// -0.5 to 0.5 from a star's place in the list: multiples of the golden ratio in 32 bits lie evenly
/// however many there are.
double scatter(std::uint32_t hash)
{
    return ((hash >> 8) & 0xFFFFu) / 65535.0 - 0.5;
}

double targetDepth(const StarDepthParams& params, const Star& star, std::uint32_t hash)
{
    const double plane = unit(params.plane);
    switch (params.mode) {
    case 0:
        return plane;
    case 1:
        return unit(plane + params.range * (unit(star.peak) - 0.5));
    default:
        return unit(plane + params.range * scatter(hash));
    }
}

} // namespace

void assignStarDepths(const Image& depthMap, std::vector<Star>& stars,
                      const StarDepthParams& params)
{
    if (!depthMap.usable())
        return;
    const double floatation = unit(params.floatation);
    const double pop = unit(params.pop);
    const float cut = leastPeak(stars, params.maxRendered);
    std::uint32_t hash = 0;
    for (Star& star : stars) {
        if (star.erased || (cut >= 0.0f && !(star.peak >= cut))) {
            star.depth = -1.0f;
        } else {
            const double base = (1.0 - floatation) * sceneDepthAt(depthMap, star) +
                                floatation * targetDepth(params, star, hash);
            star.depth = static_cast<float>(unit(base + (1.0 - base) * pop));
        }
        hash -= 0x61C8864Fu;
    }
}

void assignStarDepths(const Image& depthMap, std::vector<Star>& stars, double lift)
{
    if (!depthMap.usable())
        return;
    const double share = unit(lift);
    for (Star& star : stars) {
        const double depth = sceneDepthAt(depthMap, star);
        star.depth = star.erased ? -1.0f : static_cast<float>(depth + (1.0 - depth) * share);
    }
}

} // namespace zre
