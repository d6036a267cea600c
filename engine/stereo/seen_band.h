#pragma once

#include <cstddef>
#include <limits>
#include <vector>

namespace zre {

/// The depths of the last rows that a warp has gathered, which the search of a hole looks at.
///
/// Row r + `rows` takes the place of row r, as in `LandingBand`.
class SeenBand
{
public:
    using Mark = float;
    static constexpr Mark kHole = -std::numeric_limits<float>::infinity(); ///< no pixel's depth

    SeenBand(int width, int height, int rows)
        : m_start(static_cast<std::size_t>(height))
        , m_z(static_cast<std::size_t>(width) * static_cast<std::size_t>(rows), kHole)
    {
        for (std::size_t y = 0; y < m_start.size(); ++y)
            m_start[y] = y % static_cast<std::size_t>(rows) * static_cast<std::size_t>(width);
    }

    /// Depth of the pixel that each cell of row `y` shows; `kHole` for none.
    float* z(int y) { return m_z.data() + m_start[static_cast<std::size_t>(y)]; }

    const Mark* marks() const { return m_z.data(); }
    const float* depths() const { return m_z.data(); }

    /// Where cell `x` of row `y` stands in these.
    std::size_t cell(int x, int y) const
    {
        return m_start[static_cast<std::size_t>(y)] + static_cast<std::size_t>(x);
    }

private:
    std::vector<std::size_t> m_start; ///< of each image row in the plane
    std::vector<float> m_z;
};

} // namespace zre
