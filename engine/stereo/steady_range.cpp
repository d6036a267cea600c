#include "engine/stereo/steady_range.h"

#include <algorithm>
#include <limits>

namespace zre {

namespace {

/// Far more than a place and a displacement can round when they are added.
constexpr double kMargin = 1e-4;
constexpr double kMost = std::numeric_limits<float>::max();

struct Span
{
    double low = -kMost;
    double high = kMost;
};

/// The depths that move by `move` whole pixels, to the nearest, at `gain` pixels per unit of depth.
Span spanOf(double move, double gain, double convergence)
{
    if (gain == 0.0)
        return {};
    const double one = convergence + (move - (0.5 - kMargin)) / gain;
    const double other = convergence + (move + (0.5 - kMargin)) / gain;
    return {std::max(std::min(one, other), -kMost), std::min(std::max(one, other), kMost)};
}

} // namespace

SteadyRange steadyAround(const Warp& warp, float depth, int width, int height)
{
    const Displacement moved = displacement(warp, 0.0, 0.0, depth);
    if (!(std::fabs(moved.x) < width && std::fabs(moved.y) < height))
        return {};
    const Displacement move{std::floor(moved.x + 0.5), std::floor(moved.y + 0.5)};
    const Span x = spanOf(move.x, warp.offsetX * 0.5 * warp.parallax, warp.convergence);
    const Span y = spanOf(move.y, warp.offsetY * 0.5 * warp.parallax, warp.convergence);
    const auto low = static_cast<float>(std::max(x.low, y.low));
    const auto high = static_cast<float>(std::min(x.high, y.high));
    // A displacement grows or falls with the depth throughout, clamped or not, so that the ends
    // speak for what lies between.
    const auto moves = [&](float d) {
        const Displacement there = displacement(warp, 0.0, 0.0, d);
        return std::fabs(there.x - move.x) < 0.5 - 0.5 * kMargin &&
               std::fabs(there.y - move.y) < 0.5 - 0.5 * kMargin;
    };
    if (!moves(low) || !moves(high))
        return {};
    return {low, high, static_cast<int>(move.x), static_cast<int>(move.y)};
}

} // namespace zre
