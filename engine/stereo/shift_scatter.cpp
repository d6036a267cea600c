#include "engine/stereo/shift_scatter.h"

#include "engine/image/multiversion.h"
#include "engine/stereo/lanes.h"
#include "engine/stereo/steady_range.h"

namespace zre {

namespace {

struct Rows
{
    int width;
    int first; ///< rows that pixels may land on
    int end;
};

/// True when pixels from (`x`, `y`) on, `kBlock` of them, land in the image with the range's move.
ZR_KERNEL_STEP bool fits(const SteadyRange& range, int x, int y, const Rows& rows)
{
    const int column = x + range.x;
    const int row = y + range.y;
    return column >= 0 && column + kBlock <= rows.width && row >= rows.first && row < rows.end;
}

/// Lands those of a block that are in the range; it has to fit.
ZR_KERNEL_STEP void landHeld(const SteadyRange& range, const float* depth, int x, int y,
                             DepthBand& band)
{
    float* const z = band.z(y + range.y) + (x + range.x);
    for (int k = 0; k < kBlock; k += 4) {
        const Floats d = loadFloats(depth + k);
        const Floats there = loadFloats(z + k);
        const Floats nearest = d > there ? d : there;
        store(heldBy(range, d) ? nearest : there, z + k);
    }
}

/// Lands `size` neighbours, at most a block, one by one. Without a branch, which noise would have
/// mispredicted: what leaves the image lands on the cell beyond it.
ZR_KERNEL_STEP void landEach(const Warp& callersWarp, bool clamped, const float* depth, int x0,
                             int y, int size, const Rows& rows, DepthBand& band)
{
    Warp warp = callersWarp;
    warp.zoom = 0.0;
    warp.maxDisparity = clamped ? warp.maxDisparity : 0.0;
    float finite[kBlock];
    int column[kBlock];
    int row[kBlock];
    const double right = rows.width;
    const double top = rows.first;
    const double bottom = rows.end;
    for (int k = 0; k < size; ++k) {
        finite[k] = finiteDepth(warp, depth[k]);
        const Displacement moved = displacement(warp, 0.0, 0.0, finite[k]);
        const double cellX = x0 + k + moved.x + 0.5;
        const double cellY = y + moved.y + 0.5;
        // Not below zero, so that truncation rounds down.
        const bool inside = (cellX >= 0.0) & (cellX < right) & (cellY >= top) & (cellY < bottom);
        column[k] = static_cast<int>(inside ? cellX : right);
        row[k] = static_cast<int>(inside ? cellY : y);
    }
    for (int k = 0; k < size; ++k) {
        float& z = band.z(row[k])[column[k]];
        z = finite[k] > z ? finite[k] : z;
    }
}

/// Equal depths move alike, so that no cell is reached by two of them and the nearest is all there
/// is to find out. Nearly all blocks move as one, and most others in two parts.
ZR_KERNEL_STEP void landAll(const Warp& warp, bool clamped, const float* depth, int y, int height,
                            const Rows& rows, DepthBand& band)
{
    SteadyRange steady;
    SteadyRange before;
    int x = 0;
    for (; x + kBlock <= rows.width; x += kBlock) {
        const float last = depth[x + kBlock - 1];
        if (!steady.holds(last) && !before.holds(last)) {
            before = steady;
            steady = steadyAround(warp, last, rows.width, height);
        }
        if (holdsBlock(steady, depth + x) && fits(steady, x, y, rows)) {
            landHeld(steady, depth + x, x, y, band);
        } else if (holdBlock(steady, before, depth + x) && fits(steady, x, y, rows) &&
                   fits(before, x, y, rows)) {
            landHeld(steady, depth + x, x, y, band);
            landHeld(before, depth + x, x, y, band);
        } else {
            landEach(warp, clamped, depth + x, x, y, kBlock, rows, band);
        }
    }
    landEach(warp, clamped, depth + x, x, y, rows.width - x, rows, band);
}

ZR_MULTIVERSION_512 void landClamped(const Warp& warp, const float* depth, int y, int height,
                                     const Rows& rows, DepthBand& band)
{
    landAll(warp, true, depth, y, height, rows, band);
}

ZR_MULTIVERSION_512 void landShifted(const Warp& warp, const float* depth, int y, int height,
                                     const Rows& rows, DepthBand& band)
{
    landAll(warp, false, depth, y, height, rows, band);
}

} // namespace

void ShiftScatter::landRow(const float* depth, int y, DepthBand& band) const
{
    const Rows rows{m_width, std::max(0, y - m_reach), std::min(m_height, y + m_reach + 1)};
    (onlyShifts(m_warp) ? landShifted : landClamped)(m_warp, depth, y, m_height, rows, band);
}

} // namespace zre
