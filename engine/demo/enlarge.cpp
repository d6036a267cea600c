#include "engine/demo/enlarge.h"

#include <algorithm>
#include <cmath>

namespace zre::demo {

Enlarger::Taps Enlarger::tapsAt(int position, float step, int size)
{
    const float place = (static_cast<float>(position) + 0.5f) / step - 0.5f;
    const float base = std::floor(place);
    const float t = place - base;
    Taps taps{};
    for (int i = 0; i < 4; ++i)
        taps.at[i] = std::clamp(static_cast<int>(base) + i - 1, 0, size - 1);
    taps.weight[0] = 0.5f * t * (-1.0f + t * (2.0f - t));
    taps.weight[1] = 0.5f * (2.0f + t * t * (-5.0f + 3.0f * t));
    taps.weight[2] = 0.5f * t * (1.0f + t * (4.0f - 3.0f * t));
    taps.weight[3] = 0.5f * t * t * (t - 1.0f);
    return taps;
}

Enlarger::Enlarger(int gridWidth, int gridHeight, float step, int width)
    : m_gridWidth(gridWidth)
    , m_gridHeight(gridHeight)
    , m_step(step)
    , m_line(static_cast<std::size_t>(gridWidth))
{
    m_columns.reserve(static_cast<std::size_t>(width));
    for (int x = 0; x < width; ++x)
        m_columns.push_back(tapsAt(x, step, gridWidth));
}

void Enlarger::row(const float* plane, int y, float* out)
{
    const Taps rows = tapsAt(y, m_step, m_gridHeight);
    const float* lines[4];
    for (int i = 0; i < 4; ++i)
        lines[i] = plane + static_cast<std::size_t>(rows.at[i]) * m_line.size();
    float* line = m_line.data();
    for (int x = 0; x < m_gridWidth; ++x)
        line[x] = rows.weight[0] * lines[0][x] + rows.weight[1] * lines[1][x] +
                  rows.weight[2] * lines[2][x] + rows.weight[3] * lines[3][x];
    for (const Taps& taps : m_columns)
        *out++ = taps.weight[0] * line[taps.at[0]] + taps.weight[1] * line[taps.at[1]] +
                 taps.weight[2] * line[taps.at[2]] + taps.weight[3] * line[taps.at[3]];
}

} // namespace zre::demo
