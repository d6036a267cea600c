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

private:
    int runLength(const std::int32_t* source, int x) const;
    bool fillRun(const std::int32_t* source, const float* z, int x, int y, int length);
    void fillCell(std::int32_t source, float z, int x, int y);

    Warp m_warp;
    const Image& m_src;
    Image& m_out;
    Image* m_outDepth;
    std::vector<double> m_fu; ///< where between the samples each cell of a run lies
    std::vector<double> m_fv;
    std::vector<std::int32_t> m_left; ///< set where the left of the two columns is the one before
    std::vector<std::int32_t> m_up;
};

} // namespace zre
