#pragma once

#include <array>
#include <cstddef>

namespace zre {

/// One way to lay a second depth map over the current one. The row number is the value stored in
/// `depthMapMode` and `depthModelMode`.
struct BlendMode
{
    const char* label; ///< the name in the controls
    float (*blend)(float base, float map);
};

inline constexpr std::array kBlendModes{
    BlendMode{"Normal", [](float, float map) { return map; }},
    BlendMode{"Lighten", [](float base, float map) { return base < map ? map : base; }},
    BlendMode{"Darken", [](float base, float map) { return map < base ? map : base; }},
    BlendMode{"Add",
              [](float base, float map) {
                  const float sum = base + map;
                  return sum < 1.0f ? sum : 1.0f;
              }},
    BlendMode{"Subtract",
              [](float base, float map) {
                  const float difference = base - map;
                  return difference > 0.0f ? difference : 0.0f;
              }},
    BlendMode{"Screen", [](float base, float map) { return 1.0f - (1.0f - map) * (1.0f - base); }},
};

/// The row of a stored mode; a value without a row counts as "Normal".
constexpr std::size_t blendModeRow(int mode)
{
    return mode >= 0 && static_cast<std::size_t>(mode) < kBlendModes.size()
               ? static_cast<std::size_t>(mode)
               : 0;
}

} // namespace zre
