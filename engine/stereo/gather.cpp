#include "engine/stereo/gather.h"

#include <algorithm>

#include "engine/image/multiversion.h"
#include "engine/stereo/sample_windows.h"
#include "engine/stereo/seen_band.h"

namespace zre {

namespace {

using Cell = LandingBand::Cell;

struct SourcePoint
{
    double u;
    double v;
};

/// The source position that the warp brings to the centre of cell (`x`, `y`), by the magnification
/// at the pixel (`sx`, `sy`) that landed there; at most one pixel from it and in the image, of
/// which
/// (`right`, `bottom`) is the last pixel.
ZR_KERNEL_STEP SourcePoint sourcePoint(const Warp& warp, bool clamped, double x, double y,
                                       double sx, double sy, float d, double right, double bottom)
{
    const Displacement moved = zoomedDisplacement(warp, clamped, sx, sy, d);
    const double grown = 1.0 + zoomGrowth(warp, d);
    const double magnification = grown > 1e-6 ? grown : 1.0;
    const double u = sx + (x - (sx + moved.x)) / magnification;
    const double v = sy + (y - (sy + moved.y)) / magnification;
    const auto bind = [](double value, double low, double high) {
        const double raised = value > low ? value : low;
        return raised < high ? raised : high;
    };
    return {bind(bind(u, sx - 1.0, sx + 1.0), 0.0, right),
            bind(bind(v, sy - 1.0, sy + 1.0), 0.0, bottom)};
}

/// Some cells of a row of the output, and its shape.
struct Cells
{
    int x;
    int size;
    int y;
    int width;
    int height;
    PixelCode code;
};

/// What landed on some cells.
struct Landed
{
    std::uint32_t source[kChunk];
    std::int32_t order[kChunk];
};

/// Empties the cells. Apart from the rest, because the compiler makes no vectors of a word taken to
/// pieces.
ZR_KERNEL_STEP void unpack(Cell* __restrict cells, int size, Landed& landed,
                           std::uint32_t* __restrict source)
{
    for (int i = 0; i < size; ++i) {
        const Cell cell = cells[i];
        cells[i] = LandingBand::kEmpty;
        landed.source[i] = source[i] = LandingBand::code(cell);
        landed.order[i] = LandingBand::order(cell);
    }
}

struct Places
{
    double* __restrict fu;
    double* __restrict fv;
    std::int32_t* __restrict first;
    std::int32_t* __restrict edge;
    float* __restrict seen;
    std::uint32_t* __restrict source;
};

/// An empty cell gets any place in the image.
ZR_KERNEL_STEP void placeAll(const Warp& callersWarp, bool clamped, const Cells& callersCells,
                             Cell* callersLanded, const Places& places)
{
    const Warp warp = callersWarp;
    const Cells cells = callersCells;
    const auto [fu, fv, first, edge, seen, unused] = places;
    Landed landed;
    unpack(callersLanded, cells.size, landed, places.source);
    const double y = cells.y;
    const double right = cells.width - 1;
    const double bottom = cells.height - 1;
    for (int i = 0; i < cells.size; ++i) {
        const std::uint32_t source = landed.source[i];
        const float z = LandingBand::depth(landed.order[i]);
        const int sx = cells.code.column(source);
        const int sy = cells.code.row(source);
        const SourcePoint at = sourcePoint(warp, clamped, cells.x + i, y, sx, sy, z, right, bottom);
        const auto column = static_cast<std::int32_t>(at.u);
        const auto row = static_cast<std::int32_t>(at.v);
        const std::int32_t lastColumn = cells.width - 2;
        const std::int32_t lastRow = cells.height - 2;
        fu[i] = at.u - column;
        fv[i] = at.v - row;
        first[i] = (row < lastRow ? row : lastRow) * cells.width +
                   (column < lastColumn ? column : lastColumn);
        edge[i] = (lastColumn - column) | (lastRow - row);
        seen[i] = source == LandingBand::kNoCode ? SeenBand::kHole : z;
    }
}

ZR_MULTIVERSION_512 void placeFree(const Warp& warp, const Cells& cells, Cell* landed,
                                   const Places& places)
{
    placeAll(warp, false, cells, landed, places);
}

ZR_MULTIVERSION_512 void placeClamped(const Warp& warp, const Cells& cells, Cell* landed,
                                      const Places& places)
{
    placeAll(warp, true, cells, landed, places);
}

ZR_MULTIVERSION void copyDepths(const float* __restrict seen, int size, float* __restrict depth)
{
    for (int i = 0; i < size; ++i)
        depth[i] = seen[i] == SeenBand::kHole ? -1.0f : seen[i];
}

ZR_MULTIVERSION bool anyNegative(const std::int32_t* values, int size)
{
    std::int32_t all = 0;
    for (int i = 0; i < size; ++i)
        all |= values[i];
    return all < 0;
}

std::size_t indexOf(const Image& img, int x, int y)
{
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(img.width) +
           static_cast<std::size_t>(x);
}

} // namespace

Gather::Gather(const Warp& warp, const Image& src, Image& out, Image* outDepth,
               const Columns& columns)
    : m_warp(warp)
    , m_src(src)
    , m_out(out)
    , m_outDepth(outDepth)
    , m_code(src.width)
    , m_columns(columns)
{
}

void Gather::fillRow(LandingBand& band, int y, float* seen)
{
    Cell* const cells = band.row(y) - m_columns.first;
    float* const depths = seen - m_columns.first;
    for (int x = m_columns.first; x < m_columns.end; x += kChunk)
        fillChunk(cells + x, x, std::min(kChunk, m_columns.end - x), y, depths + x);
    if (m_outDepth)
        copyDepths(seen, m_columns.end - m_columns.first,
                   m_outDepth->plane(0) + indexOf(m_src, m_columns.first, y));
}

void Gather::fillChunk(Cell* cells, int x, int size, int y, float* seen)
{
    (m_warp.maxDisparity > 0.0 ? placeClamped : placeFree)(
        m_warp, {x, size, y, m_src.width, m_src.height, m_code}, cells,
        {m_fu.data(), m_fv.data(), m_first.data(), m_edge.data(), seen, m_source.data()});
    const bool narrow = m_src.width < 2 || m_src.height < 2;
    if (!narrow) {
        for (int c = 0; c < m_src.channels; ++c)
            prefetch(c, size);
        sampleCells(m_src, {m_first.data(), m_fu.data(), m_fv.data(), size}, m_out,
                    indexOf(m_out, x, y));
        if (!anyNegative(m_edge.data(), size))
            return;
    }
    for (int i = 0; i < size; ++i) {
        const auto at = static_cast<std::size_t>(i);
        if ((narrow || m_edge[at] < 0) && m_source[at] != LandingBand::kNoCode)
            fillCell(m_source[at], seen[i], x + i, y);
    }
}

/// Asks for the samples in a plane below the cells', which the next rows need.
void Gather::prefetch(int channel, int size) const
{
    constexpr int kSamplesInLine = 16;
    constexpr std::ptrdiff_t kRowsAhead = 3;
    const float* const later = m_src.plane(channel) + kRowsAhead * m_src.width;
    for (int i = 0; i < size; i += kSamplesInLine)
        __builtin_prefetch(later + m_first[static_cast<std::size_t>(i)], 0, 2);
}

/// Fills a cell wherever it samples; the last column and row repeat.
void Gather::fillCell(std::uint32_t code, float depth, int x, int y)
{
    const int width = m_src.width;
    const SourcePoint at = sourcePoint(m_warp, true, x, y, m_code.column(code), m_code.row(code),
                                       depth, width - 1, m_src.height - 1);
    const int column = static_cast<int>(at.u);
    const int row = static_cast<int>(at.v);
    const std::size_t right = column < width - 1 ? 1 : 0;
    const std::size_t down = row < m_src.height - 1 ? static_cast<std::size_t>(width) : 0;
    const double fu = at.u - column;
    const double fv = at.v - row;
    for (int c = 0; c < m_src.channels; ++c) {
        const float* const first = m_src.plane(c) + indexOf(m_src, column, row);
        const double a = first[0];
        const double b = first[right];
        const double lower = first[down];
        const double e = first[down + right];
        const double top = a + (b - a) * fu;
        const double bottom = lower + (e - lower) * fu;
        m_out.plane(c)[indexOf(m_src, x, y)] = static_cast<float>(top + (bottom - top) * fv);
    }
}

} // namespace zre
