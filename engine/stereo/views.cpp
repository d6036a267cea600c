#include "engine/stereo/views.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "engine/image/raster.h"
#include "engine/post/post.h"
#include "engine/stereo/eye.h"
#include "engine/stereo/warp.h"

namespace zre {

namespace {

/// Copies `plane` of `eye` into a plane of `out` with its corner at (`x0`, `y0`).
void placePlane(const Image& eye, int plane, Image& out, int outPlane, int x0, int y0)
{
    for (int y = 0; y < eye.height; ++y) {
        const float* const from =
            eye.plane(plane) + static_cast<std::size_t>(y) * static_cast<std::size_t>(eye.width);
        std::copy_n(from, eye.width,
                    out.plane(outPlane) +
                        static_cast<std::size_t>(y0 + y) * static_cast<std::size_t>(out.width) +
                        static_cast<std::size_t>(x0));
    }
}

void placeEye(const Image& eye, Image& out, int x0, int y0)
{
    for (int c = 0; c < out.channels; ++c)
        placePlane(eye, std::min(eye.channels - 1, c), out, c, x0, y0);
}

bool canDouble(int side)
{
    return side <= std::numeric_limits<int>::max() / 2;
}

struct EyePosition
{
    double x;
    double y;
};

EyePosition wigglePosition(int frame, int frames, double amplitude, const ZRParams& p)
{
    const double phase = frames < 1 ? 0.0 : frame * 6.283185307179586 / frames;
    const double sweep = std::sin(phase) * amplitude;
    EyePosition at{};
    if (p.wiggleCircular) {
        at = {std::cos(phase) * amplitude, sweep};
    } else {
        const double angle = p.wigglePathAngle * 3.141592653589793 / 180.0;
        at = {std::cos(angle) * sweep, std::sin(angle) * sweep};
    }
    if (p.swapEyes)
        at = {-at.x, -at.y};
    return at;
}

} // namespace

void renderAnaglyph(const Image& src, const Image& depth, const ZRParams& p, Image& out,
                    const std::vector<Star>* stars, const Progress& progress,
                    const Image* starsImage, const Image* starsDepth, double gainR, double gainG,
                    double gainB)
{
    Image left;
    Image right;
    renderEyes(src, depth, p, left, right, stars, progress, starsImage, starsDepth);
    if (p.swapEyes)
        std::swap(left, right);
    makeAnaglyph(left, right, out, p.anaglyphMode, gainR, gainG, gainB);
}

void renderSideBySide(const Image& src, const Image& depth, const ZRParams& p, Image& out,
                      const std::vector<Star>* stars, const Progress& progress,
                      const Image* starsImage, const Image* starsDepth)
{
    if (!src.usable() || !canDouble(src.width))
        return;
    Image left;
    Image right;
    renderEyes(src, depth, p, left, right, stars, progress, starsImage, starsDepth);
    if (p.swapEyes)
        std::swap(left, right);
    out = Image(2 * src.width, src.height, src.channels < 3 ? 0 : 1);
    placeEye(left, out, 0, 0);
    placeEye(right, out, src.width, 0);
}

void packEyes(const Image& a, const Image& b, Image& out, bool sideBySide, int eyeWidth,
              int eyeHeight)
{
    if (!a.usable() || !b.usable() || eyeWidth < 1 || eyeHeight < 1 || !canDouble(eyeWidth) ||
        !canDouble(eyeHeight))
        return;
    Image packed(sideBySide ? 2 * eyeWidth : eyeWidth, sideBySide ? eyeHeight : 2 * eyeHeight, 1);
    const auto place = [&](const Image& eye, int x0, int y0) {
        if (eye.width == eyeWidth && eye.height == eyeHeight) {
            placeEye(eye, packed, x0, y0);
            return;
        }
        Image resampled;
        areaResample(eye, eyeWidth, eyeHeight, resampled);
        placeEye(resampled, packed, x0, y0);
    };
    place(a, 0, 0);
    place(b, sideBySide ? eyeWidth : 0, sideBySide ? 0 : eyeHeight);
    out = std::move(packed);
}

void renderWiggleFrame(const Image& src, const Image& depth, int frame, int frames,
                       double amplitude, double convergence, const ZRParams& p, Image& out,
                       const std::vector<Star>* stars, const Image* starsImage,
                       const Image* starsDepth, double baseOffset)
{
    if (!src.usable())
        return;
    EyePosition at = wigglePosition(frame, frames, amplitude, p);
    at.x += baseOffset;
    shapeEye(src, depth, out);
    const bool occluded = p.starOcclusion > 0.0f;
    Image sceneDepth;
    renderEye(src, depth, out, p.parallaxAmount, convergence, at.x, at.y, p.maxDisparity, 0.0, -1.0,
              -1.0, false, occluded ? &sceneDepth : nullptr);
    compositeStarLayer(out, p.parallaxAmount, convergence, at.x, at.y, p.maxDisparity, stars,
                       starsImage, starsDepth, occluded ? &sceneDepth : nullptr, p.starOcclusion);
    applyPost(out, p);
}

} // namespace zre
