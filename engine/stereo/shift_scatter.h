#pragma once

#include "engine/stereo/depth_band.h"
#include "engine/stereo/warp.h"

namespace zre {

/// Lands the pixels of one source row after the other on the rows of a band, under a warp without
/// zoom and splat.
class ShiftScatter
{
public:
    /// `reach` rows on either side of a source row take its pixels; all of them are in the band.
    ShiftScatter(const Warp& warp, int width, int height, int reach)
        : m_warp(warp)
        , m_width(width)
        , m_height(height)
        , m_reach(reach)
    {
    }

    void landRow(const float* depth, int y, DepthBand& band) const;

private:
    Warp m_warp;
    int m_width;
    int m_height;
    int m_reach;
};

} // namespace zre
