#pragma once

#include <cstddef>
#include <vector>

#include "engine/stars/blob_finder.h"

namespace zre {

/// The bounds of a region of pixels, whose cells are numbered row by row: maps over a region take
/// no more memory than this.
class PixelBox
{
public:
    PixelBox(const std::vector<std::size_t>& region, int imageWidth)
        : m_imageWidth(static_cast<std::size_t>(imageWidth))
    {
        for (const std::size_t pixel : region)
            m_bounds.include(column(pixel), row(pixel));
    }

    const BlobBounds& bounds() const { return m_bounds; }
    int column(std::size_t pixel) const { return static_cast<int>(pixel % m_imageWidth); }
    int row(std::size_t pixel) const { return static_cast<int>(pixel / m_imageWidth); }
    std::size_t pixelAt(int x, int y) const
    {
        return static_cast<std::size_t>(y) * m_imageWidth + static_cast<std::size_t>(x);
    }

    std::size_t width() const { return side(m_bounds.minX, m_bounds.maxX); }
    std::size_t size() const { return width() * side(m_bounds.minY, m_bounds.maxY); }
    bool contains(int x, int y) const
    {
        return x >= m_bounds.minX && x <= m_bounds.maxX && y >= m_bounds.minY && y <= m_bounds.maxY;
    }

    /// The cell of a pixel that lies inside.
    std::size_t cell(std::size_t pixel) const
    {
        return static_cast<std::size_t>(row(pixel) - m_bounds.minY) * width() +
               static_cast<std::size_t>(column(pixel) - m_bounds.minX);
    }

    /// Calls `visit(pixel)` for the neighbours to the right, left, below and above that lie inside.
    template <class Visit>
    void forFour(std::size_t pixel, const Visit& visit) const
    {
        const int x = column(pixel);
        const int y = row(pixel);
        if (x < m_bounds.maxX)
            visit(pixel + 1);
        if (x > m_bounds.minX)
            visit(pixel - 1);
        if (y < m_bounds.maxY)
            visit(pixel + m_imageWidth);
        if (y > m_bounds.minY)
            visit(pixel - m_imageWidth);
    }

private:
    static std::size_t side(int from, int to) { return static_cast<std::size_t>(to - from) + 1; }

    std::size_t m_imageWidth;
    BlobBounds m_bounds;
};

} // namespace zre
