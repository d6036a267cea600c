#include "engine/stereo/eye.h"

#include "engine/image/raster.h"
#include "engine/post/post.h"
#include "engine/stereo/eye_window.h"

namespace zre {

void renderEye(const Image& src, const Image& depth, Image& out, double parallax,
               double convergence, double offsetX, double offsetY, double maxDisparity, double zoom,
               double centerX, double centerY, bool splat, Image* outDepth)
{
    renderEyeWindow(src, depth, out, parallax, convergence, offsetX, offsetY, maxDisparity, zoom,
                    centerX, centerY, splat, {0, 0, src.width, src.height}, outDepth);
}

void renderEyeWindow(const Image& src, const Image& depth, Image& out, double parallax,
                     double convergence, double offsetX, double offsetY, double maxDisparity,
                     double zoom, double centerX, double centerY, bool splat,
                     const EyeWindow& window, Image* outDepth)
{
    if (offsetY == 0.0 && zoom == 0.0 && !splat)
        renderWindowHorizontal(src, depth, out, parallax, convergence, offsetX, maxDisparity,
                               window, {}, outDepth);
    else
        renderWindow2D(
            src, depth, out,
            {parallax, convergence, offsetX, offsetY, maxDisparity, zoom, centerX, centerY}, splat,
            window, outDepth);
}

void renderEyes(const Image& src, const Image& depth, const ZRParams& p, Image& left, Image& right,
                const std::vector<Star>* stars, const Progress& progress, const Image* starsImage,
                const Image* starsDepth)
{
    if (!src.usable())
        return;
    left = src;
    right = src;
    const double convergence =
        p.autoConvergence ? medianValue(depth) : static_cast<double>(p.convergence);
    const bool occluded = p.starOcclusion > 0.0f;
    Image leftDepth;
    Image rightDepth;
    const auto warp = [&](Image& eye, Image& eyeDepth, double offsetX, const Progress& share) {
        renderEyeHorizontal(src, depth, eye, p.parallaxAmount, convergence, offsetX, p.maxDisparity,
                            share, occluded ? &eyeDepth : nullptr);
    };
    warp(left, leftDepth, 1.0, subRange(progress, 0.0, 0.5));
    warp(right, rightDepth, -1.0, subRange(progress, 0.5, 1.0));
    const auto finish = [&](Image& eye, const Image& eyeDepth, double offsetX) {
        compositeStarLayer(eye, p.parallaxAmount, convergence, offsetX, 0.0, p.maxDisparity, stars,
                           starsImage, starsDepth, occluded ? &eyeDepth : nullptr, p.starOcclusion);
    };
    finish(left, leftDepth, 1.0);
    finish(right, rightDepth, -1.0);
    applyPost(left, p);
    applyPost(right, p);
}

} // namespace zre
