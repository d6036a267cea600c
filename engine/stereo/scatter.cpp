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

ZR_MULTIVERSION void aimAtNearest(const Warp& callersWarp, const RowAim& aim,
                                  const float* __restrict depth, float* __restrict finite,
                                  int* __restrict column, int* __restrict row)
{
    const Warp warp = callersWarp;
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

/// True when the `kBlock` entries from `row` on are equal.
bool level(const int* row)
{
    return !anyBit((loadInts(row) ^ row[0]) | (loadInts(row + 4) ^ row[0]));
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
    aimAtNearest(m_warp, aim, depth, m_depth.data(), m_column.data(), m_row.data());
    if (m_splat) {
        aimAtCorner(m_warp, aim, m_depth.data(), m_cornerColumn.data(), m_cornerRow.data());
        spread(y, band);
    } else {
        landWhole(y, band);
    }
}

void Scatter::landWhole(int y, LandingBand& band)
{
    const float* const depth = m_depth.data();
    const int* const column = m_column.data();
    const int* const row = m_row.data();
    const std::int32_t first = y * m_width;
    const auto landPixel = [&](int x) {
        landOne(depth[x], first + x, band.source(row[x])[column[x]], band.z(row[x])[column[x]]);
    };
    int x = 0;
    for (; x + kBlock <= m_width; x += kBlock) {
        if (straight(column + x) && level(row + x)) {
            std::int32_t* const source = band.source(row[x]) + column[x];
            float* const z = band.z(row[x]) + column[x];
            landFour(depth + x, Ints{0, 1, 2, 3} + (first + x), source, z);
            landFour(depth + x + 4, Ints{4, 5, 6, 7} + (first + x), source + 4, z + 4);
        } else {
            for (int k = x; k < x + kBlock; ++k)
                landPixel(k);
        }
    }
    for (; x < m_width; ++x)
        landPixel(x);
}

/// The nearest of the four cells by depth, the other three only while they are empty.
void Scatter::spread(int y, LandingBand& band)
{
    const std::int32_t first = y * m_width;
    const int firstRow = std::max(0, y - m_reach);
    const int lastRow = std::min(m_height, y + m_reach + 1) - 1;
    for (int x = 0; x < m_width; ++x) {
        const auto i = static_cast<std::size_t>(x);
        const float d = m_depth[i];
        const int column = m_column[i];
        const int row = m_row[i];
        landOne(d, first + x, band.source(row)[column], band.z(row)[column]);
        for (int cellRow = std::max(m_cornerRow[i], firstRow);
             cellRow <= std::min(m_cornerRow[i] + 1, lastRow); ++cellRow) {
            std::int32_t* const source = band.source(cellRow);
            for (int cell = std::max(m_cornerColumn[i], 0);
                 cell <= std::min(m_cornerColumn[i] + 1, m_width - 1); ++cell) {
                if (source[cell] == LandingBand::kHole && (cell != column || cellRow != row)) {
                    source[cell] = first + x;
                    band.z(cellRow)[cell] = d;
                }
            }
        }
    }
}

} // namespace zre
