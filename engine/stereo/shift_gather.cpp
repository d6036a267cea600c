#include "engine/stereo/shift_gather.h"

#include <bit>
#include <cmath>

#include "engine/image/multiversion.h"

namespace zre {

namespace {

/// Place of a cell whose pixel moved by so nearly half a pixel that the rounding of its own place
/// decides where it landed.
constexpr double kOdd = -(1 << 30);
constexpr double kClearlyNearest = 0.5 - 1e-6;

/// Some cells of a row of the output.
struct Cells
{
    int x;
    int size;
    int y;
};

struct Place
{
    double first;    ///< of the two samples about the place
    double fraction; ///< of the way between them
    double offset;   ///< of the place from the source pixel
};

/// Where the cell at `cell` samples its source along one axis. Its pixel stands at the nearest
/// whole place.
ZR_KERNEL_STEP Place placeOf(double cell, double moved)
{
    const double source = cell - std::floor(moved + 0.5);
    const double offset = cell - (source + moved);
    const double way = (source + offset) - source;
    const double before = way < 0.0 ? 1.0 : 0.0;
    return {source - before, way + before, offset};
}

/// The depth of a cell, and in a hole, so that it does not break a run, of the nearer cell beside
/// it.
ZR_KERNEL_STEP float bridgedDepth(const float* z, std::ptrdiff_t i, float fallback)
{
    const float beside = z[i - 1] > z[i + 1] ? z[i - 1] : z[i + 1];
    const float nearest = beside > DepthBand::kNothing ? beside : fallback;
    return z[i] > DepthBand::kNothing ? z[i] : nearest;
}

ZR_KERNEL_STEP void placeCells(const Warp warp, const Cells cells, const float* __restrict z,
                               double* __restrict fu, double* __restrict fv,
                               std::int32_t* __restrict column, std::int32_t* __restrict row)
{
    const auto still = static_cast<float>(warp.convergence);
    for (int i = 0; i < cells.size; ++i) {
        const Displacement moved = displacement(warp, 0.0, 0.0, bridgedDepth(z, i, still));
        const Place u = placeOf(cells.x + i, moved.x);
        const Place v = placeOf(cells.y, moved.y);
        // An empty cell's place may be none that an integer holds.
        const bool clear = (std::fabs(u.offset) < kClearlyNearest) &
                           (std::fabs(v.offset) < kClearlyNearest) & (std::fabs(u.first) < -kOdd) &
                           (std::fabs(v.first) < -kOdd);
        fu[i] = u.fraction;
        fv[i] = v.fraction;
        column[i] = static_cast<std::int32_t>(clear ? u.first : kOdd);
        row[i] = static_cast<std::int32_t>(clear ? v.first : kOdd);
    }
}

ZR_MULTIVERSION_512 void placeClamped(const Warp& warp, const Cells& cells,
                                      const float* __restrict z, double* __restrict fu,
                                      double* __restrict fv, std::int32_t* __restrict column,
                                      std::int32_t* __restrict row)
{
    Warp shift = warp;
    shift.zoom = 0.0;
    placeCells(shift, cells, z, fu, fv, column, row);
}

ZR_MULTIVERSION_512 void placeShifted(const Warp& warp, const Cells& cells,
                                      const float* __restrict z, double* __restrict fu,
                                      double* __restrict fv, std::int32_t* __restrict column,
                                      std::int32_t* __restrict row)
{
    Warp shift = warp;
    shift.zoom = 0.0;
    shift.maxDisparity = 0.0;
    placeCells(shift, cells, z, fu, fv, column, row);
}

/// Tells of each cell whether the one after it does not sample one column farther on.
ZR_MULTIVERSION_512 void markTurns(const std::int32_t* __restrict column,
                                   const std::int32_t* __restrict row, int size,
                                   std::uint8_t* __restrict turns)
{
    for (int i = 0; i + 1 < size; ++i)
        turns[i] = (column[i + 1] - column[i] != 1) | (row[i + 1] != row[i]) ? 1 : 0;
    turns[size - 1] = 1;
}

/// The turns of a block as one value, and which of them lie within it.
using Turns = std::uint64_t;
constexpr auto kWithin =
    std::bit_cast<Turns>(std::array<std::uint8_t, kBlock>{1, 1, 1, 1, 1, 1, 1, 0});

inline Turns loadTurns(const std::uint8_t* from)
{
    Turns turns;
    std::memcpy(&turns, from, sizeof turns);
    return turns;
}

ZR_KERNEL_STEP float between(double a, double b, double c, double e, double fu, double fv)
{
    const double top = a + (b - a) * fu;
    const double bottom = c + (e - c) * fu;
    return static_cast<float>(top + (bottom - top) * fv);
}

/// Steps in memory: to the sample below, and to the next plane.
struct Strides
{
    std::size_t row;
    std::size_t plane;
    int channels;
};

constexpr int kPerCacheLine = 16;

/// Fetches the samples below a run into the cache, which the next row of the output will want:
/// rows of the source are met in short runs that the processor does not foresee.
ZR_KERNEL_STEP void fetchNextRow(const float* below, std::size_t stride, int length)
{
    for (int k = 0; k < length; k += kPerCacheLine)
        __builtin_prefetch(below + stride + k);
}

/// Fetches a piece of the output while its places are being computed.
void fetchToWrite(const float* out, int length)
{
    for (int k = 0; k < length; k += kPerCacheLine)
        __builtin_prefetch(out + k, 1);
}

/// Samples neighbours of every plane, from the upper left sample of the first cell on.
ZR_MULTIVERSION_512 void sampleEvenRun(const float* __restrict first, const Strides& strides,
                                       int length, const double* __restrict fu,
                                       const double* __restrict fv, float* __restrict out)
{
    for (int c = 0; c < strides.channels; ++c, first += strides.plane, out += strides.plane) {
        const float* const below = first + strides.row;
        fetchNextRow(below, strides.row, length);
        for (int k = 0; k < length; ++k)
            out[k] = between(first[k], first[k + 1], below[k], below[k + 1], fu[k], fv[k]);
    }
}

/// The same for cells some of which sample one column farther right or one row farther down: where
/// `column` and `row` are not those of the first sample.
ZR_MULTIVERSION_512 void
sampleMixedRun(const float* __restrict first, const Strides& strides, int length,
               const double* __restrict fu, const double* __restrict fv,
               const std::int32_t* __restrict column, const std::int32_t* __restrict row,
               std::int32_t firstColumn, std::int32_t firstRow, float* __restrict out)
{
    for (int c = 0; c < strides.channels; ++c, first += strides.plane, out += strides.plane) {
        const float* const middle = first + strides.row;
        const float* const below = middle + strides.row;
        fetchNextRow(middle, strides.row, length);
        for (int k = 0; k < length; ++k) {
            const bool right = column[k] - k != firstColumn;
            const bool down = row[k] != firstRow;
            const float above0 = first[k], above1 = first[k + 1], above2 = first[k + 2];
            const float middle0 = middle[k], middle1 = middle[k + 1], middle2 = middle[k + 2];
            const float below0 = below[k], below1 = below[k + 1], below2 = below[k + 2];
            const float a = right ? above1 : above0;
            const float b = right ? above2 : above1;
            const float c0 = right ? middle1 : middle0;
            const float c1 = right ? middle2 : middle1;
            const float e0 = right ? below1 : below0;
            const float e1 = right ? below2 : below1;
            out[k] =
                between(down ? c0 : a, down ? c1 : b, down ? e0 : c0, down ? e1 : c1, fu[k], fv[k]);
        }
    }
}

std::size_t indexOf(const Image& img, int x, int y)
{
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(img.width) +
           static_cast<std::size_t>(x);
}

/// True when the `kBlock` cells from `column` and `row` on sample at most one column and one row
/// beyond where neighbours that start at `firstColumn` and `firstRow` would.
bool withinOne(const std::int32_t* column, const std::int32_t* row, std::int32_t firstColumn,
               std::int32_t firstRow)
{
    const Ints low = loadInts(column) - Ints{0, 1, 2, 3} - firstColumn;
    const Ints high = loadInts(column + 4) - Ints{4, 5, 6, 7} - firstColumn;
    return !anyBit((low | high | (loadInts(row) - firstRow) | (loadInts(row + 4) - firstRow)) & ~1);
}

} // namespace

ShiftGather::ShiftGather(const Warp& warp, const Image& src, const Image& depth, Image& out,
                         Image* outDepth)
    : m_warp(warp)
    , m_src(src)
    , m_depth(depth)
    , m_out(out)
    , m_outDepth(outDepth)
{
}

void ShiftGather::fillRow(DepthBand& band, int y)
{
    band.close(y);
    const float* const z = band.z(y);
    for (int x = 0; x < m_src.width; x += kChunk)
        fillChunk(z + x, x, std::min(kChunk, m_src.width - x), y);
    if (!m_outDepth)
        return;
    float* const depth = m_outDepth->plane(0) + indexOf(m_src, 0, y);
    for (int x = 0; x < m_src.width; ++x)
        depth[x] = z[x] == DepthBand::kNothing ? -1.0f : z[x];
}

void ShiftGather::fillChunk(const float* z, int x0, int size, int y)
{
    for (int c = 0; c < m_out.channels; ++c)
        fetchToWrite(m_out.plane(c) + indexOf(m_src, x0, y), size);
    (onlyShifts(m_warp) ? placeShifted : placeClamped)(m_warp, {x0, size, y}, z, m_fu.data(),
                                                       m_fv.data(), m_column.data(), m_row.data());
    markTurns(m_column.data(), m_row.data(), size, m_turns.data());
    const auto end = static_cast<std::size_t>(size);
    for (std::size_t i = 0; i < end;) {
        const int x = x0 + static_cast<int>(i);
        const std::size_t run = fillRun(i, end, indexOf(m_src, x, y));
        i += run;
        if (run > 0)
            continue;
        const std::size_t blockEnd = std::min(i + kBlock, end);
        for (int k = 0; i < blockEnd; ++i, ++k)
            if (inside(m_column[i], m_row[i], 1, 1))
                fillCell(i, x + k, y);
            else if (z[i] != DepthBand::kNothing)
                fillOddCell(z[i], x + k, y);
    }
}

/// True when the image holds that sample, as many columns right of it and as many rows below it.
bool ShiftGather::inside(int column, int row, int right, int down) const
{
    return column >= 0 && column + right < m_src.width && row >= 0 && row + down < m_src.height;
}

/// How many cells from `i` on, by whole blocks, sample neighbouring places in the image.
int ShiftGather::evenLength(std::size_t i, std::size_t size) const
{
    std::size_t block = i;
    Turns turns = 0;
    for (; turns == 0 && block + kBlock <= size; block += kBlock) {
        turns = loadTurns(m_turns.data() + block);
        if ((turns & kWithin) != 0)
            break;
    }
    const auto length = static_cast<int>(block - i);
    return inside(m_column[i], m_row[i], length, 1) ? length : 0;
}

/// How many do so but for one column and one row; none once a block can do without that.
int ShiftGather::mixedLength(std::size_t i, std::size_t size, std::int32_t column,
                             std::int32_t row) const
{
    std::size_t block = i;
    for (; block + kBlock <= size; block += kBlock)
        if ((loadTurns(m_turns.data() + block) & kWithin) == 0 ||
            !withinOne(m_column.data() + block, m_row.data() + block,
                       column + static_cast<std::int32_t>(block - i), row))
            break;
    const auto length = static_cast<int>(block - i);
    return inside(column, row, length + 1, 2) ? length : 0;
}

/// Fills the longest run of blocks from `i` on that can be sampled as neighbours; its length.
std::size_t ShiftGather::fillRun(std::size_t i, std::size_t size, std::size_t cell)
{
    const Strides strides{static_cast<std::size_t>(m_src.width), m_src.pixelCount(),
                          m_src.channels};
    float* const out = m_out.plane(0) + cell;
    if (const int length = evenLength(i, size)) {
        sampleEvenRun(m_src.plane(0) + indexOf(m_src, m_column[i], m_row[i]), strides, length,
                      m_fu.data() + i, m_fv.data() + i, out);
        return static_cast<std::size_t>(length);
    }
    if (i + kBlock > size)
        return 0;
    std::int32_t column = m_column[i];
    std::int32_t row = m_row[i];
    for (int k = 1; k < kBlock; ++k) {
        column = std::min(column, m_column[i + static_cast<std::size_t>(k)] - k);
        row = std::min(row, m_row[i + static_cast<std::size_t>(k)]);
    }
    const int length = mixedLength(i, size, column, row);
    if (length > 0)
        sampleMixedRun(m_src.plane(0) + indexOf(m_src, column, row), strides, length,
                       m_fu.data() + i, m_fv.data() + i, m_column.data() + i, m_row.data() + i,
                       column, row, out);
    return static_cast<std::size_t>(length);
}

void ShiftGather::fillCell(std::size_t i, int x, int y)
{
    const auto width = static_cast<std::size_t>(m_src.width);
    const std::size_t first = indexOf(m_src, m_column[i], m_row[i]);
    const std::size_t cell = indexOf(m_src, x, y);
    for (int c = 0; c < m_src.channels; ++c) {
        const float* const at = m_src.plane(c) + first;
        m_out.plane(c)[cell] = between(at[0], at[1], at[width], at[width + 1], m_fu[i], m_fv[i]);
    }
}

/// Fills a cell of depth `z` whose source pixel has to be looked for, among those beside the place
/// it should have, or that samples at the border of the source, where the last column and row
/// repeat.
void ShiftGather::fillOddCell(float z, int x, int y)
{
    const Displacement moved = displacement(m_warp, 0.0, 0.0, z);
    const int nearX = x - static_cast<int>(std::floor(moved.x + 0.5));
    const int nearY = y - static_cast<int>(std::floor(moved.y + 0.5));
    const auto landsHere = [&](int sx, int sy) {
        return sx >= 0 && sx < m_src.width && sy >= 0 && sy < m_src.height &&
               std::floor(sx + moved.x + 0.5) == x && std::floor(sy + moved.y + 0.5) == y &&
               finiteDepth(m_warp, m_depth.data[indexOf(m_src, sx, sy)]) == z;
    };
    for (int sy = nearY - 1; sy <= nearY + 1; ++sy)
        for (int sx = nearX - 1; sx <= nearX + 1; ++sx)
            if (landsHere(sx, sy))
                return sampleAt({sx + (x - (sx + moved.x)), sy + (y - (sy + moved.y))},
                                indexOf(m_src, x, y));
}

void ShiftGather::sampleAt(Displacement place, std::size_t cell)
{
    const double u = std::clamp(place.x, 0.0, m_src.width - 1.0);
    const double v = std::clamp(place.y, 0.0, m_src.height - 1.0);
    const int column = static_cast<int>(u);
    const int row = static_cast<int>(v);
    const std::size_t right = column < m_src.width - 1 ? 1 : 0;
    const std::size_t down = row < m_src.height - 1 ? static_cast<std::size_t>(m_src.width) : 0;
    for (int c = 0; c < m_src.channels; ++c) {
        const float* const first = m_src.plane(c) + indexOf(m_src, column, row);
        m_out.plane(c)[cell] =
            between(first[0], first[right], first[down], first[down + right], u - column, v - row);
    }
}

} // namespace zre
