#pragma once

#include <vector>

#include "engine/stereo/landing_band.h"
#include "engine/stereo/warp.h"

namespace zre {

/// Fills rows of the output from the pixels that landed there, sampled bilinearly where the warp
/// would bring the source to the centre of the cell; holes become 0, and -1 in the depth.
class Gather
{
public:
    Gather(const Warp& warp, const Image& src, Image& out, Image* outDepth);

    void fillRow(const LandingBand& band, int y);

    /// Where the cells of a row sample, beside the pixels that landed there.
    struct Places
    {
        std::vector<double> fu; ///< the place between two columns, and two rows
        std::vector<double> fv;
        std::vector<std::int32_t> side; ///< which two they are, as bits
    };

private:
    struct Landed;

    int runLength(const Landed& landed, int x) const;
    void fillRun(const Landed& landed, int x, int y, int length);
    void fillCell(const Landed& landed, int x, int y);
    void fillBorderCell(const Landed& landed, int x, int y);

    Warp m_warp;
    const Image& m_src;
    Image& m_out;
    Image* m_outDepth;
    Places m_places;
};

} // namespace zre
