#pragma once

#include <cstdint>

namespace zre {

/// The camera of one frame of a flyby. Centre and zoom speak of source pixels; zoom 1 shows one
/// frame size.
struct FlybyCamera
{
    double cx = 0.0;
    double cy = 0.0;
    double zoom = 1.0;
    double warp = 0.0;  ///< depth warp, 0 to 1
    double roll = 0.0;  ///< degrees
    double sway = -1e9; ///< direction of the wiggle, degrees; at or below -1e8 it is inherited
    double amp = -1.0;  ///< amplitude of the wiggle; negative: inherited
    std::int32_t period = -1; ///< of the wiggle, frames; below 2: inherited
    double phase = 0.0;       ///< of the wiggle, radians, 0 up to 2 pi
    std::int32_t fps = 24;
    std::int32_t waypoint = -1; ///< the graphic waypoint it belongs to, from 1; -1 outside a block
    std::int32_t line = 0;      ///< the source line it belongs to, from 1

    bool operator==(const FlybyCamera&) const = default;
};

} // namespace zre
