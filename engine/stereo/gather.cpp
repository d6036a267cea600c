#include "engine/stereo/gather.h"

#include "engine/image/multiversion.h"
#include "engine/stereo/lanes.h"

namespace zre {

/// The pixels on a row of cells.
struct Gather::Landed
{
    const std::int32_t* column;
    const std::int32_t* row;
    const float* z;
};

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

struct RowShape
{
    int y;
    int width;
    int height;
};

inline void placeCells(const Warp warp, const RowShape shape, const std::int32_t* __restrict column,
                       const std::int32_t* __restrict row, const float* __restrict z,
                       double* __restrict fu, double* __restrict fv, std::int32_t* __restrict side)
{
    const double y = shape.y;
    const int lastColumn = shape.width - 1;
    const int lastRow = shape.height - 1;
    for (int x = 0; x < shape.width; ++x) {
        const double sx = column[x];
        const double sy = row[x];
        const SourcePoint at = sourcePoint(warp, x, y, sx, sy, z[x]);
        const bool left = at.u < sx;
        const bool up = at.v < sy;
        fu[x] = at.u - (left ? sx - 1.0 : sx);
        fv[x] = at.v - (up ? sy - 1.0 : sy);
        const bool border = (column[x] < 1) | (column[x] >= lastColumn) | (row[x] < 1) |
                            (row[x] >= lastRow) | (at.u >= sx + 1.0) | (at.v >= sy + 1.0);
        side[x] = (left ? kLeft : 0) | (up ? kUp : 0) | (border ? kBorder : 0);
    }
}

ZR_MULTIVERSION void placeRow(const Warp& warp, const RowShape& shape,
                              const std::int32_t* __restrict column,
                              const std::int32_t* __restrict row, const float* __restrict z,
                              double* __restrict fu, double* __restrict fv,
                              std::int32_t* __restrict side)
{
    placeCells(warp, shape, column, row, z, fu, fv, side);
}

/// The same for a warp that only shifts.
ZR_MULTIVERSION void placeShiftedRow(const Warp& callersWarp, const RowShape& shape,
                                     const std::int32_t* __restrict column,
                                     const std::int32_t* __restrict row, const float* __restrict z,
                                     double* __restrict fu, double* __restrict fv,
                                     std::int32_t* __restrict side)
{
    Warp warp = callersWarp;
    warp.zoom = 0.0;
    warp.maxDisparity = 0.0;
    placeCells(warp, shape, column, row, z, fu, fv, side);
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
    const auto width = static_cast<std::size_t>(src.width);
    m_places.fu.resize(width);
    m_places.fv.resize(width);
    m_places.side.resize(width);
}

void Gather::fillRow(const LandingBand& band, int y)
{
    const Landed landed{band.column(y), band.row(y), band.z(y)};
    (onlyShifts(m_warp) ? placeShiftedRow : placeRow)(
        m_warp, {y, m_src.width, m_src.height}, landed.column, landed.row, landed.z,
        m_places.fu.data(), m_places.fv.data(), m_places.side.data());
    for (int x = 0; x < m_src.width;) {
        const int length = runLength(landed, x);
        if (length > 0) {
            fillRun(landed, x, y, length);
            x += length;
            continue;
        }
        for (const int end = std::min(x + kBlock, m_src.width); x < end; ++x)
            fillCell(landed, x, y);
    }
    if (!m_outDepth)
        return;
    float* const depth = m_outDepth->plane(0) + indexOf(m_src, 0, y);
    for (int x = 0; x < m_src.width; ++x)
        depth[x] = landed.column[x] == LandingBand::kHole ? -1.0f : landed.z[x];
}

/// How many cells from `x` on, by whole blocks, show neighbouring pixels away from the border.
int Gather::runLength(const Landed& landed, int x) const
{
    int length = 0;
    for (; x + length + kBlock <= m_src.width; length += kBlock) {
        const int block = x + length;
        const std::int32_t* const side = m_places.side.data() + block;
        if (!straight(landed.column + block) || !level(landed.row + block) ||
            landed.column[block] != landed.column[x] + length ||
            landed.row[block] != landed.row[x] ||
            anyBit((loadInts(side) | loadInts(side + 4)) & kBorder))
            break;
    }
    return length;
}

void Gather::fillRun(const Landed& landed, int x, int y, int length)
{
    const std::size_t source = indexOf(m_src, landed.column[x], landed.row[x]);
    const std::size_t cell = indexOf(m_src, x, y);
    for (int c = 0; c < m_src.channels; ++c)
        sampleRun(m_src.plane(c) + source, m_src.width, length, m_places.fu.data() + x,
                  m_places.fv.data() + x, m_places.side.data() + x, m_out.plane(c) + cell);
}

void Gather::fillCell(const Landed& landed, int x, int y)
{
    const auto i = static_cast<std::size_t>(x);
    const std::size_t cell = indexOf(m_src, x, y);
    const std::int32_t side = m_places.side[i];
    if (landed.column[x] == LandingBand::kHole) {
        for (int c = 0; c < m_src.channels; ++c)
            m_out.plane(c)[cell] = 0.0f;
    } else if (side & kBorder) {
        fillBorderCell(landed, x, y);
    } else {
        const int left = landed.column[x] - ((side & kLeft) ? 1 : 0);
        const int upper = landed.row[x] - ((side & kUp) ? 1 : 0);
        const std::size_t first = indexOf(m_src, left, upper);
        for (int c = 0; c < m_src.channels; ++c)
            m_out.plane(c)[cell] =
                between(m_src.plane(c) + first, 1, static_cast<std::size_t>(m_src.width),
                        m_places.fu[i], m_places.fv[i]);
    }
}

/// A cell that samples at the border of the source, where the last column and row repeat.
void Gather::fillBorderCell(const Landed& landed, int x, int y)
{
    const SourcePoint at = sourcePoint(m_warp, x, y, landed.column[x], landed.row[x], landed.z[x]);
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
