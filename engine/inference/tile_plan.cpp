#include "engine/inference/tile_plan.h"

#include <algorithm>
#include <cstdint>

namespace zre {

std::vector<TileSpan> planTiles(int length, int tile, int overlap)
{
    std::vector<TileSpan> spans;
    const std::int64_t size = std::max(tile, 1);
    const std::int64_t stride = std::max<std::int64_t>(size - std::max(overlap, 0), 1);
    for (std::int64_t origin = 0; origin < length; origin += stride) {
        spans.push_back({static_cast<int>(origin),
                         static_cast<int>(std::min<std::int64_t>(size, length - origin))});
        if (origin + size >= length)
            break;
    }
    return spans;
}

std::vector<float> tileWeights(int size, int overlap)
{
    std::vector<float> weights(static_cast<std::size_t>(std::max(size, 0)), 1.0f);
    if (size <= 1 || overlap <= 0)
        return weights;
    const float steps = static_cast<float>(overlap) + 1.0f;
    for (int i = 0; i < size; ++i)
        weights[static_cast<std::size_t>(i)] = std::min(
            {1.0f, (static_cast<float>(i) + 1.0f) / steps, static_cast<float>(size - i) / steps});
    return weights;
}

} // namespace zre
