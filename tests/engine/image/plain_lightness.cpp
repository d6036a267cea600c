#include "tests/engine/image/plain_lightness.h"

// What the engine's files include comes first, so that only its own names change.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#define ZR_PLAIN_KERNELS
#define zre zre_plain
#include "engine/image/image.cpp"
#include "engine/image/lightness.cpp"

std::vector<float> plainLightness(const std::vector<float>& samples, int width, int height)
{
    zre::Image src(width, height, 0);
    src.channels = samples.size() == src.pixelCount() ? 1 : 3;
    src.data = samples;
    zre::Image dst;
    zre::getLightness(src, dst);
    return dst.data;
}
