#include <algorithm>
#include <cstdint>

#include "engine/stereo/eye.h"
#include "engine/stereo/warp.h"

namespace zre {

namespace {

constexpr std::int64_t kHole = -1;
constexpr float kNothing = -1e30f;

struct Landing
{
    std::vector<std::int64_t> source;
    std::vector<float> z;
};

bool inside(double column, double row, const Image& img)
{
    return column >= 0.0 && column < img.width && row >= 0.0 && row < img.height;
}

std::size_t cellAt(double column, double row, const Image& img)
{
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(img.width) +
           static_cast<std::size_t>(column);
}

void landPixel(const Image& img, double fx, double fy, bool splat, std::int64_t source, float d,
               Landing& landing)
{
    const double nearestX = std::floor(fx + 0.5);
    const double nearestY = std::floor(fy + 0.5);
    if (inside(nearestX, nearestY, img)) {
        const std::size_t cell = cellAt(nearestX, nearestY, img);
        if (d > landing.z[cell]) {
            landing.source[cell] = source;
            landing.z[cell] = d;
        }
    }
    if (!splat)
        return;
    for (const double row : {std::floor(fy), std::floor(fy) + 1.0})
        for (const double column : {std::floor(fx), std::floor(fx) + 1.0}) {
            if ((column == nearestX && row == nearestY) || !inside(column, row, img))
                continue;
            const std::size_t cell = cellAt(column, row, img);
            if (landing.source[cell] == kHole) {
                landing.source[cell] = source;
                landing.z[cell] = d;
            }
        }
}

void scatter(const Warp& warp, const Image& depth, bool splat, Landing& landing)
{
    std::size_t i = 0;
    for (int y = 0; y < depth.height; ++y)
        for (int x = 0; x < depth.width; ++x, ++i) {
            const float d = finiteDepth(warp, depth.plane(0)[i]);
            const Displacement moved = displacement(warp, x, y, d);
            landPixel(depth, x + moved.x, y + moved.y, splat, static_cast<std::int64_t>(i), d,
                      landing);
        }
}

/// Where bilinear sampling reads: the upper left of four samples, the step to its neighbours
/// (none at the last column or row), and the place between them.
struct SamplePoint
{
    std::size_t first;
    std::size_t right;
    std::size_t down;
    double fu;
    double fv;
};

SamplePoint samplePoint(const Image& src, double u, double v)
{
    u = std::clamp(u, 0.0, src.width - 1.0);
    v = std::clamp(v, 0.0, src.height - 1.0);
    const double column = std::floor(u);
    const double row = std::floor(v);
    return {cellAt(column, row, src), column < src.width - 1.0 ? std::size_t{1} : std::size_t{0},
            row < src.height - 1.0 ? static_cast<std::size_t>(src.width) : std::size_t{0},
            u - column, v - row};
}

float sampleBilinear(const float* plane, const SamplePoint& at)
{
    const double a = plane[at.first];
    const double b = plane[at.first + at.right];
    const double c = plane[at.first + at.down];
    const double e = plane[at.first + at.down + at.right];
    const double top = a + (b - a) * at.fu;
    const double bottom = c + (e - c) * at.fu;
    return static_cast<float>(top + (bottom - top) * at.fv);
}

/// The source position that the warp brings to the centre of the cell, by the magnification there.
SamplePoint sourceOf(const Warp& warp, const Image& src, int x, int y, std::int64_t source, float d)
{
    const auto sx = static_cast<double>(source % src.width);
    const auto sy = static_cast<double>(source / src.width);
    const Displacement moved = displacement(warp, sx, sy, d);
    double magnification = warp.zoom != 0.0 ? 1.0 + zoomGrowth(warp, d) : 1.0;
    if (!(magnification > 1e-6))
        magnification = 1.0;
    const double u = sx + (x - (sx + moved.x)) / magnification;
    const double v = sy + (y - (sy + moved.y)) / magnification;
    return samplePoint(src, std::clamp(u, sx - 1.0, sx + 1.0), std::clamp(v, sy - 1.0, sy + 1.0));
}

void gather(const Warp& warp, const Image& src, const Landing& landing, Image& out)
{
    std::size_t i = 0;
    for (int y = 0; y < src.height; ++y)
        for (int x = 0; x < src.width; ++x, ++i) {
            if (landing.source[i] == kHole) {
                for (int c = 0; c < src.channels; ++c)
                    out.plane(c)[i] = 0.0f;
                continue;
            }
            const SamplePoint at = sourceOf(warp, src, x, y, landing.source[i], landing.z[i]);
            for (int c = 0; c < src.channels; ++c)
                out.plane(c)[i] = sampleBilinear(src.plane(c), at);
        }
}

/// How many steps a hole looks along the motion for a pixel to show.
int searchReach(const Warp& warp, double offset, const Image& img)
{
    double reach = 8.0;
    if (offset > 1e-9)
        reach = std::max(reach, std::ceil(warp.parallax * 0.5 * offset) + 4.0);
    if (warp.zoom != 0.0) {
        const double diagonal =
            std::sqrt(double(img.width) * img.width + double(img.height) * img.height);
        reach = std::max(reach, std::ceil(0.5 * diagonal * std::fabs(warp.zoom)) + 4.0);
    }
    if (warp.maxDisparity > 0.0)
        reach = std::min(reach, std::ceil(warp.maxDisparity * 0.5) + 4.0);
    return static_cast<int>(std::min(reach, 96.0));
}

/// The farthest of the first landed pixels met on either side of (`x`, `y`) along `direction`.
class HoleSearch
{
public:
    HoleSearch(const Image& img, const Landing& landing, int reach)
        : m_img(img)
        , m_landing(landing)
        , m_reach(reach)
    {
    }

