#pragma once

#include <vector>

#include "engine/stereo/landing_band.h"
#include "engine/stereo/warp.h"

namespace zre {

/// Lands the pixels of one source row after the other on the rows of a band.
class Scatter
{
public:
    /// `reach` rows on either side of a source row take its pixels; all of them are in `band`.
    Scatter(const Warp& warp, int width, int height, int reach, bool splat);

    void landRow(const float* depth, int y, LandingBand& band);

private:
    void landPixel(int x, int y, LandingBand& band);
    void landWhole(int y, LandingBand& band);
    void spread(int y, LandingBand& band);

    Warp m_warp;
    int m_width;
    int m_height;
    int m_reach;
    bool m_splat;
    std::vector<float> m_depth; ///< finite depths of the row
    std::vector<int> m_column;  ///< nearest cell of each pixel; column `width` is outside
    std::vector<int> m_row;
    std::vector<int> m_cornerColumn; ///< upper left of the four cells a splat covers
    std::vector<int> m_cornerRow;
};

} // namespace zre
