#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include "engine/stereo/eye.h"

namespace zre {

/// The depths of the last rows that a warp has gathered, which the search of a hole looks at.
///
/// Row r + `rows` takes the place of row r, as in `LandingBand`.
class SeenBand
{
public:
    using Mark = float;
    static constexpr Mark kHole = -std::numeric_limits<float>::infinity(); ///< no pixel's depth

    /// Holds the columns of `part`.
    SeenBand(const EyeWindow& part, int height, int rows)
        : m_start(static_cast<std::size_t>(height))
    {
        const auto width = static_cast<std::size_t>(part.right - part.left);
        m_z.assign(width * static_cast<std::size_t>(rows), kHole);
        for (std::size_t y = 0; y < m_start.size(); ++y)
            m_start[y] =
                static_cast<std::ptrdiff_t>(y % static_cast<std::size_t>(rows) * width) - part.left;
        m_left = part.left;
    }

    /// Depth of the pixel that each cell of row `y` shows, from the first column held; `kHole` for
    /// none.
    float* z(int y) { return m_z.data() + cell(m_left, y); }

    const Mark* marks() const { return m_z.data(); }
    const float* depths() const { return m_z.data(); }

    /// Where cell `x` of row `y` stands in these.
    std::ptrdiff_t cell(int x, int y) const { return m_start[static_cast<std::size_t>(y)] + x; }

private:
    std::vector<std::ptrdiff_t> m_start; ///< where column 0 of each image row would stand
    int m_left = 0;
    std::vector<float> m_z;
};

} // namespace zre