    void look(int x, int y, double vx, double vy)
    {
        bool forward = true;
        bool backward = true;
        for (int k = 1; k <= m_reach && (forward || backward); ++k) {
            forward = forward && !visit(x + k * vx, y + k * vy);
            backward = backward && !visit(x - k * vx, y - k * vy);
        }
    }

    std::int64_t winner() const { return m_winner; }

private:
    bool visit(double fx, double fy)
    {
        const double column = std::floor(fx + 0.5);
        const double row = std::floor(fy + 0.5);
        if (!inside(column, row, m_img))
            return false;
        const std::size_t cell = cellAt(column, row, m_img);
        if (m_landing.source[cell] == kHole)
            return false;
        if (m_winner == kHole ||
            m_landing.z[cell] < m_landing.z[static_cast<std::size_t>(m_winner)])
            m_winner = static_cast<std::int64_t>(cell);
        return true;
    }

    const Image& m_img;
    const Landing& m_landing;
    int m_reach;
    std::int64_t m_winner = kHole;
};

void fillHoles(const Warp& warp, const Landing& landing, Image& out, Image* outDepth)
{
    const double offset = std::sqrt(warp.offsetX * warp.offsetX + warp.offsetY * warp.offsetY);
    if (offset <= 1e-9 && warp.zoom == 0.0)
        return;
    const int reach = searchReach(warp, offset, out);
    std::size_t i = 0;
    for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x, ++i) {
            if (landing.source[i] != kHole)
                continue;
            HoleSearch search(out, landing, reach);
            if (offset > 1e-9)
                search.look(x, y, warp.offsetX / offset, warp.offsetY / offset);
            const double outX = x - warp.centerX;
            const double outY = y - warp.centerY;
            const double distance = std::sqrt(outX * outX + outY * outY);
            if (warp.zoom != 0.0 && distance > 1e-6)
                search.look(x, y, outX / distance, outY / distance);
            if (search.winner() == kHole)
                continue;
            const auto winner = static_cast<std::size_t>(search.winner());
            for (int c = 0; c < out.channels; ++c)
                out.plane(c)[i] = out.plane(c)[winner];
            if (outDepth)
                outDepth->plane(0)[i] = landing.z[winner];
        }
}

} // namespace

void renderEye2D(const Image& src, const Image& depth, Image& out, double parallax,
                 double convergence, double offsetX, double offsetY, double maxDisparity,
                 double zoom, double centerX, double centerY, bool splat, Image* outDepth)
{
    if (!warpable(src, depth, out))
        return;
    const Warp warp =
        settled({parallax, convergence, offsetX, offsetY, maxDisparity, zoom, centerX, centerY},
                src.width, src.height);
    Landing landing{std::vector<std::int64_t>(src.pixelCount(), kHole),
                    std::vector<float>(src.pixelCount(), kNothing)};
    scatter(warp, depth, splat, landing);
    gather(warp, src, landing, out);
    if (outDepth) {
        shapeDepth(*outDepth, src.width, src.height);
        for (std::size_t i = 0; i < src.pixelCount(); ++i)
            outDepth->plane(0)[i] = landing.source[i] == kHole ? -1.0f : landing.z[i];
    }
    fillHoles(warp, landing, out, outDepth);
}

} // namespace zre
