#include "engine/stereo/scatter.h"

#include "engine/image/multiversion.h"
#include "engine/stereo/lanes.h"

namespace zre {

namespace {

struct RowAim
{
    int y;
    int width;
    int firstRow; ///< rows that pixels may land on
    int endRow;
};

inline void aimAtNearest(const Warp warp, const RowAim& aim, const float* __restrict depth,
                         float* __restrict finite, int* __restrict column, int* __restrict row)
{
    const int width = aim.width;
    const double right = width;
    const double top = aim.firstRow;
    const double bottom = aim.endRow;
    const double y = aim.y;
    for (int x = 0; x < width; ++x) {
        const float d = finiteDepth(warp, depth[x]);
        const Displacement moved = displacement(warp, x, y, d);
        const double cellX = x + moved.x + 0.5;
        const double cellY = y + moved.y + 0.5;
        // Not below zero, so that truncation rounds down.
        const bool inside = (cellX >= 0.0) & (cellX < right) & (cellY >= top) & (cellY < bottom);
        finite[x] = d;
        column[x] = static_cast<int>(inside ? cellX : right);
        row[x] = static_cast<int>(inside ? cellY : y);
    }
}

ZR_MULTIVERSION void aimRow(const Warp& warp, const RowAim& aim, const float* __restrict depth,
                            float* __restrict finite, int* __restrict column, int* __restrict row)
{
    aimAtNearest(warp, aim, depth, finite, column, row);
}

/// The same for a warp that only shifts.
ZR_MULTIVERSION void aimShiftedRow(const Warp& callersWarp, const RowAim& aim,
                                   const float* __restrict depth, float* __restrict finite,
                                   int* __restrict column, int* __restrict row)
{
    Warp warp = callersWarp;
    warp.zoom = 0.0;
    warp.maxDisparity = 0.0;
    aimAtNearest(warp, aim, depth, finite, column, row);
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
    const int width = aim.width;
    const double right = width;
    const double top = aim.firstRow - 2;
    const double bottom = aim.endRow;
    const double y = aim.y;
    for (int x = 0; x < width; ++x) {
        const Displacement moved = displacement(warp, x, y, finite[x]);
        column[x] = floorWithin(x + moved.x, -2.0, right);
        row[x] = floorWithin(y + moved.y, top, bottom);
    }
}

} // namespace

Scatter::Scatter(const Warp& warp, int width, int height, int reach, bool splat)
    : m_warp(warp)
    , m_width(width)
    , m_height(height)
    , m_reach(reach)
    , m_splat(splat)
    , m_depth(static_cast<std::size_t>(width))
    , m_column(static_cast<std::size_t>(width))
    , m_row(static_cast<std::size_t>(width))
    , m_cornerColumn(splat ? static_cast<std::size_t>(width) : 0)
    , m_cornerRow(splat ? static_cast<std::size_t>(width) : 0)
{
}

void Scatter::landRow(const float* depth, int y, LandingBand& band)
{
    const RowAim aim{y, m_width, std::max(0, y - m_reach), std::min(m_height, y + m_reach + 1)};
    (onlyShifts(m_warp) ? aimShiftedRow : aimRow)(m_warp, aim, depth, m_depth.data(),
                                                  m_column.data(), m_row.data());
    if (m_splat) {
        aimAtCorner(m_warp, aim, m_depth.data(), m_cornerColumn.data(), m_cornerRow.data());
        spread(y, band);
    } else {
        landWhole(y, band);
    }
}

void Scatter::landPixel(int x, int y, LandingBand& band)
{
    const auto i = static_cast<std::size_t>(x);
    const int column = m_column[i];
    const int row = m_row[i];
    const std::int32_t lands = landOne(m_depth[i], band.z(row)[column]);
    storeWhere(lands, x, band.column(row)[column]);
    storeWhere(lands, y, band.row(row)[column]);
}

void Scatter::landWhole(int y, LandingBand& band)
{
    const int* const column = m_column.data();
    const int* const row = m_row.data();
    int x = 0;
    for (; x + kBlock <= m_width; x += kBlock) {
        if (straight(column + x) && level(row + x)) {
            for (int k = 0; k < kBlock; k += 4) {
                const int cell = column[x] + k;
                const Ints lands = landFour(m_depth.data() + x + k, band.z(row[x]) + cell);
                storeWhere(lands, Ints{0, 1, 2, 3} + (x + k), band.column(row[x]) + cell);
                storeWhere(lands, Ints{} + y, band.row(row[x]) + cell);
            }
        } else {
            for (int k = x; k < x + kBlock; ++k)
                landPixel(k, y, band);
        }
    }
    for (; x < m_width; ++x)
        landPixel(x, y, band);
}

/// The nearest of the four cells by depth, the other three only while they are empty.
void Scatter::spread(int y, LandingBand& band)
{
    const int firstRow = std::max(0, y - m_reach);
    const int lastRow = std::min(m_height, y + m_reach + 1) - 1;
    for (int x = 0; x < m_width; ++x) {
        const auto i = static_cast<std::size_t>(x);
        landPixel(x, y, band);
        for (int row = std::max(m_cornerRow[i], firstRow);
             row <= std::min(m_cornerRow[i] + 1, lastRow); ++row) {
            std::int32_t* const columns = band.column(row);
            for (int cell = std::max(m_cornerColumn[i], 0);
                 cell <= std::min(m_cornerColumn[i] + 1, m_width - 1); ++cell) {
                if (columns[cell] == LandingBand::kHole &&
                    (cell != m_column[i] || row != m_row[i])) {
                    columns[cell] = x;
                    band.row(row)[cell] = y;
                    band.z(row)[cell] = m_depth[i];
                }
            }
        }
    }
}

} // namespace zre
