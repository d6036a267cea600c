#include "engine/stars/erasure_grid.h"

#include <algorithm>
#include <cmath>

namespace zre {

/// Cells a side: few enough that erasures as large as the picture stand in all of them.
static constexpr std::size_t kMostCells = 32;

ErasureGrid::Axis ErasureGrid::axisOf(const std::vector<StarErasure>& erasures,
                                      const std::vector<std::size_t>& indices,
                                      double StarErasure::*place)
{
    double least = HUGE_VAL;
    double most = -HUGE_VAL;
    for (const std::size_t index : indices)
        if (const double at = erasures[index].*place; std::isfinite(at)) {
            least = std::min(least, at);
            most = std::max(most, at);
        }
    const auto wanted = static_cast<std::size_t>(std::sqrt(static_cast<double>(indices.size())));
    const std::size_t count = std::clamp<std::size_t>(wanted, 1, kMostCells);
    if (!(most > least))
        return {0.0, 1.0, 1};
    return {least, (most - least) / static_cast<double>(count), count};
}

template <class Visit>
void ErasureGrid::forCells(const StarErasure& e, const Visit& visit) const
{
    // A pixel more than it covers, which rounding cannot use up.
    const double reach = e.radius + std::max(e.feather, 0.0) + 1.0;
    const std::size_t right = m_columns.cell(e.x + reach);
    const std::size_t bottom = m_rows.cell(e.y + reach);
    for (std::size_t row = m_rows.cell(e.y - reach); row <= bottom; ++row)
        for (std::size_t column = m_columns.cell(e.x - reach); column <= right; ++column)
            visit(row * m_columns.count + column);
}

void ErasureGrid::build(const std::vector<StarErasure>& erasures,
                        const std::vector<std::size_t>& indices)
{
    m_columns = axisOf(erasures, indices, &StarErasure::x);
    m_rows = axisOf(erasures, indices, &StarErasure::y);
    const std::size_t cells = m_columns.count * m_rows.count;
    m_starts.assign(cells + 1, 0);
    for (const std::size_t index : indices)
        forCells(erasures[index], [&](std::size_t cell) { ++m_starts[cell + 1]; });
    for (std::size_t cell = 0; cell < cells; ++cell)
        m_starts[cell + 1] += m_starts[cell];
    m_entries.resize(m_starts.back());
    std::vector<std::size_t> next(m_starts.begin(), m_starts.end() - 1);
    for (const std::size_t index : indices)
        forCells(erasures[index], [&](std::size_t cell) {
            m_entries[next[cell]++] = static_cast<std::uint32_t>(index);
        });
}

std::vector<std::size_t> ErasureGrid::meeting(double x, double y, double w, double h) const
{
    std::vector<std::size_t> found;
    if (m_starts.empty())
        return found;
    const std::size_t right = m_columns.cell(x + w);
    const std::size_t bottom = m_rows.cell(y + h);
    for (std::size_t row = m_rows.cell(y); row <= bottom; ++row)
        for (std::size_t column = m_columns.cell(x); column <= right; ++column) {
            const std::size_t cell = row * m_columns.count + column;
            found.insert(found.end(),
                         m_entries.begin() + static_cast<std::ptrdiff_t>(m_starts[cell]),
                         m_entries.begin() + static_cast<std::ptrdiff_t>(m_starts[cell + 1]));
        }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

} // namespace zre
