#pragma once

#include <array>
#include <string_view>

/// The words of the lines that a drawn path consists of, all in lower case.
namespace zre::script {

/// The curves along which a move runs.
inline constexpr auto kEases = std::to_array<std::string_view>({"linear", "in", "out", "inout"});
/// The kinds of move of a `waypoint`.
inline constexpr auto kMoves =
    std::to_array<std::string_view>({"moveto", "flyto", "flyin", "zoomto", "stay"});
/// The parameters of a `path_start`.
inline constexpr auto kStartNames = std::to_array<std::string_view>(
    {"version", "fps", "x", "y", "zoom", "ease", "roll", "sway", "amp", "period", "hold"});
/// The parameters of a `waypoint`.
inline constexpr auto kWaypointNames = std::to_array<std::string_view>(
    {"x", "y", "move", "frames", "zoom", "warp", "away", "ease", "hold", "roll", "sway_before",
     "amp_before", "period_before", "fps_before", "sway_after", "amp_after", "period_after",
     "fps_after"});

} // namespace zre::script
