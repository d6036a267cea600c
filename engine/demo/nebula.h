#pragma once

#include "engine/demo/composition.h"
#include "engine/image/image.h"

namespace zre::demo {

/// The nebula as it stands before the camera, without sky, grain and stars.
struct Nebula
{
    Image light;     ///< RGB, 0 up to but below 1
    Image depth;     ///< one channel, 0 to 1; 1 is nearest
    Image clearness; ///< one channel: the share of the light of stars behind it that passes
};

/// Paints the nebula of `scene` on a grid of `width` by `height` points, each `step` pixels of the
/// picture apart.
Nebula paintNebula(const Composition& scene, int width, int height, float step,
                   const Progress& progress);

} // namespace zre::demo
