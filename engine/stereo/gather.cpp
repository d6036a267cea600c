#include "engine/stereo/gather.h"

#include "engine/image/multiversion.h"
#include "engine/stereo/lanes.h"

namespace zre {

namespace {

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

struct Run
{
    int x;
    int y;
    int sx;
    int sy;
    int length;
};

/// Where each cell of a run samples. False when one lies a whole pixel beyond its own, which the
/// two columns and rows told apart here do not hold.
ZR_MULTIVERSION bool placeRun(const Warp& callersWarp, const Run& callersRun,
                              const float* __restrict z, double* __restrict fu,
                              double* __restrict fv, std::int32_t* __restrict left,
                              std::int32_t* __restrict up)
{
    const Warp warp = callersWarp;
    const Run run = callersRun;
    const double sy = run.sy;
    const double y = run.y;
    std::int32_t beyond = 0;
    for (int k = 0; k < run.length; ++k) {
        const double sx = run.sx + k;
        const SourcePoint at = sourcePoint(warp, run.x + k, y, sx, sy, z[k]);
        const bool isLeft = at.u < sx;
        const bool isUp = at.v < sy;
        fu[k] = at.u - (isLeft ? sx - 1.0 : sx);
        fv[k] = at.v - (isUp ? sy - 1.0 : sy);
        left[k] = isLeft;
        up[k] = isUp;
        beyond |= (at.u >= sx + 1.0) | (at.v >= sy + 1.0);
    }
    return beyond == 0;
}

ZR_MULTIVERSION void sampleRun(const float* __restrict middle, std::ptrdiff_t stride, int length,
                               const double* __restrict fu, const double* __restrict fv,
                               const std::int32_t* __restrict left,
                               const std::int32_t* __restrict up, float* __restrict out)
{
    const float* const above = middle - stride;
    const float* const below = middle + stride;
    for (int k = 0; k < length; ++k) {
        const float above0 = above[k - 1], above1 = above[k], above2 = above[k + 1];
        const float middle0 = middle[k - 1], middle1 = middle[k], middle2 = middle[k + 1];
        const float below0 = below[k - 1], below1 = below[k], below2 = below[k + 1];
        const bool isUp = up[k] != 0;
        const bool isLeft = left[k] != 0;
        const float top0 = isUp ? above0 : middle0;
        const float top1 = isUp ? above1 : middle1;
        const float top2 = isUp ? above2 : middle2;
        const float bottom0 = isUp ? middle0 : below0;
        const float bottom1 = isUp ? middle1 : below1;
        const float bottom2 = isUp ? middle2 : below2;
        const double a = isLeft ? top0 : top1;
        const double b = isLeft ? top1 : top2;
        const double c = isLeft ? bottom0 : bottom1;
        const double e = isLeft ? bottom1 : bottom2;
        const double top = a + (b - a) * fu[k];
        const double bottom = c + (e - c) * fu[k];
        out[k] = static_cast<float>(top + (bottom - top) * fv[k]);
    }
}

} // namespace

Gather::Gather(const Warp& warp, const Image& src, Image& out, Image* outDepth)
    : m_warp(warp)
    , m_src(src)
    , m_out(out)
    , m_outDepth(outDepth)
    , m_fu(static_cast<std::size_t>(src.width))
    , m_fv(static_cast<std::size_t>(src.width))
    , m_left(static_cast<std::size_t>(src.width))
    , m_up(static_cast<std::size_t>(src.width))
{
}

void Gather::fillRow(const LandingBand& band, int y)
{
    const std::int32_t* const source = band.source(y);
    const float* const z = band.z(y);
    for (int x = 0; x < m_src.width;) {
        const int length = runLength(source, x);
        if (length == 0 || !fillRun(source, z, x, y, length)) {
            const int end = std::min(x + std::max(length, kBlock), m_src.width);
            for (int k = x; k < end; ++k)
                fillCell(source[k], z[k], k, y);
            x = end;
        } else {
            x += length;
        }
    }
    if (!m_outDepth)
        return;
    float* const depth =
        m_outDepth->plane(0) + static_cast<std::size_t>(y) * static_cast<std::size_t>(m_src.width);
    for (int x = 0; x < m_src.width; ++x)
        depth[x] = source[x] == LandingBand::kHole ? -1.0f : z[x];
}

/// How many cells from `x` on, by whole blocks, show neighbouring pixels.
int Gather::runLength(const std::int32_t* source, int x) const
{
    int length = 0;
    while (x + length + kBlock <= m_src.width && straight(source + x + length) &&
           source[x + length] == source[x] + length)
        length += kBlock;
    return source[x] == LandingBand::kHole ? 0 : length;
}

/// Fills a run at once. False, with nothing done, when it touches the border of the source or one
/// of its cells samples beyond the neighbourhood of its pixel.
bool Gather::fillRun(const std::int32_t* source, const float* z, int x, int y, int length)
{
    const int width = m_src.width;
    const int sx = source[x] % width;
    const int sy = source[x] / width;
    if (sx < 1 || sx + length > width - 1 || sy < 1 || sy > m_src.height - 2)
        return false;
    if (!placeRun(m_warp, {x, y, sx, sy, length}, z + x, m_fu.data(), m_fv.data(), m_left.data(),
                  m_up.data()))
        return false;
    const std::size_t cell =
        static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    for (int c = 0; c < m_src.channels; ++c)
        sampleRun(m_src.plane(c) + source[x], width, length, m_fu.data(), m_fv.data(),
                  m_left.data(), m_up.data(), m_out.plane(c) + cell);
    return true;
}

void Gather::fillCell(std::int32_t source, float z, int x, int y)
{
    const int width = m_src.width;
    const std::size_t cell =
        static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    if (source == LandingBand::kHole) {
        for (int c = 0; c < m_src.channels; ++c)
            m_out.plane(c)[cell] = 0.0f;
        return;
    }
    const SourcePoint at = sourcePoint(m_warp, x, y, source % width, source / width, z);
    const double u = std::clamp(at.u, 0.0, width - 1.0);
    const double v = std::clamp(at.v, 0.0, m_src.height - 1.0);
    const int column = static_cast<int>(u);
    const int row = static_cast<int>(v);
    const std::size_t first = static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                              static_cast<std::size_t>(column);
    // At the last column or row the neighbour repeats.
    const std::size_t right = first + (column < width - 1 ? 1 : 0);
    const std::size_t down = row < m_src.height - 1 ? static_cast<std::size_t>(width) : 0;
    for (int c = 0; c < m_src.channels; ++c) {
        const float* const plane = m_src.plane(c);
        const double a = plane[first];
        const double b = plane[right];
        const double p = plane[first + down];
        const double q = plane[right + down];
        const double top = a + (b - a) * (u - column);
        const double bottom = p + (q - p) * (u - column);
        m_out.plane(c)[cell] = static_cast<float>(top + (bottom - top) * (v - row));
    }
}

} // namespace zre
