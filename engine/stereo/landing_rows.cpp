#include "engine/stereo/landing_rows.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#include "engine/image/multiversion.h"

namespace zre {

namespace {

struct BitRange
{
    std::int32_t low;
    std::int32_t high;
};

/// A number that orders as the float of these bits does, and turns back by the same step.
inline std::int32_t ordered(std::int32_t bits)
{
    return bits ^ ((bits >> 31) & 0x7fffffff);
}

/// The extremes of `values` in `ordered` form; a NaN lies beyond infinity on its sign's side.
ZR_MULTIVERSION BitRange orderedRange(const float* values, std::size_t size)
{
    BitRange range{ordered(std::bit_cast<std::int32_t>(values[0])), 0};
    range.high = range.low;
    for (std::size_t i = 0; i < size; ++i) {
        const std::int32_t v = ordered(std::bit_cast<std::int32_t>(values[i]));
        range.low = v < range.low ? v : range.low;
        range.high = v > range.high ? v : range.high;
    }
    return range;
}

constexpr int kRounding = 2; // to the nearest cell, and to the next beside it

} // namespace

DepthRange depthRange(const Warp& warp, const Image& depth)
{
    const BitRange range = orderedRange(depth.plane(0), depth.pixelCount());
    float low = std::bit_cast<float>(ordered(range.low));
    float high = std::bit_cast<float>(ordered(range.high));
    if (std::isfinite(low) && std::isfinite(high))
        return {low, high};
    low = high = static_cast<float>(warp.convergence);
    for (const float value : depth.data) {
        low = std::min(low, finiteDepth(warp, value));
        high = std::max(high, finiteDepth(warp, value));
    }
    return {low, high};
}

int rowReach(const Warp& warp, const DepthRange& depths, int height)
{
    const double before = std::max(depths.high - warp.convergence, 0.0);
    const double behind = std::max(warp.convergence - depths.low, 0.0);
    double most = std::fabs(warp.offsetY * 0.5 * warp.parallax) * std::max(before, behind);
    if (warp.zoom != 0.0)
        most += std::max(std::fabs(warp.centerY), std::fabs(height - 1 - warp.centerY)) * before *
                std::fabs(warp.zoom);
    if (warp.maxDisparity > 0.0)
        most = std::min(most, warp.maxDisparity * 0.5);
    return most < height ? std::min(static_cast<int>(std::ceil(most)) + kRounding, height) : height;
}

/// A displacement is linear in the depth on either side of the convergence plane, where it is zero,
/// and the clamp only shortens it: the ends of the range tell how far it goes.
static RowSpan spanOf(const Warp& warp, const DepthRange& depths, int y, int height)
{
    const RowSpan all{-1, height};
    double up = 0.0;
    double down = 0.0;
    Warp free = warp;
    free.maxDisparity = 0.0;
    for (const double depth : {depths.low, depths.high}) {
        const double moved = displacement(free, 0.0, y, depth).y;
        if (!std::isfinite(moved))
            return all;
        up = std::min(up, moved);
        down = std::max(down, moved);
    }
    if (warp.maxDisparity > 0.0) {
        up = std::max(up, -warp.maxDisparity * 0.5);
        down = std::min(down, warp.maxDisparity * 0.5);
    }
    const auto row = [&](double place) {
        return static_cast<int>(std::clamp(place, -1.0, double(height)));
    };
    return {row(std::floor(y + up) - kRounding), row(std::ceil(y + down) + kRounding)};
}

LandingRows landingRows(const Warp& warp, const DepthRange& depths, int height)
{
    LandingRows rows;
    for (int y = 0; y < height; ++y)
        rows.spans.push_back(spanOf(warp, depths, y, height));
    const auto count = static_cast<std::size_t>(height);
    rows.firstLater.assign(count + 1, height);
    for (std::size_t y = count; y-- > 0;)
        rows.firstLater[y] = std::min(rows.firstLater[y + 1], rows.spans[y].first);
    int last = -1;
    for (std::size_t y = 0; y < count; ++y) {
        last = std::max(last, rows.spans[y].last);
        rows.most = std::max(rows.most, last - rows.firstLater[y] + 1);
    }
    return rows;
}

} // namespace zre
