#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include "engine/stereo/depth_band.h"
#include "engine/stereo/seen_band.h"
#include "engine/stereo/warp.h"

namespace zre {

/// Fills the holes of a warp from the farthest pixel met along the motion, on either side; with 0
/// where none is met. `Band` is a `DepthBand` or a `SeenBand`.
template <typename Band>
class HoleFill
{
public:
    HoleFill(const Warp& warp, Image& out, Image* outDepth);

    /// How many rows above and below a hole the search can touch.
    int rowReach() const { return m_rowReach; }

    /// Fills row `y` from column `left` to before `right`; what lies within `rowReach` of that is
    /// complete in `band` and in the output.
    void fillRow(const Band& band, int y, int left, int right);

private:
    struct Step
    {
        int x;
        int y;
    };

    /// The search to one side along the eye's offset, the same from every cell.
    struct Way
    {
        std::vector<Step> steps;
        /// Where the steps within the image lead from column 0 of the hole's row, in the band and
        /// in a plane of the image.
        std::vector<std::ptrdiff_t> cells;
        std::vector<std::ptrdiff_t> pixels;
        int left = 0; ///< columns it needs on either side
        int right = 0;
    };

    struct Winner
    {
        float z = std::numeric_limits<float>::infinity(); ///< which says that there is none
        std::size_t pixel = 0;
    };

    /// A hole of the row and the cell that it shows, as indices into a plane.
    struct Copy
    {
        std::size_t to;
        std::size_t from;
    };

    bool layWay(double vx, double vy, Way& way) const;
    void aimWay(const Band& band, int y, Way& way) const;

    void listHoles(const Band& band, int y, int left, int right);
    void blacken(int x, int y);
    Winner winnerFor(const Band& band, int x, int y) const;
    Winner searchWays(const Band& band, int x) const;
    void search(const Band& band, int x, int y, double vx, double vy, Winner& winner) const;
    bool visit(const Band& band, double fx, double fy, Winner& winner) const;
    std::size_t pixel(int x, int y) const;

    Warp m_warp;
    Image& m_out;
    Image* m_outDepth;
    double m_offset; ///< length of the eye's offset
    double m_directionX = 0.0;
    double m_directionY = 0.0;
    int m_steps = 0; ///< of the search in each direction
    int m_rowReach = 0;
    bool m_laid = false; ///< the two ways stand, and there is no zoom
    Way m_ahead;
    Way m_back;
    std::vector<int> m_holes; ///< columns of the row's holes, and how many there are
    std::size_t m_holeCount = 0;
    std::vector<Copy> m_copies;
};

} // namespace zre
