#include "engine/stereo/warp.h"

namespace zre {

Warp settled(Warp warp, int width, int height)
{
    if (!std::isfinite(static_cast<float>(warp.convergence)))
        warp.convergence = warp.parallax = warp.zoom = 0.0;
    if (!std::isfinite(warp.parallax) || !std::isfinite(warp.offsetX) ||
        !std::isfinite(warp.offsetY))
        warp.parallax = warp.offsetX = warp.offsetY = 0.0;
    if (!std::isfinite(warp.zoom) || !std::isfinite(warp.centerX) || !std::isfinite(warp.centerY))
        warp.zoom = warp.centerX = warp.centerY = 0.0;
    if (!std::isfinite(warp.maxDisparity))
        warp.maxDisparity = 0.0;
    if (warp.centerX < 0.0)
        warp.centerX = width * 0.5;
    if (warp.centerY < 0.0)
        warp.centerY = height * 0.5;
    return warp;
}

bool warpable(const Image& src, const Image& depth, const Image& out)
{
    return src.usable() && depth.usable() && depth.sameSize(src) && out.sameSize(src) &&
           out.channels == src.channels;
}

void shapeDepth(Image& img, int width, int height)
{
    img.width = width;
    img.height = height;
    img.channels = 1;
    img.colorModel = 0;
    img.data.resize(img.pixelCount());
}

void shapeEye(const Image& src, const Image& depth, Image& eye)
{
    if (!depth.usable() || !depth.sameSize(src)) {
        eye = src;
        return;
    }
    eye.data.resize(src.data.size());
    eye.width = src.width;
    eye.height = src.height;
    eye.channels = src.channels;
    eye.colorModel = src.colorModel;
}

} // namespace zre
