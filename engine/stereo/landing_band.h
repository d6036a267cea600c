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
    static constexpr std::int32_t kHole = -1;

    LandingBand(int width, int rows)
        : m_rows(static_cast<std::size_t>(rows))
        , m_stride(static_cast<std::size_t>(width) + 1)
        , m_source(m_rows * m_stride)
        , m_z(m_rows * m_stride)
    {
    }

    /// Index of the source pixel, `y * width + x`, for each cell of a row; `kHole` for none.
    std::int32_t* source(int row) { return m_source.data() + start(row); }
    const std::int32_t* source(int row) const { return m_source.data() + start(row); }

    /// Depth of that pixel.
    float* z(int row) { return m_z.data() + start(row); }
    const float* z(int row) const { return m_z.data() + start(row); }

    void clear(int row)
    {
        constexpr float kNothing = -1e30f;
        std::fill_n(source(row), m_stride, kHole);
        std::fill_n(z(row), m_stride, kNothing);
    }

private:
    std::size_t start(int row) const { return static_cast<std::size_t>(row) % m_rows * m_stride; }

    std::size_t m_rows;
    std::size_t m_stride;
    std::vector<std::int32_t> m_source;
    std::vector<float> m_z;
};

} // namespace zre
