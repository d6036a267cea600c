#include "engine/depth/nearest_rows.h"

#include <cstdint>

namespace zre {

static int nearestIndex(int position, int from, int to)
{
    return static_cast<int>(static_cast<std::int64_t>(position) * to / from);
}

NearestRows::NearestRows(const Image& map, int width, int height)
    : m_map(map)
    , m_height(height)
{
    if (map.width == width)
        return;
    m_columns.resize(static_cast<std::size_t>(width));
    m_line.resize(static_cast<std::size_t>(width));
    for (int x = 0; x < width; ++x)
        m_columns[static_cast<std::size_t>(x)] = nearestIndex(x, width, map.width);
}

const float* NearestRows::row(int y)
{
    const int mapRow = nearestIndex(y, m_height, m_map.height);
    const float* from =
        m_map.plane(0) + static_cast<std::size_t>(mapRow) * static_cast<std::size_t>(m_map.width);
    if (m_columns.empty())
        return from;
    for (std::size_t x = 0; x < m_line.size(); ++x)
        m_line[x] = from[m_columns[x]];
    return m_line.data();
}

} // namespace zre
