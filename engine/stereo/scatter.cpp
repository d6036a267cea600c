#include "engine/stereo/scatter.h"

#include "engine/image/multiversion.h"
#include "engine/stereo/lanes.h"

namespace zre {

namespace {

struct RowAim
{
    int x; ///< first pixel of the row that is aimed, and how many
    int size;
    int y;
    int width;
    int firstRow; ///< rows that pixels may land on
    int endRow;
};

ZR_MULTIVERSION void aimAtNearest(const Warp& callersWarp, const RowAim& callersAim,
                                  const float* __restrict depth, float* __restrict finite,
                                  int* __restrict column, int* __restrict row)
{
    const Warp warp = callersWarp;
    const RowAim aim = callersAim;
    const double right = aim.width;
    const double top = aim.firstRow;
    const double bottom = aim.endRow;
    const double y = aim.y;
    for (int i = 0; i < aim.size; ++i) {
        const int x = aim.x + i;
        const float d = finiteDepth(warp, depth[i]);
        const Displacement moved = displacement(warp, x, y, d);
        const double cellX = x + moved.x + 0.5;
        const double cellY = y + moved.y + 0.5;
        // Not below zero, so that truncation rounds down.
        const bool inside = (cellX >= 0.0) & (cellX < right) & (cellY >= top) & (cellY < bottom);
        finite[i] = d;
        column[i] = static_cast<int>(inside ? cellX : right);
        row[i] = static_cast<int>(inside ? cellY : y);
    }
}

inline int floorWithin(double value, double low, double high)
{
    const double raised = value > low ? value : low;
    const double bound = raised < high ? raised : high;
    const int whole = static_cast<int>(bound);
    return whole - (bound < whole ? 1 : 0);
}

ZR_MULTIVERSION void aimAtCorner(const Warp& callersWarp, const RowAim& aim,
                                 const float* __restrict finite, int* __restrict column,
                                 int* __restrict row)
{
    const Warp warp = callersWarp;
    const double right = aim.width;
    const double top = aim.firstRow - 2;
    const double bottom = aim.endRow;
    const double y = aim.y;
    for (int i = 0; i < aim.size; ++i) {
        const int x = aim.x + i;
        const Displacement moved = displacement(warp, x, y, finite[i]);
        column[i] = floorWithin(x + moved.x, -2.0, right);
        row[i] = floorWithin(y + moved.y, top, bottom);
    }
}

} // namespace

Scatter::Scatter(const Warp& warp, int width, int height, int reach, bool splat)
    : m_warp(warp)
    , m_width(width)
    , m_height(height)
    , m_reach(reach)
    , m_splat(splat)
{
}

void Scatter::landRow(const float* depth, int y, LandingBand& band)
{
    const int firstRow = std::max(0, y - m_reach);
    const int endRow = std::min(m_height, y + m_reach + 1);
    for (int x = 0; x < m_width; x += kChunk) {
        const RowAim aim{x, std::min(kChunk, m_width - x), y, m_width, firstRow, endRow};
        aimAtNearest(m_warp, aim, depth + x, m_depth.data(), m_column.data(), m_row.data());
        const Chunk chunk{x, aim.size, y, firstRow, endRow};
        if (m_splat) {
            aimAtCorner(m_warp, aim, m_depth.data(), m_cornerColumn.data(), m_cornerRow.data());
            spread(chunk, band);
        } else {
            landWhole(chunk, band);
        }
    }
}

inline void Scatter::landPixel(std::size_t i, int x, int y, const LandingBand& band,
                               const LandingBand::Planes& planes) const
{
    const std::size_t cell = band.cell(m_column[i], m_row[i]);
    const std::int32_t lands = landOne(m_depth[i], planes.z[cell]);
    storeWhere(lands, x, planes.column[cell]);
    storeWhere(lands, y, planes.row[cell]);
}

void Scatter::landWhole(const Chunk& chunk, LandingBand& band) const
{
    const LandingBand::Planes planes = band.planes();
    const auto size = static_cast<std::size_t>(chunk.size);
    std::size_t i = 0;
    for (; i + kBlock <= size; i += kBlock) {
        const int x = chunk.x + static_cast<int>(i);
        if (straight(m_column.data() + i) && level(m_row.data() + i)) {
            const std::size_t first = band.cell(m_column[i], m_row[i]);
            for (int k = 0; k < kBlock; k += 4) {
                const std::size_t cell = first + static_cast<std::size_t>(k);
                const Ints lands = landFour(m_depth.data() + i + k, planes.z + cell);
                storeWhere(lands, Ints{0, 1, 2, 3} + (x + k), planes.column + cell);
                storeWhere(lands, Ints{} + chunk.y, planes.row + cell);
            }
        } else {
            for (int k = 0; k < kBlock; ++k)
                landPixel(i + static_cast<std::size_t>(k), x + k, chunk.y, band, planes);
        }
    }
    for (; i < size; ++i)
        landPixel(i, chunk.x + static_cast<int>(i), chunk.y, band, planes);
}

/// The nearest of the four cells by depth, the other three only while they are empty.
void Scatter::spread(const Chunk& chunk, LandingBand& band) const
{
    const LandingBand::Planes planes = band.planes();
    for (std::size_t i = 0; i < static_cast<std::size_t>(chunk.size); ++i) {
        const int x = chunk.x + static_cast<int>(i);
        landPixel(i, x, chunk.y, band, planes);
        const int lastRow = std::min(m_cornerRow[i] + 1, chunk.endRow - 1);
        const int lastColumn = std::min(m_cornerColumn[i] + 1, m_width - 1);
        for (int row = std::max(m_cornerRow[i], chunk.firstRow); row <= lastRow; ++row)
            for (int column = std::max(m_cornerColumn[i], 0); column <= lastColumn; ++column) {
                const std::size_t cell = band.cell(column, row);
                if (planes.column[cell] != LandingBand::kHole ||
                    (column == m_column[i] && row == m_row[i]))
                    continue;
                planes.column[cell] = x;
                planes.row[cell] = chunk.y;
                planes.z[cell] = m_depth[i];
            }
    }
}

} // namespace zre
