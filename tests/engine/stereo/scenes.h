#pragma once

#include <string>
#include <vector>

#include "engine/image/image.h"

namespace zrtest {

zre::Image flatDepth(int width, int height, float depth);

struct DepthScene
{
    std::string name;
    zre::Image depth;
};

/// Depth maps that stress a warp in different ways: noise, ramps both ways, steps, ties, hills and
/// depths far outside 0 to 1.
std::vector<DepthScene> depthScenes(int width, int height);

} // namespace zrtest
