#include "engine/stereo/scatter.h"

#include <algorithm>

#include "engine/image/multiversion.h"

namespace zre {

namespace {

using Cell = LandingBand::Cell;

/// Some pixels of a source row and the part of the band that they may land on.
struct Aim
{
    int x; ///< first pixel, and how many
    int size;
    int y;
    int width;
    int firstRow;
    int lastRow;
    int slot; ///< of the first row
    int slots;
    int stride;
};

struct Targets
{
    float* __restrict depth;
    Cell* __restrict pixel;
    std::int32_t* __restrict nearest;
    std::int32_t* __restrict upper;
    std::int32_t* __restrict lower;
};

/// Aims each pixel at the four cells about its place, or beyond the right end of a row.
ZR_KERNEL_STEP void aimAll(const Warp& callersWarp, bool clamped, const Aim& callersAim,
                           const float* __restrict depth, const Targets& targets)
{
    const Warp warp = callersWarp;
    const Aim aim = callersAim;
    const auto [finite, pixel, nearest, upper, lower] = targets;
    const double right = aim.width;
    const double top = aim.firstRow;
    const double bottom = aim.lastRow;
    const double y = aim.y;
    const std::int32_t source = aim.y * aim.width + aim.x;
    const int wrap = (aim.slots - 1) * aim.stride;
    for (int i = 0; i < aim.size; ++i) {
        const int x = aim.x + i;
        const float d = finiteDepth(warp, depth[i]);
        const Displacement moved = zoomedDisplacement(warp, clamped, x, y, d);
        const double placeX = x + moved.x;
        const double placeY = y + moved.y;
        const bool held = (placeX >= -1.0) & (placeX < right) & (placeY >= top) & (placeY < bottom);
        const double boundX = held ? placeX : right;
        const double boundY = held ? placeY : top;
        const int wholeX = static_cast<int>(boundX);
        const int wholeY = static_cast<int>(boundY);
        const int column = wholeX - (boundX < wholeX ? 1 : 0);
        const int row = wholeY - (boundY < wholeY ? 1 : 0);
        const int past = aim.slot + (row - aim.firstRow);
        const int slot = past - (past >= aim.slots ? aim.slots : 0);
        const int first = slot * aim.stride + column + 1;
        const int next = slot == aim.slots - 1 ? first - wrap : first + aim.stride;
        finite[i] = d;
        pixel[i] = LandingBand::pack(source + i, d);
        upper[i] = first;
        lower[i] = next;
        nearest[i] =
            (boundY + 0.5 >= row + 1.0 ? next : first) + (boundX + 0.5 >= column + 1.0 ? 1 : 0);
    }
}

ZR_MULTIVERSION_512 void aimFree(const Warp& warp, const Aim& aim, const float* depth,
                                 const Targets& targets)
{
    aimAll(warp, false, aim, depth, targets);
}

ZR_MULTIVERSION_512 void aimClamped(const Warp& warp, const Aim& aim, const float* depth,
                                    const Targets& targets)
{
    aimAll(warp, true, aim, depth, targets);
}

} // namespace

Scatter::Scatter(const Warp& warp, int width, bool splat, const DepthRange& depths)
    : m_warp(warp)
    , m_width(width)
    , m_splat(splat)
    , m_far(depths.low <= static_cast<double>(LandingBand::depth(LandingBand::kEmpty)))
{
}

void Scatter::landRow(const float* depth, int y, const RowSpan& span, LandingBand& band)
{
    const Targets targets{m_depth.data(), m_pixel.data(), m_nearest.data(), m_upper.data(),
                          m_lower.data()};
    for (int x = 0; x < m_width; x += kChunk) {
        const Aim aim{
            x,         std::min(kChunk, m_width - x), y,           m_width,      span.first,
            span.last, band.slot(span.first),         band.rows(), band.stride()};
        (m_warp.maxDisparity > 0.0 ? aimClamped : aimFree)(m_warp, aim, depth + x, targets);
        const auto size = static_cast<std::size_t>(aim.size);
        if (!m_splat)
            land(size, band.cells());
        else if (m_far)
            spreadFar(size, band.cells());
        else
            spread(size, band.cells());
    }
}

/// The nearest pixel wins, the one that came first when equal. Here and below without a branch,
/// which noise would have mispredicted.
void Scatter::land(std::size_t size, Cell* cells) const
{
    for (std::size_t i = 0; i < size; ++i) {
        Cell& nearest = cells[m_nearest[i]];
        nearest = m_depth[i] > LandingBand::depth(nearest) ? m_pixel[i] : nearest;
    }
}

/// By bits, because the compiler makes a branch of a choice.
static inline void fillEmpty(Cell& cell, Cell pixel)
{
    cell ^= (cell ^ pixel) & (cell >> 63);
}

/// The nearest of the four cells by depth, the other three only while they are empty; after the
/// first step the nearest is not, unless the pixel is as far as nothing.
void Scatter::spread(std::size_t size, Cell* cells) const
{
    for (std::size_t i = 0; i < size; ++i) {
        __builtin_prefetch(cells + m_lower[i + kAhead], 1);
        const Cell pixel = m_pixel[i];
        Cell& nearest = cells[m_nearest[i]];
        nearest = m_depth[i] > LandingBand::depth(nearest) ? pixel : nearest;
        Cell* const upper = cells + m_upper[i];
        Cell* const lower = cells + m_lower[i];
        fillEmpty(upper[0], pixel);
        fillEmpty(upper[1], pixel);
        fillEmpty(lower[0], pixel);
        fillEmpty(lower[1], pixel);
    }
}

/// The same for pixels that do not land on an empty cell by depth, and yet spread to the others.
void Scatter::spreadFar(std::size_t size, Cell* cells) const
{
    for (std::size_t i = 0; i < size; ++i) {
        if (m_depth[i] > LandingBand::depth(cells[m_nearest[i]]))
            cells[m_nearest[i]] = m_pixel[i];
        for (const std::int32_t cell : {m_upper[i], m_upper[i] + 1, m_lower[i], m_lower[i] + 1})
            if (cell != m_nearest[i] && LandingBand::isEmpty(cells[cell]))
                cells[cell] = m_pixel[i];
    }
}

} // namespace zre
