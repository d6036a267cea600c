#pragma once

#include <array>

#include "engine/stereo/landing_band.h"
#include "engine/stereo/landing_rows.h"
#include "engine/stereo/lanes.h"
#include "engine/stereo/warp.h"

namespace zre {

/// Fills rows of the output from the pixels that landed there, sampled bilinearly where the warp
/// would bring the source to the centre of the cell. A hole becomes -1 in the depth; in the picture
/// it is left to `HoleFill`.
class Gather
{
public:
    /// Gathers `columns`, which the band holds.
    Gather(const Warp& warp, const Image& src, Image& out, Image* outDepth, const Columns& columns);

    /// Fills row `y`, its depths in `seen`, the row of a `SeenBand`, and empties the row's cells.
    void fillRow(LandingBand& band, int y, float* seen);

private:
    using Cell = LandingBand::Cell;

    void fillChunk(Cell* cells, int x, int size, int y, float* seen);
    void prefetch(int channel, int size) const;
    void fillCell(std::uint32_t code, float depth, int x, int y);

    template <typename T>
    using PerCell = std::array<T, kChunk>;

    Warp m_warp;
    const Image& m_src;
    Image& m_out;
    Image* m_outDepth;
    PixelCode m_code;
    Columns m_columns;
    PerCell<std::uint32_t> m_source; ///< the pixel that landed on a cell
    PerCell<double> m_fu; ///< the place between two columns, and two rows, that a cell samples
    PerCell<double> m_fv;
    PerCell<std::int32_t> m_first; ///< index of the upper left of the four samples
    PerCell<std::int32_t> m_edge;  ///< negative where there are not four
};

} // namespace zre
