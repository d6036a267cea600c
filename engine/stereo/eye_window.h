#pragma once

#include <algorithm>

#include "engine/stereo/eye.h"
#include "engine/stereo/warp.h"

namespace zre {

/// The part of `window` that lies in the image; its sides are crossed where none does.
inline EyeWindow boundTo(const Image& image, const EyeWindow& window)
{
    return {std::max(window.left, 0), std::max(window.top, 0), std::min(window.right, image.width),
            std::min(window.bottom, image.height)};
}

/// The rows of `window` of a purely horizontal warp; the arguments are those of
/// `renderEyeHorizontal`.
void renderWindowHorizontal(const Image& src, const Image& depth, Image& out, double parallax,
                            double convergence, double offsetX, double maxDisparity,
                            const EyeWindow& window, const Progress& progress, Image* outDepth);

/// `window` of any other; `warp` holds the arguments of `renderEye2D` as they came.
void renderWindow2D(const Image& src, const Image& depth, Image& out, const Warp& warp, bool splat,
                    const EyeWindow& window, Image* outDepth);

} // namespace zre
