#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

namespace zre {

/// The rows of a warp's output that pixels still land on: for every cell the source pixel that
/// landed there and its depth, in one word, so that a landing is one load and one store.
///
/// Row r + `rows` takes the place of row r, so that a warp of a large image runs in the cache. Rows
/// -1 and `height`, a column before the image and two behind it take what leaves the image.
class LandingBand
{
public:
    /// Index of the source pixel in the upper half, negative for none; bits of its depth below.
    using Cell = std::int64_t;

    /// Holds the last `rows` rows that were cleared.
    LandingBand(int width, int rows)
        : m_stride(width + 3)
        , m_rows(rows)
        , m_cells(static_cast<std::size_t>(m_stride) * static_cast<std::size_t>(rows))
    {
    }

    static constexpr Cell pack(std::int32_t source, float depth)
    {
        return static_cast<Cell>(source) * (Cell{1} << 32) | std::bit_cast<std::uint32_t>(depth);
    }
    static constexpr std::int32_t source(Cell cell)
    {
        return static_cast<std::int32_t>(cell >> 32);
    }
    static constexpr float depth(Cell cell)
    {
        return std::bit_cast<float>(static_cast<std::uint32_t>(cell));
    }
    static constexpr bool isEmpty(Cell cell) { return cell < 0; }

    /// What nothing landed on: a depth that every pixel of a sensible depth is nearer than.
    static constexpr Cell kEmpty = -(Cell{1} << 32) | std::bit_cast<std::uint32_t>(-1e30f);

    int stride() const { return m_stride; }
    int rows() const { return m_rows; }

    /// The place of row `y` among the rows held, and of its column 0 in `cells`.
    int slot(int y) const { return (y + 1) % m_rows; }
    std::size_t start(int y) const
    {
        return static_cast<std::size_t>(slot(y)) * static_cast<std::size_t>(m_stride) + 1;
    }

    Cell* cells() { return m_cells.data(); }
    const Cell* row(int y) const { return m_cells.data() + start(y); }

    void clear(int y) { std::fill_n(m_cells.data() + start(y) - 1, m_stride, kEmpty); }

private:
    int m_stride;
    int m_rows;
    std::vector<Cell> m_cells;
};

} // namespace zre
