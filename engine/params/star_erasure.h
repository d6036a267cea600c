#pragma once

namespace zre {

/// A small disc over star sprites whose light the user took away.
struct StarErasure
{
    double x = 0.0; ///< centre, image pixels
    double y = 0.0;
    double radius = 0.0;  ///< pixels, full effect inside
    double feather = 0.0; ///< width in pixels of the soft edge outside `radius`
    int mode = 0;         ///< 0 removed, 1 moved to the background, 2 blended into the glow

    bool operator==(const StarErasure&) const = default;
};

} // namespace zre
