#pragma once

#include <cstdint>
#include <vector>

#include "engine/astro/wcs.h"
#include "engine/image/image.h"

namespace zre {

/// A star of the built-in scene, as it was painted.
struct DemoStar
{
    double x = 0.0; ///< pixel index coordinates: a value's position is its integer index
    double y = 0.0;
    float peak = 0.0f;  ///< of the brightest channel
    float sigma = 0.0f; ///< of the core, pixels
    float depth = 0.0f;
    float r = 0.0f; ///< colour, the brightest channel is 1
    float g = 0.0f;
    float b = 0.0f;
};

struct DemoSceneOptions
{
    int width = 1600;
    int height = 1067;
    std::uint64_t seed = 1;
    int stars = -1; ///< at most 2000000; below 0: as many as suit the size
};

/// The program's own photograph: an emission nebula with dust lanes and ridges, a coloured star
/// field with halos and a cluster, and the truth behind it.
struct DemoScene
{
    Image picture;  ///< RGB, 0 to 1, display-referred
    Image starless; ///< the same without stars
    Image depth;    ///< true depth of the nebula, one channel
    std::vector<DemoStar> stars;
    Wcs wcs;
};

/// Paints the scene from its seed: the same options give the same bits on every machine. Sizes are
/// bound to 16 to 32768 a side. `progress` as in `image.h`.
DemoScene makeDemoScene(const DemoSceneOptions& options, const Progress& progress = {});

} // namespace zre
