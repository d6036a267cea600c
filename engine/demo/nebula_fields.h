#pragma once

#include "engine/demo/composition.h"
#include "engine/image/image.h"

namespace zre::demo {

/// What the nebula consists of, on its grid, before light is reckoned.
struct NebulaFields
{
    Image hydrogen; ///< strength of the red light
    Image oxygen;   ///< of the blue-green light
    Image presence; ///< of the glowing wall, 0 to 1
    Image lanes;    ///< optical depth of the dust lanes in the middle distance
    Image cloud;    ///< signed distance into the cloud in front, units; positive inside

    NebulaFields(int width, int height)
        : hydrogen(width, height, 0)
        , oxygen(hydrogen)
        , presence(hydrogen)
        , lanes(hydrogen)
        , cloud(hydrogen)
    {
    }
};

/// Grows the fields of `scene` on a grid of `width` by `height` points, each `step` pixels apart.
NebulaFields growFields(const Composition& scene, int width, int height, float step,
                        const Progress& progress);

} // namespace zre::demo
