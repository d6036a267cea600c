#pragma once

#include <vector>

#include "engine/image/image.h"
#include "engine/params/star_erasure.h"
#include "engine/stars/star.h"
#include "engine/stars/star_detect_params.h"

namespace naive {

/// What `zre::detectStars` has to give, to the bit, worked out step by step without regard to time
/// or memory. Blur and sprites are the engine's own, which have references of their own.
void detectStars(const zre::Image& image, std::vector<zre::Star>& stars, zre::Image& starless,
                 const zre::StarDetectParams& params,
                 const std::vector<zre::StarErasure>& erasures);

} // namespace naive
