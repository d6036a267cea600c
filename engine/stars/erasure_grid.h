#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/params/star_erasure.h"

namespace zre {

/// Erasures by place, so that a point asks only those about it and not a list of thousands.
class ErasureGrid
{
public:
    /// Sorts in the erasures of these `indices`, which ascend.
    void build(const std::vector<StarErasure>& erasures, const std::vector<std::size_t>& indices);

    /// Calls `visit(index)`, ascending, for all that may reach a point, and some that do not.
    template <class Visit>
    void forNear(double x, double y, const Visit& visit) const
    {
        if (m_starts.empty())
            return;
        const std::size_t cell = m_rows.cell(y) * m_columns.count + m_columns.cell(x);
        for (std::size_t i = m_starts[cell]; i < m_starts[cell + 1]; ++i)
            visit(std::size_t{m_entries[i]});
    }

    /// The same for a box, each once and ascending.
    std::vector<std::size_t> meeting(double x, double y, double w, double h) const;

private:
    /// The cells along one side. What lies outside belongs to the first or the last, so that a
    /// place never misses an erasure that reaches it.
    struct Axis
    {
        double begin = 0.0;
        double step = 1.0;
        std::size_t count = 1;

        std::size_t cell(double place) const
        {
            const double at = (place - begin) / step;
            if (!(at > 0.0)) // nor is it a number
                return 0;
            return at < static_cast<double>(count) ? static_cast<std::size_t>(at) : count - 1;
        }
    };

    static Axis axisOf(const std::vector<StarErasure>& erasures,
                       const std::vector<std::size_t>& indices, double StarErasure::*place);
    template <class Visit>
    void forCells(const StarErasure& erasure, const Visit& visit) const;

    Axis m_columns;
    Axis m_rows;
    std::vector<std::size_t> m_starts; ///< where each cell's entries begin, and the end of all
    std::vector<std::uint32_t> m_entries;
};

} // namespace zre
