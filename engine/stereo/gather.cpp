#include "engine/stereo/gather.h"

#include "engine/image/multiversion.h"
#include "engine/stereo/lanes.h"

namespace zre {

namespace {

/// Which of its neighbours a cell samples beside the pixel that landed there.
constexpr std::int32_t kLeft = 1;   ///< the column before, not the one behind
constexpr std::int32_t kUp = 2;     ///< the row above, not the one below
constexpr std::int32_t kBorder = 4; ///< none of these, or beyond the image

struct SourcePoint
{
    double u;
    double v;
};

/// The source position that the warp brings to the centre of cell (`x`, `y`), by the magnification
/// at the pixel (`sx`, `sy`) that landed there, and at most one pixel from it.
inline SourcePoint sourcePoint(const Warp& warp, double x, double y, double sx, double sy, float d)
{
    const Displacement moved = displacement(warp, sx, sy, d);
    double magnification = 1.0;
    if (warp.zoom != 0.0) {
        const double grown = 1.0 + zoomGrowth(warp, d);
        magnification = grown > 1e-6 ? grown : 1.0;
    }
    const double u = sx + (x - (sx + moved.x)) / magnification;
    const double v = sy + (y - (sy + moved.y)) / magnification;
    const double uRaised = u < sx - 1.0 ? sx - 1.0 : u;
    const double vRaised = v < sy - 1.0 ? sy - 1.0 : v;
    return {uRaised > sx + 1.0 ? sx + 1.0 : uRaised, vRaised > sy + 1.0 ? sy + 1.0 : vRaised};
}

/// Some cells of a row of the output, and its shape.
struct Cells
{
    int x;
    int size;
    int y;
    int width;
    int height;
};

ZR_MULTIVERSION void placeRow(const Warp& callersWarp, const Cells& callersCells,
                              const std::int32_t* __restrict column,
                              const std::int32_t* __restrict row, const float* __restrict z,
                              double* __restrict fu, double* __restrict fv,
                              std::int32_t* __restrict side)
{
    const Warp warp = callersWarp;
    const Cells cells = callersCells;
    const double y = cells.y;
    const int lastColumn = cells.width - 1;
    const int lastRow = cells.height - 1;
    for (int i = 0; i < cells.size; ++i) {
        const double sx = column[i];
        const double sy = row[i];
        const SourcePoint at = sourcePoint(warp, cells.x + i, y, sx, sy, z[i]);
        const bool left = at.u < sx;
        const bool up = at.v < sy;
        fu[i] = at.u - (left ? sx - 1.0 : sx);
        fv[i] = at.v - (up ? sy - 1.0 : sy);
        const bool border = (column[i] < 1) | (column[i] >= lastColumn) | (row[i] < 1) |
                            (row[i] >= lastRow) | (at.u >= sx + 1.0) | (at.v >= sy + 1.0);
        side[i] = (left ? kLeft : 0) | (up ? kUp : 0) | (border ? kBorder : 0);
    }
}

ZR_MULTIVERSION void sampleRun(const float* __restrict middle, std::ptrdiff_t stride, int length,
                               const double* __restrict fu, const double* __restrict fv,
                               const std::int32_t* __restrict side, float* __restrict out)
{
    const float* const above = middle - stride;
    const float* const below = middle + stride;
    for (int k = 0; k < length; ++k) {
        const float above0 = above[k - 1], above1 = above[k], above2 = above[k + 1];
        const float middle0 = middle[k - 1], middle1 = middle[k], middle2 = middle[k + 1];
        const float below0 = below[k - 1], below1 = below[k], below2 = below[k + 1];
        const bool left = (side[k] & kLeft) != 0;
        const bool up = (side[k] & kUp) != 0;
        const float top0 = up ? above0 : middle0;
        const float top1 = up ? above1 : middle1;
        const float top2 = up ? above2 : middle2;
        const float bottom0 = up ? middle0 : below0;
        const float bottom1 = up ? middle1 : below1;
        const float bottom2 = up ? middle2 : below2;
        const double a = left ? top0 : top1;
        const double b = left ? top1 : top2;
        const double c = left ? bottom0 : bottom1;
        const double e = left ? bottom1 : bottom2;
        const double top = a + (b - a) * fu[k];
        const double bottom = c + (e - c) * fu[k];
        out[k] = static_cast<float>(top + (bottom - top) * fv[k]);
    }
}

/// The same for a run whose cells all sample on the same side; `first` is the upper left sample.
ZR_MULTIVERSION void sampleEvenRun(const float* __restrict first, std::ptrdiff_t stride, int length,
                                   const double* __restrict fu, const double* __restrict fv,
                                   float* __restrict out)
{
    const float* const below = first + stride;
    for (int k = 0; k < length; ++k) {
        const double a = first[k];
        const double b = first[k + 1];
        const double c = below[k];
        const double e = below[k + 1];
        const double top = a + (b - a) * fu[k];
        const double bottom = c + (e - c) * fu[k];
        out[k] = static_cast<float>(top + (bottom - top) * fv[k]);
    }
}

inline float between(const float* first, std::size_t right, std::size_t down, double fu, double fv)
{
    const double a = first[0];
    const double b = first[right];
    const double c = first[down];
    const double e = first[down + right];
    const double top = a + (b - a) * fu;
    const double bottom = c + (e - c) * fu;
    return static_cast<float>(top + (bottom - top) * fv);
}

std::size_t indexOf(const Image& img, int x, int y)
{
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(img.width) +
           static_cast<std::size_t>(x);
}

} // namespace

Gather::Gather(const Warp& warp, const Image& src, Image& out, Image* outDepth)
    : m_warp(warp)
    , m_src(src)
    , m_out(out)
    , m_outDepth(outDepth)
{
}

void Gather::fillRow(const LandingBand& band, int y)
{
    const std::int32_t* const column = band.column(y);
    const float* const z = band.z(y);
    for (int x = 0; x < m_src.width; x += kChunk)
        fillChunk({column + x, band.row(y) + x, z + x}, x, std::min(kChunk, m_src.width - x), y);
    if (!m_outDepth)
        return;
    float* const depth = m_outDepth->plane(0) + indexOf(m_src, 0, y);
    for (int x = 0; x < m_src.width; ++x)
        depth[x] = column[x] == LandingBand::kHole ? -1.0f : z[x];
}

void Gather::fillChunk(const Landed& landed, int x0, int size, int y)
{
    placeRow(m_warp, {x0, size, y, m_src.width, m_src.height}, landed.column, landed.row, landed.z,
             m_fu.data(), m_fv.data(), m_side.data());
    const auto end = static_cast<std::size_t>(size);
    for (std::size_t i = 0; i < end;) {
        const int x = x0 + static_cast<int>(i);
        const int length = runLength(landed, i, end);
        if (length > 0) {
            fillRun(landed, i, length, indexOf(m_src, x, y));
            i += static_cast<std::size_t>(length);
            continue;
        }
        const std::size_t blockEnd = std::min(i + kBlock, end);
        for (int k = 0; i < blockEnd; ++i, ++k)
            fillCell(landed, i, x + k, y);
    }
}

/// How many cells from `i` on, by whole blocks, show neighbouring pixels away from the border, and
/// either all sample on the same side or, by blocks, do not.
int Gather::runLength(const Landed& landed, std::size_t i, std::size_t size) const
{
    const bool even = i + kBlock <= size && level(m_side.data() + i);
    std::size_t block = i;
    for (; block + kBlock <= size; block += kBlock) {
        const std::int32_t* const side = m_side.data() + block;
        const auto length = static_cast<std::int32_t>(block - i);
        if (!straight(landed.column + block) || !level(landed.row + block) ||
            landed.column[block] != landed.column[i] + length ||
            landed.row[block] != landed.row[i] || level(side) != even ||
            (even && *side != m_side[i]) || anyBit((loadInts(side) | loadInts(side + 4)) & kBorder))
            break;
    }
    return static_cast<int>(block - i);
}

void Gather::fillRun(const Landed& landed, std::size_t i, int length, std::size_t cell)
{
    const std::size_t source = indexOf(m_src, landed.column[i], landed.row[i]);
    const std::int32_t side = m_side[i];
    const bool even = level(m_side.data() + i);
    for (int c = 0; c < m_src.channels; ++c) {
        const float* const pixel = m_src.plane(c) + source;
        float* const out = m_out.plane(c) + cell;
        if (even)
            sampleEvenRun(pixel - ((side & kLeft) ? 1 : 0) - ((side & kUp) ? m_src.width : 0),
                          m_src.width, length, m_fu.data() + i, m_fv.data() + i, out);
        else
            sampleRun(pixel, m_src.width, length, m_fu.data() + i, m_fv.data() + i,
                      m_side.data() + i, out);
    }
}

void Gather::fillCell(const Landed& landed, std::size_t i, int x, int y)
{
    const std::size_t cell = indexOf(m_src, x, y);
    const std::int32_t side = m_side[i];
    if (landed.column[i] == LandingBand::kHole)
        return;
    if (side & kBorder) {
        fillBorderCell(landed, i, x, y);
    } else {
        const int left = landed.column[i] - ((side & kLeft) ? 1 : 0);
        const int upper = landed.row[i] - ((side & kUp) ? 1 : 0);
        const std::size_t first = indexOf(m_src, left, upper);
        for (int c = 0; c < m_src.channels; ++c)
            m_out.plane(c)[cell] = between(m_src.plane(c) + first, 1,
                                           static_cast<std::size_t>(m_src.width), m_fu[i], m_fv[i]);
    }
}

/// A cell that samples at the border of the source, where the last column and row repeat.
void Gather::fillBorderCell(const Landed& landed, std::size_t i, int x, int y)
{
    const SourcePoint at = sourcePoint(m_warp, x, y, landed.column[i], landed.row[i], landed.z[i]);
    const double u = std::clamp(at.u, 0.0, m_src.width - 1.0);
    const double v = std::clamp(at.v, 0.0, m_src.height - 1.0);
    const int column = static_cast<int>(u);
    const int row = static_cast<int>(v);
    const std::size_t right = column < m_src.width - 1 ? 1 : 0;
    const std::size_t down = row < m_src.height - 1 ? static_cast<std::size_t>(m_src.width) : 0;
    for (int c = 0; c < m_src.channels; ++c)
        m_out.plane(c)[indexOf(m_src, x, y)] =
            between(m_src.plane(c) + indexOf(m_src, column, row), right, down, u - column, v - row);
}

} // namespace zre
