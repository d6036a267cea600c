#pragma once

#include "engine/stereo/landing_band.h"
#include "engine/stereo/warp.h"

namespace zre {

/// Fills the holes of a warp from the farthest pixel met along the motion, on either side.
class HoleFill
{
public:
    HoleFill(const Warp& warp, Image& out, Image* outDepth);

    /// How many rows above and below a hole the search can touch.
    int rowReach() const { return m_rowReach; }

    /// Fills row `y`; the rows of `band` and of the output within `rowReach` are complete.
    void fillRow(const LandingBand& band, int y);

private:
    struct Winner;

    void fill(const LandingBand& band, int x, int y);
    void search(const LandingBand& band, int x, int y, double vx, double vy, Winner& winner) const;
    bool visit(const LandingBand& band, double fx, double fy, Winner& winner) const;

    Warp m_warp;
    Image& m_out;
    Image* m_outDepth;
    double m_offset; ///< length of the eye's offset
    double m_directionX = 0.0;
    double m_directionY = 0.0;
    int m_steps = 0; ///< of the search in each direction
    int m_rowReach = 0;
};

} // namespace zre
