#pragma once

#include <array>

#include "engine/stereo/landing_band.h"
#include "engine/stereo/lanes.h"
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
    /// Some pixels of a source row, and the rows that they may land on.
    struct Chunk
    {
        int x;
        int size;
        int y;
        int firstRow;
        int endRow;
    };

    void landPixel(std::size_t i, int x, int y, const LandingBand& band,
                   const LandingBand::Planes& planes) const;
    void landWhole(const Chunk& chunk, LandingBand& band) const;
    void spread(const Chunk& chunk, LandingBand& band) const;

    template <typename T>
    using PerPixel = std::array<T, kChunk>;

    Warp m_warp;
    int m_width;
    int m_height;
    int m_reach;
    bool m_splat;
    PerPixel<float> m_depth; ///< finite depths of the chunk
    PerPixel<int> m_column;  ///< nearest cell of each pixel; column `width` is outside
    PerPixel<int> m_row;
    PerPixel<int> m_cornerColumn; ///< upper left of the four cells a splat covers
    PerPixel<int> m_cornerRow;
};

} // namespace zre
