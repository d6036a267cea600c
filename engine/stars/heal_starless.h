#pragma once

#include <vector>

#include "engine/image/image.h"
#include "engine/stars/star.h"

namespace zre {

/// Makes the base behind the stars what surrounds them, and gives the stars all the light above it.
///
/// `detectStars` reckons the background by a blur in which the stars' own light takes part, so that
/// each star leaves a dim disc with a ring in the base. Here the pixels that sprites cover are
/// filled from the sky about them, coarse to fine (push-pull, Gortler et al. 1996, section 3.4),
/// and each sprite takes over the light of `picture` above that. Where `picture` is not darker than
/// the fill, base and sprites together are `picture` up to rounding.
///
/// Shape:   `stars` and `starless` as `detectStars` made them of `picture`; a star
///          whose sprite does not fit into it is passed over. Erased stars leave the base as it is.
/// Cost:    three planes and a pyramid of a third of the picture.
void healStarless(const Image& picture, std::vector<Star>& stars, Image& starless);

} // namespace zre
