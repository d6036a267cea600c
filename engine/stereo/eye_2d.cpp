#include <algorithm>
#include <cstdint>
#include <limits>

#include "engine/stereo/eye.h"
#include "engine/stereo/eye_window.h"
#include "engine/stereo/hole_fill.h"
#include "engine/stereo/landing_rows.h"
#include "engine/stereo/shift_gather.h"
#include "engine/stereo/shift_scatter.h"
#include "engine/stereo/zoomed_eye.h"

namespace zre {

namespace {

/// Row by row: once source row `y` has landed, nothing more reaches the output row `reach` above
/// it; and the holes farther up are filled when all that their search can see is complete. Writes
/// the rows of `window` and some about them.
void renderShifted(const Warp& warp, const Image& src, const Image& depth, int reach,
                   const EyeWindow& window, Image& out, Image* outDepth)
{
    ShiftScatter scatter(warp, src.width, src.height, reach);
    ShiftGather gather(warp, src, depth, out, outDepth);
    HoleFill<DepthBand> holes(warp, out, outDepth);
    const int height = out.height;
    DepthBand band(
        out.width, height,
        static_cast<int>(std::min<std::int64_t>(height, 2ll * reach + 2ll * holes.rowReach() + 1)));

    const RowSpan seen{std::max(0, window.top - holes.rowReach()),
                       std::min(height, window.bottom + holes.rowReach()) - 1};
    const auto inside = [height](int row) { return row >= 0 && row < height; };
    const int first = std::max(0, seen.first - reach);
    for (int row = std::max(0, first - reach); row < std::min(first + reach, height); ++row)
        band.clear(row);
    for (int y = first; y < window.bottom + reach + holes.rowReach(); ++y) {
        if (inside(y + reach))
            band.clear(y + reach);
        if (inside(y))
            scatter.landRow(depth.plane(0) +
                                static_cast<std::size_t>(y) * static_cast<std::size_t>(out.width),
                            y, band);
        if (y - reach >= seen.first && y - reach <= seen.last)
            gather.fillRow(band, y - reach);
        const int filled = y - reach - holes.rowReach();
        if (filled >= window.top)
            holes.fillRow(band, filled, 0, out.width);
    }
}

} // namespace

/// Whether the cells of the zoomed warp, which number the pixels in 32 bits, can hold an image.
static bool fitsCells(const Image& image)
{
    constexpr std::int64_t kMostCells = std::numeric_limits<std::int32_t>::max();
    return (std::int64_t{image.width} + 3) * (std::int64_t{image.height} + 2) <= kMostCells;
}

void renderWindow2D(const Image& src, const Image& depth, Image& out, const Warp& callersWarp,
                    bool splat, const EyeWindow& window, Image* outDepth)
{
    if (!warpable(src, depth, out))
        return;
    const EyeWindow part = boundTo(src, window);
    if (part.left >= part.right || part.top >= part.bottom)
        return;
    const Warp warp = settled(callersWarp, src.width, src.height);
    const bool zoomed = warp.zoom != 0.0 || splat;
    if (outDepth)
        shapeDepth(*outDepth, src.width, src.height);
    if (zoomed && !fitsCells(src)) {
        out.data = src.data;
        if (outDepth)
            outDepth->data = depth.data;
        return;
    }

    const DepthRange depths = depthRange(warp, depth);
    if (!zoomed)
        renderShifted(warp, src, depth, rowReach(warp, depths, src.height), part, out, outDepth);
    else
        renderZoomed(warp, src, depth, depths, splat, part, out, outDepth);
}

void renderEye2D(const Image& src, const Image& depth, Image& out, double parallax,
                 double convergence, double offsetX, double offsetY, double maxDisparity,
                 double zoom, double centerX, double centerY, bool splat, Image* outDepth)
{
    renderWindow2D(src, depth, out,
                   {parallax, convergence, offsetX, offsetY, maxDisparity, zoom, centerX, centerY},
                   splat, {0, 0, src.width, src.height}, outDepth);
}

} // namespace zre
