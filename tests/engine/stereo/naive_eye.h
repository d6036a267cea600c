#pragma once

#include "engine/image/image.h"

/// The eye warps and the anaglyph written the obvious way, pixel by pixel: what the tests compare
/// with bit for bit, and the benchmarks in time.
namespace naive {

struct Eye
{
    double parallax = 20.0;
    double convergence = 0.5;
    double offsetX = 1.0;
    double offsetY = 0.0;
    double maxDisparity = 0.0;
    double zoom = 0.0;
    double centerX = -1.0;
    double centerY = -1.0;
    bool splat = false;
};

/// `out` and `outDepth` take their shapes from `src`. All arguments are finite.
void renderHorizontal(const zre::Image& src, const zre::Image& depth, const Eye& eye,
                      zre::Image& out, zre::Image& outDepth);
void render2D(const zre::Image& src, const zre::Image& depth, const Eye& eye, zre::Image& out,
              zre::Image& outDepth);
void makeAnaglyph(const zre::Image& left, const zre::Image& right, zre::Image& out, int mode,
                  double gainR, double gainG, double gainB);

} // namespace naive
