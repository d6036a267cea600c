#pragma once

#include <array>

#include "engine/stereo/landing_band.h"
#include "engine/stereo/lanes.h"
#include "engine/stereo/warp.h"

namespace zre {

/// Fills rows of the output from the pixels that landed there, sampled bilinearly where the warp
/// would bring the source to the centre of the cell. A hole becomes -1 in the depth; in the picture
/// it is left to `HoleFill`.
class Gather
{
public:
    Gather(const Warp& warp, const Image& src, Image& out, Image* outDepth);

    void fillRow(const LandingBand& band, int y);

private:
    /// The pixels that landed on a row of cells, from the first of a chunk on.
    struct Landed
    {
        const std::int32_t* column;
        const std::int32_t* row;
        const float* z;
    };

    void fillChunk(const Landed& landed, int x0, int size, int y);
    int runLength(const Landed& landed, std::size_t i, std::size_t size) const;
    void fillRun(const Landed& landed, std::size_t i, int length, std::size_t cell);
    void fillCell(const Landed& landed, std::size_t i, int x, int y);
    void fillBorderCell(const Landed& landed, std::size_t i, int x, int y);

    template <typename T>
    using PerCell = std::array<T, kChunk>;

    Warp m_warp;
    const Image& m_src;
    Image& m_out;
    Image* m_outDepth;
    PerCell<double> m_fu; ///< the place between two columns, and two rows, that a cell samples
    PerCell<double> m_fv;
    PerCell<std::int32_t> m_side; ///< which two they are, as bits
};

} // namespace zre
