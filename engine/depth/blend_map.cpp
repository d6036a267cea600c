#include "engine/depth/blend_map.h"

#include <cmath>
#include <utility>

#include "engine/depth/blend_modes.h"
#include "engine/depth/nearest_rows.h"

namespace zre {

using RowBlend = void (*)(float*, const float*, std::size_t, float);

template <std::size_t Mode>
static void blendRow(float* __restrict depth, const float* __restrict map, std::size_t size,
                     float amount)
{
    const float kept = 1.0f - amount;
    for (std::size_t i = 0; i < size; ++i) {
        const float base = depth[i];
        const float other = map[i];
        const float mixed = base * kept + kBlendModes[Mode].blend(base, other) * amount;
        const bool finite = (other - other == 0.0f) & (mixed - mixed == 0.0f);
        depth[i] = finite ? mixed : base;
    }
}

template <std::size_t... Modes>
static constexpr std::array<RowBlend, sizeof...(Modes)> rowBlends(std::index_sequence<Modes...>)
{
    return {blendRow<Modes>...};
}

void blendMap(Image& depth, const Image& map, int mode, float amount)
{
    if (!depth.usable() || !map.usable() || !(amount > 0.0f) || !std::isfinite(amount))
        return;
    static constexpr auto blends = rowBlends(std::make_index_sequence<kBlendModes.size()>());
    const RowBlend blend = blends[blendModeRow(mode)];
    const std::size_t width = static_cast<std::size_t>(depth.width);
    NearestRows rows(map, depth.width, depth.height);
    for (int y = 0; y < depth.height; ++y)
        blend(depth.plane(0) + static_cast<std::size_t>(y) * width, rows.row(y), width, amount);
}

} // namespace zre
