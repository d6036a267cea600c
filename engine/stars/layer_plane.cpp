#include "engine/stars/layer_plane.h"

#include <algorithm>
#include <limits>

#include "engine/image/multiversion.h"

namespace zre {

ZR_KERNEL_STEP float lightOf(float value)
{
    const float bound = value <= std::numeric_limits<float>::max() ? value : 0.0f;
    return bound > 0.0f ? bound : 0.0f;
}

float layerLight(const Image& layer, std::size_t pixel)
{
    float light = 0.0f;
    for (int c = 0; c < layer.channels; ++c)
        light = std::max(light, lightOf(layer.plane(c)[pixel]));
    return light;
}

ZR_MULTIVERSION static void raiseTo(const float* __restrict values, float* __restrict plane,
                                    std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const float light = lightOf(values[i]);
        plane[i] = plane[i] < light ? light : plane[i];
    }
}

std::vector<float> layerPlane(const Image& layer)
{
    constexpr std::size_t kBatch = 4096;
    std::vector<float> plane(layer.pixelCount(), 0.0f);
    for (std::size_t first = 0; first < plane.size(); first += kBatch) {
        const std::size_t count = std::min(kBatch, plane.size() - first);
        for (int c = 0; c < layer.channels; ++c)
            raiseTo(layer.plane(c) + first, plane.data() + first, count);
    }
    return plane;
}

} // namespace zre
