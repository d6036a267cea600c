#pragma once

#include <vector>

#include "engine/image/image.h"
#include "engine/stars/star.h"

namespace zre {

/// Where stars stand in depth.
struct StarDepthParams
{
    int mode = 2; ///< 0 flat, 1 by brightness, 2 scattered; 3, real distances, is not done here
    float plane = 0.9f;      ///< depth plane of the stars
    float range = 0.6f;      ///< depth they span around it
    float floatation = 1.0f; ///< 0 leaves them at the scene's depth, 1 puts them on the plane
    float pop = 0.2f;        ///< lift of all stars toward the viewer, 0 to 1
    int maxRendered = 0;     ///< only this many of the brightest are drawn; below 1 all
};

/// Gives every star its depth; those that are erased or beyond `maxRendered` get -1 and are not
/// drawn. The scattering depends on a star's index alone. An unusable map changes nothing.
void assignStarDepths(const Image& depthMap, std::vector<Star>& stars,
                      const StarDepthParams& params);

/// Gives every star the scene's depth where it stands, lifted by `lift` of what is left to 1;
/// erased stars get -1.
void assignStarDepths(const Image& depthMap, std::vector<Star>& stars, double lift);

} // namespace zre
