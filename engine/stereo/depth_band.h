#pragma once

#include <algorithm>
#include <vector>

namespace zre {

/// The rows of a warp's output that are still in work when a depth alone tells how far its pixel
/// moves: then the depth in a cell says which pixel landed there, too.
///
/// Row r + `rows` takes the place of row r, as in `SeenBand`. Each row has one cell beyond the
/// image, for the pixels that leave it; it is also the cell before the next row.
class DepthBand
{
public:
    static constexpr float kNothing = -1e30f; ///< what no pixel lands below

    using Mark = float;
    static constexpr Mark kHole = kNothing;

    /// Holds the last `rows` of the `height` rows that were cleared.
    DepthBand(int width, int height, int rows)
        : m_stride(static_cast<std::size_t>(width) + 1)
        , m_start(static_cast<std::size_t>(height))
        , m_z(m_stride * static_cast<std::size_t>(rows) + 1, kNothing)
    {
        for (std::size_t y = 0; y < m_start.size(); ++y)
            m_start[y] = y % static_cast<std::size_t>(rows) * m_stride + 1;
    }

    /// Nearest depth in each cell of row `y`; `kNothing` for a hole.
    float* z(int y) { return m_z.data() + start(y); }
    const float* z(int y) const { return m_z.data() + start(y); }

    /// What is `kHole` in an empty cell, and the depth of any other.
    const Mark* marks() const { return m_z.data(); }

    const float* depths() const { return m_z.data(); }

    /// Where cell `x` of row `y` stands in these.
    std::ptrdiff_t cell(int x, int y) const { return static_cast<std::ptrdiff_t>(start(y)) + x; }

    void clear(int y) { std::fill_n(z(y), m_stride, kNothing); }

    /// Forgets what left the image from row `y`, on which nothing lands any more.
    void close(int y) { z(y)[m_stride - 1] = kNothing; }

private:
    std::size_t start(int y) const { return m_start[static_cast<std::size_t>(y)]; }

    std::size_t m_stride;
    std::vector<std::size_t> m_start; ///< of each image row in the plane
    std::vector<float> m_z;
};

} // namespace zre
