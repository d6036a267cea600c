#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace zre {

/// The rows of a warp's output that are still in work: for every cell the source pixel that landed
/// there and its depth.
///
/// Only as many rows are held as one source row can reach, and the search for the holes behind it;
/// row r + `rows` takes the place of row r, so that a warp of a large image runs in the cache. Each
/// row has one cell beyond the image, for the pixels that leave it.
class LandingBand
{
public:
    using Mark = std::int32_t;
    static constexpr Mark kHole = -1;

    /// Holds the last `rows` of the `height` rows that were cleared.
    LandingBand(int width, int height, int rows)
        : m_stride(static_cast<std::size_t>(width) + 1)
        , m_start(static_cast<std::size_t>(height))
        , m_column(m_stride * static_cast<std::size_t>(rows))
        , m_row(m_column.size())
        , m_z(m_column.size())
    {
        for (std::size_t y = 0; y < m_start.size(); ++y)
            m_start[y] = y % static_cast<std::size_t>(rows) * m_stride;
    }

    /// Column of the source pixel in each cell of row `y`; `kHole` for none.
    std::int32_t* column(int y) { return m_column.data() + start(y); }
    const std::int32_t* column(int y) const { return m_column.data() + start(y); }

    /// Row of that pixel.
    std::int32_t* row(int y) { return m_row.data() + start(y); }
    const std::int32_t* row(int y) const { return m_row.data() + start(y); }

    /// Depth of that pixel.
    float* z(int y) { return m_z.data() + start(y); }
    const float* z(int y) const { return m_z.data() + start(y); }

    /// What is `kHole` in an empty cell, and the depth of any other.
    const Mark* marks() const { return m_column.data(); }
    const float* depths() const { return m_z.data(); }

    /// Where cell `x` of row `y` stands in the three planes.
    std::size_t cell(int x, int y) const { return start(y) + static_cast<std::size_t>(x); }

    struct Planes
    {
        std::int32_t* column;
        std::int32_t* row;
        float* z;
    };
    Planes planes() { return {m_column.data(), m_row.data(), m_z.data()}; }

    void clear(int y)
    {
        constexpr float kNothing = -1e30f;
        std::fill_n(column(y), m_stride, kHole);
        std::fill_n(z(y), m_stride, kNothing);
    }

private:
    std::size_t start(int y) const { return m_start[static_cast<std::size_t>(y)]; }

    std::size_t m_stride;
    std::vector<std::size_t> m_start; ///< of each image row in the planes
    std::vector<std::int32_t> m_column;
    std::vector<std::int32_t> m_row;
    std::vector<float> m_z;
};

} // namespace zre
