#pragma once

#include <array>

#include "engine/stereo/landing_band.h"
#include "engine/stereo/landing_rows.h"
#include "engine/stereo/lanes.h"
#include "engine/stereo/warp.h"

namespace zre {

/// Lands the pixels of one source row after the other on the rows of a band.
class Scatter
{
public:
    /// Lands the columns `from` of an image of that width on the columns `onto`.
    Scatter(const Warp& warp, int width, const Columns& from, const Columns& onto, bool splat);

    /// Lands source row `y`; all rows of `span`, which are those it may reach, are in `band`.
    void landRow(const float* depth, int y, const RowSpan& span, LandingBand& band);

private:
    static constexpr int kAimed = 128; ///< pixels of a chunk

    /// Where the pixels of a chunk are to land.
    struct Aims
    {
        template <typename T>
        using PerPixel = std::array<T, kAimed>;

        int size = 0;
        PerPixel<LandingBand::Cell> pixel; ///< what the cell becomes that a pixel takes
        PerPixel<std::int32_t> nearest;    ///< cell of the band that each pixel is nearest to
        PerPixel<std::int32_t> across;     ///< the cell above or below it that is next nearest
        PerPixel<std::int32_t> side;       ///< from there to the other two of the four: 1 or -1
    };

    void aim(const float* depth, int x, int y, const RowSpan& span, LandingBand& band, Aims& aims);
    void land(const Aims& aims, LandingBand::Cell* cells) const;
    void spread(const Aims& aims, LandingBand::Cell* cells) const;

    Warp m_warp;
    Columns m_from;
    Columns m_onto;
    PixelCode m_code;
    bool m_splat;
    std::array<Aims, 2> m_aims;
};

} // namespace zre
