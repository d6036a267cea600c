#pragma once

#include <vector>

#include "engine/image/image.h"
#include "engine/stars/star.h"

/// The plain form of `zre::drawStarSprites`, for tests and benchmarks: every pixel of a star's
/// neighbourhood asks by the definition where it lies in the sprite. It trusts its records.
namespace naive {

struct SpriteEye
{
    double amount = 20;
    double convergence = 0.5;
    double dirX = 1;
    double dirY = 0;
    double maxShift = 0;
    double zoomGain = 0;
    double centerX = -1;
    double centerY = -1;
    float occlusion = 0;
};

void drawSprites(const std::vector<zre::Star>& stars, zre::Image& image, const SpriteEye& eye,
                 const zre::Image* depthMap);

} // namespace naive
