#include "engine/stereo/zoomed_eye.h"

#include <algorithm>
#include <cstdint>

#include "engine/stereo/gather.h"
#include "engine/stereo/hole_fill.h"
#include "engine/stereo/scatter.h"
#include "engine/stereo/seen_band.h"

namespace zre {

namespace {

/// `window` and what lies within `reach` of it in the image.
EyeWindow widened(const EyeWindow& window, int reach, const Image& image)
{
    return {std::max(0, window.left - reach), std::max(0, window.top - reach),
            std::min(image.width, window.right + reach),
            std::min(image.height, window.bottom + reach)};
}

} // namespace

/// Row by row: a row is gathered as soon as no later source row reaches it, and its depths alone
/// wait for the search of the holes about it.
void renderZoomed(const Warp& warp, const Image& src, const Image& depth, const DepthRange& depths,
                  bool splat, const EyeWindow& window, Image& out, Image* outDepth)
{
    HoleFill<SeenBand> holes(warp, out, outDepth);
    const EyeWindow seenPart = widened(window, holes.rowReach(), src);
    const Columns columns{seenPart.left, seenPart.right};
    const LandingRows rows = landingRows(warp, depths, src.height, seenPart.top, seenPart.bottom);
    const Columns from = landingColumns(warp, depths, src.width, seenPart.left, seenPart.right);
    Scatter scatter(warp, src.width, from, columns, splat);
    Gather gather(warp, src, out, outDepth, columns);
    LandingBand landing(seenPart.right - seenPart.left, rows.most);
    SeenBand seen(seenPart, src.height,
                  static_cast<int>(std::min<std::int64_t>(src.height, 2ll * holes.rowReach() + 1)));

    int filled = window.top;
    const auto fillTo = [&](int end) {
        for (; filled < std::min(end, window.bottom); ++filled)
            holes.fillRow(seen, filled, window.left, window.right);
    };
    int gathered = seenPart.top - 1;
    for (int y = 0; y < src.height; ++y) {
        const auto row = static_cast<std::size_t>(y);
        if (rows.spans[row].last >= seenPart.top && rows.spans[row].first < seenPart.bottom)
            scatter.landRow(depth.plane(0) + row * static_cast<std::size_t>(src.width), y,
                            rows.spans[row], landing);
        for (; gathered < rows.firstLater[row + 1]; ++gathered) {
            if (gathered >= seenPart.top)
                gather.fillRow(landing, gathered, seen.z(gathered));
            landing.clear(gathered);
            fillTo(gathered + 1 - holes.rowReach());
        }
    }
    fillTo(window.bottom);
}

} // namespace zre
