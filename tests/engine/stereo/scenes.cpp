#include "tests/engine/stereo/scenes.h"

#include <cmath>

#include "tests/support/testkit.h"

using zre::Image;

namespace zrtest {

Image flatDepth(int width, int height, float depth)
{
    Image img(width, height, 0);
    img.data.assign(img.data.size(), depth);
    return img;
}

Image hillyDepth(int width, int height, double amplitude, unsigned seed)
{
    Image img = noise(width, height, 0, seed);
    std::size_t i = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, ++i) {
            const double u = static_cast<double>(x) / width;
            const double v = static_cast<double>(y) / height;
            double d = 0.45 + 0.2 * std::sin(9 * u + 4 * v) * std::cos(7 * v - 2 * u);
            if (std::hypot(u - 0.3, v - 0.4) < 0.12 || (u > 0.6 && v > 0.55 && u + v < 1.5))
                d += 0.3;
            img.data[i] = static_cast<float>(d + amplitude * (double(img.data[i]) - 0.5));
        }
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
    return scenes;
}

} // namespace zrtest
