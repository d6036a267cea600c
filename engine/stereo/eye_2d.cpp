#include <bit>
#include <cstdint>

#include "engine/image/multiversion.h"
#include "engine/stereo/eye.h"
#include "engine/stereo/gather.h"
#include "engine/stereo/hole_fill.h"
#include "engine/stereo/scatter.h"
#include "engine/stereo/shift_gather.h"
#include "engine/stereo/shift_scatter.h"

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

struct DepthRange
{
    double low;
    double high;
};

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

/// The most rows by which `warp` moves a pixel up or down, splats included.
int rowReach(const Warp& warp, const Image& depth)
{
    const auto [low, high] = depthRange(warp, depth);
    const double before = std::max(high - warp.convergence, 0.0);
    const double behind = std::max(warp.convergence - low, 0.0);
    double most = std::fabs(warp.offsetY * 0.5 * warp.parallax) * std::max(before, behind);
    if (warp.zoom != 0.0)
        most += std::max(std::fabs(warp.centerY), std::fabs(depth.height - 1 - warp.centerY)) *
                before * std::fabs(warp.zoom);
    if (warp.maxDisparity > 0.0)
        most = std::min(most, warp.maxDisparity * 0.5);
    constexpr int kRounding = 2; // to the nearest cell, and to the next beside it
    return most < depth.height
               ? std::min(static_cast<int>(std::ceil(most)) + kRounding, depth.height)
               : depth.height;
}

/// Row by row: once source row `y` has landed, nothing more reaches the output row `reach` above
/// it; and the holes farther up are filled when all that their search can see is complete.
template <typename Band, typename Landing, typename Sampling>
void renderRows(const Warp& warp, const Image& depth, int reach, Landing& scatter, Sampling& gather,
                Image& out, Image* outDepth)
{
    HoleFill<Band> holes(warp, out, outDepth);
    const int height = out.height;
    Band band(
        out.width, height,
        static_cast<int>(std::min<std::int64_t>(height, 2ll * reach + 2ll * holes.rowReach() + 1)));

    const auto inside = [height](int row) { return row >= 0 && row < height; };
    for (int row = 0; row < std::min(reach, height); ++row)
        band.clear(row);
    for (int y = 0; y < height + reach + holes.rowReach(); ++y) {
        if (inside(y + reach))
            band.clear(y + reach);
        if (inside(y))
            scatter.landRow(depth.plane(0) +
                                static_cast<std::size_t>(y) * static_cast<std::size_t>(out.width),
                            y, band);
        if (inside(y - reach))
            gather.fillRow(band, y - reach);
        if (inside(y - reach - holes.rowReach()))
            holes.fillRow(band, y - reach - holes.rowReach());
    }
}

} // namespace

void renderEye2D(const Image& src, const Image& depth, Image& out, double parallax,
                 double convergence, double offsetX, double offsetY, double maxDisparity,
                 double zoom, double centerX, double centerY, bool splat, Image* outDepth)
{
    if (!warpable(src, depth, out))
        return;
    const Warp warp =
        settled({parallax, convergence, offsetX, offsetY, maxDisparity, zoom, centerX, centerY},
                src.width, src.height);
    if (outDepth)
        shapeDepth(*outDepth, src.width, src.height);

    const int reach = rowReach(warp, depth);
    if (warp.zoom == 0.0 && !splat) {
        ShiftScatter scatter(warp, src.width, src.height, reach);
        ShiftGather gather(warp, src, depth, out, outDepth);
        renderRows<DepthBand>(warp, depth, reach, scatter, gather, out, outDepth);
    } else {
        Scatter scatter(warp, src.width, src.height, reach, splat);
        Gather gather(warp, src, out, outDepth);
        renderRows<LandingBand>(warp, depth, reach, scatter, gather, out, outDepth);
    }
}

} // namespace zre
