#include "tests/engine/stereo/hilly_depth.h"

#include <cmath>
#include <random>

using zre::Image;

namespace zrtest {

Image hillyDepth(int width, int height, double amplitude, unsigned seed)
{
    Image img(width, height, 0);
    std::mt19937 random(seed);
    std::size_t i = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, ++i) {
            const double u = static_cast<double>(x) / width;
            const double v = static_cast<double>(y) / height;
            double d = 0.45 + 0.2 * std::sin(9 * u + 4 * v) * std::cos(7 * v - 2 * u);
            if (std::hypot(u - 0.3, v - 0.4) < 0.12 || (u > 0.6 && v > 0.55 && u + v < 1.5))
                d += 0.3;
            img.data[i] = static_cast<float>(d + amplitude * (random() / 4294967296.0 - 0.5));
        }
    return img;
}

} // namespace zrtest
