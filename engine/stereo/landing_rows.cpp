#include "engine/stereo/landing_rows.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

#include "engine/image/multiversion.h"
#include "engine/stereo/ordered_bits.h"

namespace zre {

namespace {

struct BitRange
{
    std::int32_t low;
    std::int32_t high;
};

/// The extremes of `values` as `orderedBits` numbers them.
ZR_MULTIVERSION BitRange orderedRange(const float* values, std::size_t size)
{
    BitRange range{orderedBits(std::bit_cast<std::int32_t>(values[0])), 0};
    range.high = range.low;
    for (std::size_t i = 0; i < size; ++i) {
        const std::int32_t v = orderedBits(std::bit_cast<std::int32_t>(values[i]));
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
    float low = std::bit_cast<float>(orderedBits(range.low));
    float high = std::bit_cast<float>(orderedBits(range.high));
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

namespace {

/// How far pixels of a line go, at most: to lower places, which is below 0, and to higher ones.
struct Reach
{
    double down = 0.0;
    double up = 0.0;
};

} // namespace

/// A displacement is linear in the depth on either side of the convergence plane, where it is zero,
/// and the clamp only shortens it: the ends of the range tell how far it goes, along one axis.
static Reach reachFrom(const Warp& warp, const DepthRange& depths, double x, double y,
                       double Displacement::*axis)
{
    constexpr double kAnywhere = std::numeric_limits<double>::infinity();
    Reach reach;
    Warp free = warp;
    free.maxDisparity = 0.0;
    for (const double depth : {depths.low, depths.high}) {
        const double moved = displacement(free, x, y, depth).*axis;
        if (!std::isfinite(moved))
            return {-kAnywhere, kAnywhere};
        reach.down = std::min(reach.down, moved);
        reach.up = std::max(reach.up, moved);
    }
    if (warp.maxDisparity > 0.0) {
        reach.down = std::max(reach.down, -warp.maxDisparity * 0.5);
        reach.up = std::min(reach.up, warp.maxDisparity * 0.5);
    }
    return reach;
}

/// Where what goes so far from `place` lands, splats included, between `least` and `most`.
static RowSpan spanOf(double place, const Reach& reach, int least, int most)
{
    const auto bound = [&](double at) {
        return static_cast<int>(std::clamp(at, double(least), double(most)));
    };
    return {bound(std::floor(place + reach.down) - kRounding),
            bound(std::ceil(place + reach.up) + kRounding)};
}

LandingRows landingRows(const Warp& warp, const DepthRange& depths, int height, int top, int bottom)
{
    LandingRows rows;
    for (int y = 0; y < height; ++y)
        rows.spans.push_back(
            spanOf(y, reachFrom(warp, depths, 0.0, y, &Displacement::y), top - 1, bottom));
    const auto count = static_cast<std::size_t>(height);
    rows.firstLater.assign(count + 1, bottom);
    for (std::size_t y = count; y-- > 0;)
        rows.firstLater[y] = std::min(rows.firstLater[y + 1], rows.spans[y].first);
    int last = top - 1;
    for (std::size_t y = 0; y < count; ++y) {
        last = std::max(last, rows.spans[y].last);
        rows.most = std::max(rows.most, last - rows.firstLater[y] + 1);
    }
    return rows;
}

Columns landingColumns(const Warp& warp, const DepthRange& depths, int width, int left, int right)
{
    Columns columns{width, 0};
    for (int x = 0; x < width; ++x) {
        const RowSpan span =
            spanOf(x, reachFrom(warp, depths, x, 0.0, &Displacement::x), left - 1, right);
        if (span.last < left || span.first >= right)
            continue;
        columns.first = std::min(columns.first, x);
        columns.end = x + 1;
    }
    return columns;
}

} // namespace zre
