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
    Scatter(const Warp& warp, int width, bool splat, const DepthRange& depths);

    /// Lands source row `y`; all rows of `span`, which are those it may reach, are in `band`.
    void landRow(const float* depth, int y, const RowSpan& span, LandingBand& band);

private:
    void land(std::size_t size, LandingBand::Cell* cells) const;
    void spread(std::size_t size, LandingBand::Cell* cells) const;
    void spreadFar(std::size_t size, LandingBand::Cell* cells) const;

    static constexpr int kAhead = 32; ///< pixels by which a row is asked for before it is needed

    template <typename T>
    using PerPixel = std::array<T, kChunk + kAhead>;

    Warp m_warp;
    int m_width;
    bool m_splat;
    bool m_far; ///< some pixels are as far away as an empty cell
    PerPixel<float> m_depth;
    PerPixel<LandingBand::Cell> m_pixel; ///< what the cell becomes that a pixel takes
    PerPixel<std::int32_t> m_nearest;    ///< cell of the band that each pixel is nearest to
    PerPixel<std::int32_t> m_upper;      ///< first of the two cells above it, and below it
    PerPixel<std::int32_t> m_lower{};
};

} // namespace zre
