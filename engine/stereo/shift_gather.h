#pragma once

#include <array>

#include "engine/stereo/depth_band.h"
#include "engine/stereo/lanes.h"
#include "engine/stereo/warp.h"

namespace zre {

/// Fills rows of the output from the pixels that landed there, sampled bilinearly where the warp
/// would bring the source to the centre of the cell, under a warp without zoom and splat. A hole
/// becomes -1 in the depth; in the picture it is left to `HoleFill`.
class ShiftGather
{
public:
    ShiftGather(const Warp& warp, const Image& src, const Image& depth, Image& out,
                Image* outDepth);

    void fillRow(DepthBand& band, int y);

private:
    bool inside(int column, int row, int right, int down) const;
    int evenLength(std::size_t i, std::size_t size) const;
    int mixedLength(std::size_t i, std::size_t size, std::int32_t column, std::int32_t row) const;
    void fillChunk(const float* z, int x0, int size, int y);
    std::size_t fillRun(std::size_t i, std::size_t size, std::size_t cell);
    void fillCell(std::size_t i, int x, int y);
    void fillOddCell(float z, int x, int y);
    void sampleAt(Displacement place, std::size_t cell);

    template <typename T>
    using PerCell = std::array<T, kChunk>;

    Warp m_warp;
    const Image& m_src;
    const Image& m_depth;
    Image& m_out;
    Image* m_outDepth;
    PerCell<double> m_fu; ///< where a cell samples between two columns, and two rows
    PerCell<double> m_fv;
    PerCell<std::int32_t> m_column; ///< the first of the two
    PerCell<std::int32_t> m_row;
    PerCell<std::uint8_t> m_turns; ///< where neighbours sample apart
};

} // namespace zre
