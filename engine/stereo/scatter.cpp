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
    int left; ///< columns of the band
    int right;
    int firstRow;
    int lastRow;
    int slot; ///< of the first row
    int slots;
    int stride;
    std::uint32_t code; ///< of the first pixel
};

struct Targets
{
    Cell* __restrict pixel;
    std::int32_t* __restrict nearest;
    std::int32_t* __restrict across;
    std::int32_t* __restrict side;
};

/// Aims each pixel at the four cells about its place, or beyond the right end of a row.
ZR_KERNEL_STEP void aimAll(const Warp& callersWarp, bool clamped, const Aim& callersAim,
                           const float* __restrict depth, const Targets& targets)
{
    const Warp warp = callersWarp;
    const Aim aim = callersAim;
    const auto [pixel, nearest, across, side] = targets;
    const double left = aim.left - 1;
    const double right = aim.right;
    const double top = aim.firstRow;
    const double bottom = aim.lastRow;
    const double y = aim.y;
    const int wrap = (aim.slots - 1) * aim.stride;
    for (int i = 0; i < aim.size; ++i) {
        const int x = aim.x + i;
        const float d = finiteDepth(warp, depth[i]);
        const Displacement moved = zoomedDisplacement(warp, clamped, x, y, d);
        const double placeX = x + moved.x;
        const double placeY = y + moved.y;
        const bool held = (placeX >= left) & (placeX < right) & (placeY >= top) & (placeY < bottom);
        const double boundX = held ? placeX : right;
        const double boundY = held ? placeY : top;
        const int wholeX = static_cast<int>(boundX);
        const int wholeY = static_cast<int>(boundY);
        const int column = wholeX - (boundX < wholeX ? 1 : 0);
        const int row = wholeY - (boundY < wholeY ? 1 : 0);
        const int past = aim.slot + (row - aim.firstRow);
        const int slot = past - (past >= aim.slots ? aim.slots : 0);
        const int upper = slot * aim.stride + column - aim.left + 1;
        const int lower = slot == aim.slots - 1 ? upper - wrap : upper + aim.stride;
        const bool nearRight = boundX + 0.5 >= column + 1.0;
        const bool nearLower = boundY + 0.5 >= row + 1.0;
        const int offset = nearRight ? 1 : 0;
        pixel[i] = LandingBand::pack(aim.code + static_cast<std::uint32_t>(i), d);
        nearest[i] = (nearLower ? lower : upper) + offset;
        across[i] = (nearLower ? upper : lower) + offset;
        side[i] = nearRight ? -1 : 1;
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

Scatter::Scatter(const Warp& warp, int width, const Columns& from, const Columns& onto, bool splat)
    : m_warp(warp)
    , m_from(from)
    , m_onto(onto)
    , m_code(width)
    , m_splat(splat)
{
}

/// The next chunk is aimed, and its cells are asked for, before one lands.
void Scatter::landRow(const float* depth, int y, const RowSpan& span, LandingBand& band)
{
    if (m_from.first < m_from.end)
        aim(depth, m_from.first, y, span, band, m_aims[0]);
    for (int x = m_from.first, turn = 0; x < m_from.end; x += kAimed, turn ^= 1) {
        if (x + kAimed < m_from.end)
            aim(depth, x + kAimed, y, span, band, m_aims[static_cast<std::size_t>(turn ^ 1)]);
        const Aims& aims = m_aims[static_cast<std::size_t>(turn)];
        if (m_splat)
            spread(aims, band.cells());
        else
            land(aims, band.cells());
    }
}

void Scatter::aim(const float* depth, int x, int y, const RowSpan& span, LandingBand& band,
                  Aims& aims)
{
    constexpr std::size_t kCellsInLine = 8;
    aims.size = std::min(kAimed, m_from.end - x);
    const Aim aim{x,
                  aims.size,
                  y,
                  m_onto.first,
                  m_onto.end,
                  span.first,
                  span.last,
                  band.slot(span.first),
                  band.rows(),
                  band.stride(),
                  m_code.of(x, y)};
    (m_warp.maxDisparity > 0.0 ? aimClamped : aimFree)(
        m_warp, aim, depth + x,
        {aims.pixel.data(), aims.nearest.data(), aims.across.data(), aims.side.data()});
    const LandingBand::Cell* const cells = band.cells();
    for (std::size_t i = 0; i < static_cast<std::size_t>(aims.size); i += kCellsInLine) {
        __builtin_prefetch(cells + aims.nearest[i], 1);
        __builtin_prefetch(cells + aims.across[i], 1);
    }
}

/// The nearer pixel stays, the one that came first when equal. Here and below without a branch,
/// which noise would have mispredicted.
static inline void landOn(Cell& cell, Cell pixel)
{
    cell = std::max(cell, pixel);
}

static inline void fillEmpty(Cell& cell, Cell pixel)
{
    const Cell filled = cell == LandingBand::kEmpty ? pixel : cell;
    asm volatile("" : : "r"(filled)); // else the compiler makes a branch of the choice
    cell = filled;
}

void Scatter::land(const Aims& aims, Cell* cells) const
{
    for (std::size_t i = 0; i < static_cast<std::size_t>(aims.size); ++i)
        landOn(cells[aims.nearest[i]], aims.pixel[i]);
}

/// The nearest of the four cells by depth, the other three only while they are empty.
void Scatter::spread(const Aims& aims, Cell* cells) const
{
    for (std::size_t i = 0; i < static_cast<std::size_t>(aims.size); ++i) {
        const Cell pixel = aims.pixel[i];
        const std::ptrdiff_t side = aims.side[i];
        Cell* const nearest = cells + aims.nearest[i];
        Cell* const across = cells + aims.across[i];
        landOn(nearest[0], pixel);
        fillEmpty(nearest[side], pixel);
        fillEmpty(across[0], pixel);
        fillEmpty(across[side], pixel);
    }
}

} // namespace zre
