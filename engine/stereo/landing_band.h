#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/stereo/ordered_bits.h"

namespace zre {

/// How the place of a source pixel is told in 32 bits: the row above the column.
struct PixelCode
{
    int columnBits;

    explicit PixelCode(int width)
        : columnBits(std::bit_width(static_cast<unsigned>(width - 1)))
    {
    }

    std::uint32_t of(int x, int y) const
    {
        return static_cast<std::uint32_t>(y) << columnBits | static_cast<std::uint32_t>(x);
    }
    int column(std::uint32_t code) const
    {
        return static_cast<int>(code & ((std::uint32_t{1} << columnBits) - 1));
    }
    int row(std::uint32_t code) const { return static_cast<int>(code >> columnBits); }
};

/// The rows of a warp's output that pixels still land on: for every cell the source pixel that
/// landed there and its depth, in one word.
///
/// Of two words the greater is the nearer pixel's, and among equal depths that of the pixel which
/// comes first in the source: a landing is one load, the greater of two, and one store. Row r +
/// `rows` takes the place of row r, so that a warp of a large image runs in the cache. Rows -1 and
/// `height`, a column before the image and two behind it take what leaves the image.
class LandingBand
{
public:
    /// Above, a number that orders as the depth does; below, how far the pixel's code is from the
    /// last.
    using Cell = std::int64_t;

    /// Holds `rows` rows, all of them empty.
    LandingBand(int width, int rows)
        : m_stride(width + 3)
        , m_rows(rows)
        , m_cells(static_cast<std::size_t>(m_stride) * static_cast<std::size_t>(rows), kEmpty)
    {
    }

    /// A depth of -0 counts as 0.
    static constexpr Cell pack(std::uint32_t code, float depth)
    {
        const auto order = orderedBits(std::bit_cast<std::int32_t>(depth + 0.0f));
        return static_cast<Cell>(order) * (Cell{1} << 32) | (kLastCode - code);
    }
    static constexpr std::uint32_t code(Cell cell)
    {
        return kLastCode - static_cast<std::uint32_t>(cell);
    }
    static constexpr std::int32_t order(Cell cell) { return static_cast<std::int32_t>(cell >> 32); }
    static constexpr float depth(std::int32_t order)
    {
        return std::bit_cast<float>(orderedBits(order));
    }

    /// The code of no pixel, which an empty cell gives.
    static constexpr std::uint32_t kNoCode = 0xffffffff;

    /// What nothing landed on: no word of a pixel, and less than that of every sensible depth.
    static constexpr Cell kEmpty =
        static_cast<Cell>(orderedBits(std::bit_cast<std::int32_t>(-1e30f))) * (Cell{1} << 32) |
        0xffffffff;

    int stride() const { return m_stride; }
    int rows() const { return m_rows; }

    /// The place of row `y` among the rows held, and of its column 0 in `cells`.
    int slot(int y) const { return (y + 1) % m_rows; }
    std::size_t start(int y) const
    {
        return static_cast<std::size_t>(slot(y)) * static_cast<std::size_t>(m_stride) + 1;
    }

    Cell* cells() { return m_cells.data(); }
    Cell* row(int y) { return m_cells.data() + start(y); }

    void clear(int y) { std::fill_n(m_cells.data() + start(y) - 1, m_stride, kEmpty); }

private:
    /// One below the greatest number, so that no pixel's word is that of an empty cell.
    static constexpr std::uint32_t kLastCode = 0xfffffffe;

    int m_stride;
    int m_rows;
    std::vector<Cell> m_cells;
};

} // namespace zre
