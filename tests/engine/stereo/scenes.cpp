#include "tests/engine/stereo/scenes.h"

#include <cmath>

#include "tests/engine/stereo/hilly_depth.h"
#include "tests/support/testkit.h"

using zre::Image;

namespace zrtest {

Image flatDepth(int width, int height, float depth)
{
    Image img(width, height, 0);
    img.data.assign(img.data.size(), depth);
    return img;
}

static Image mapped(Image img, float (*f)(float))
{
    for (float& v : img.data)
        v = f(v);
    return img;
}

std::vector<DepthScene> depthScenes(int width, int height)
{
    std::vector<DepthScene> scenes;
    scenes.push_back({"noise", noise(width, height, 0, 17)});
    scenes.push_back({"ramp", ramp(width, height)});
    scenes.push_back({"falling ramp", mapped(ramp(width, height), [](float v) { return 1 - v; })});
    scenes.push_back({"steps", mapped(ramp(width, height),
                                      [](float v) { return std::floor(v * 5.99f) * 0.2f; })});
    scenes.push_back({"ties", mapped(noise(width, height, 0, 23),
                                     [](float v) { return std::floor(v * 4) * 0.25f; })});
    scenes.push_back({"sparse", mapped(noise(width, height, 0, 29),
                                       [](float v) { return v > 0.97f ? 1.0f : 0.5f; })});
    scenes.push_back({"hills", hillyDepth(width, height, 0.01, 31)});
    scenes.push_back({"wild", mapped(noise(width, height, 0, 37),
                                     [](float v) { return v < 0.1f ? v * 1e6f : v * 9 - 4; })});
    // Beyond the depth that stands for an empty cell.
    scenes.push_back({"abyss", mapped(noise(width, height, 0, 41),
                                      [](float v) { return v < 0.3f ? -1e31f * v - 1e30f : v; })});
    return scenes;
}

} // namespace zrtest
