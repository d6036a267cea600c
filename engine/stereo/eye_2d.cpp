#include <algorithm>
#include <cstdint>
#include <limits>

#include "engine/stereo/eye.h"
#include "engine/stereo/gather.h"
#include "engine/stereo/hole_fill.h"
#include "engine/stereo/landing_rows.h"
#include "engine/stereo/scatter.h"
#include "engine/stereo/seen_band.h"
#include "engine/stereo/shift_gather.h"
#include "engine/stereo/shift_scatter.h"

namespace zre {

namespace {

/// Row by row: once source row `y` has landed, nothing more reaches the output row `reach` above
/// it; and the holes farther up are filled when all that their search can see is complete.
void renderShifted(const Warp& warp, const Image& src, const Image& depth, int reach, Image& out,
                   Image* outDepth)
{
    ShiftScatter scatter(warp, src.width, src.height, reach);
    ShiftGather gather(warp, src, depth, out, outDepth);
    HoleFill<DepthBand> holes(warp, out, outDepth);
    const int height = out.height;
    DepthBand band(
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

/// The same where a zoom or splats move pixels by their place, too. A row is gathered as soon as no
/// later source row reaches it, and its depths alone wait for the search of the holes about it.
void renderZoomed(const Warp& warp, const Image& src, const Image& depth, const DepthRange& depths,
                  bool splat, Image& out, Image* outDepth)
{
    const int width = src.width;
    const int height = src.height;
    const LandingRows rows = landingRows(warp, depths, height);
    Scatter scatter(warp, width, splat, depths);
    Gather gather(warp, src, out, outDepth);
    HoleFill<SeenBand> holes(warp, out, outDepth);
    LandingBand landing(width, rows.most);
    SeenBand seen(width, height,
                  static_cast<int>(std::min<std::int64_t>(height, 2ll * holes.rowReach() + 1)));

    int cleared = -1;
    int filled = 0;
    const auto clearTo = [&](int last) {
        for (; cleared <= last; ++cleared)
            landing.clear(cleared);
    };
    const auto fillTo = [&](int end) {
        for (; filled < std::min(end, height); ++filled)
            holes.fillRow(seen, filled);
    };
    int gathered = 0;
    for (int y = 0; y < height; ++y) {
        const auto row = static_cast<std::size_t>(y);
        clearTo(rows.spans[row].last);
        scatter.landRow(depth.plane(0) + row * static_cast<std::size_t>(width), y, rows.spans[row],
                        landing);
        for (; gathered < rows.firstLater[row + 1]; ++gathered) {
            clearTo(gathered);
            gather.fillRow(landing, gathered, 0, width, seen.z(gathered));
            fillTo(gathered + 1 - holes.rowReach());
        }
    }
    fillTo(height);
}

} // namespace

/// Whether the cells of the zoomed warp, which number the pixels in 32 bits, can hold an image.
static bool fitsCells(const Image& image)
{
    constexpr std::int64_t kMostCells = std::numeric_limits<std::int32_t>::max();
    return (std::int64_t{image.width} + 3) * (std::int64_t{image.height} + 2) <= kMostCells;
}

void renderEye2D(const Image& src, const Image& depth, Image& out, double parallax,
                 double convergence, double offsetX, double offsetY, double maxDisparity,
                 double zoom, double centerX, double centerY, bool splat, Image* outDepth)
{
    if (!warpable(src, depth, out))
        return;
    const Warp warp =
        settled({parallax, convergence, offsetX, offsetY, maxDisparity, zoom, centerX, centerY},
                src.width, src.height);
    const bool zoomed = warp.zoom != 0.0 || splat;
    if (zoomed && !fitsCells(src))
        return;
    if (outDepth)
        shapeDepth(*outDepth, src.width, src.height);

    const DepthRange depths = depthRange(warp, depth);
    if (!zoomed)
        renderShifted(warp, src, depth, rowReach(warp, depths, src.height), out, outDepth);
    else
        renderZoomed(warp, src, depth, depths, splat, out, outDepth);
}

} // namespace zre
