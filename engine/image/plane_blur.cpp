#include "engine/image/plane_blur.h"

#include <algorithm>
#include <array>
#include <utility>

#include "engine/image/tap_sums.h"

namespace zre {

/// Lines that the columns pass does at a time, at least.
static constexpr std::size_t kBlockLines = 48;

/// Columns done together when their lines are read where they stand.
static constexpr std::size_t kStripColumns = 512;

/// Kernels of more taps than this read their columns from a compact copy: hundreds of lines, each
/// in a page of its own and often in the same few sets of the cache, are slow to walk.
static constexpr std::size_t kTapsInPlace = 64;
static constexpr std::size_t kTileColumns = 16;

void LineCounter::advance(int lines)
{
    if (!m_progress)
        return;
    const std::int64_t end = m_done + lines;
    for (std::int64_t mark = (m_done / kStep + 1) * kStep; mark <= end; mark += kStep)
        m_progress(static_cast<double>(mark) / m_total);
    m_done = end;
}

PlaneBlur::PlaneBlur(int width, int height, GaussianKernel kernel)
    : m_width(static_cast<std::size_t>(width))
    , m_height(static_cast<std::size_t>(height))
    , m_halfWidth(static_cast<std::size_t>(kernel.halfWidth))
    , m_weights(std::move(kernel.weights))
    , m_scratch(std::make_unique_for_overwrite<float[]>(m_width * m_height + kLineSlack))
    , m_padded(m_width + 2 * m_halfWidth + kLineSlack)
    , m_unused(std::max(kStripColumns, kTileColumns))
{
}

void PlaneBlur::apply(const float* source, float* blurred, LineCounter& lines)
{
    const std::size_t blockLines = std::max(kBlockLines, 2 * m_halfWidth);
    std::size_t rowsDone = 0;
    std::size_t columnsDone = 0;
    for (std::size_t first = 0; first < m_height; first += blockLines) {
        const std::size_t end = std::min(m_height, first + blockLines);
        for (; rowsDone < std::min(m_height, end + m_halfWidth); ++rowsDone) {
            blurRow(source + rowsDone * m_width, m_scratch.get() + rowsDone * m_width);
            lines.advance(1);
        }
        blurColumns(blurred, first, end);
        const std::size_t columns = m_width * end / m_height;
        lines.advance(static_cast<int>(columns - columnsDone));
        columnsDone = columns;
    }
}

void PlaneBlur::blurRow(const float* row, float* out)
{
    float* const middle = m_padded.data() + m_halfWidth;
    std::fill_n(m_padded.data(), m_halfWidth, row[0]);
    std::copy_n(row, m_width, middle);
    std::fill_n(middle + m_width, m_halfWidth, row[m_width - 1]);
    sumTapsAlongRow(m_padded.data(), m_weights.data(), m_weights.size(), out, m_width);
}

void PlaneBlur::blurColumns(float* plane, std::size_t firstLine, std::size_t endLine)
{
    const bool inPlace = m_weights.size() <= kTapsInPlace;
    const std::size_t strip = inPlace ? kStripColumns : kTileColumns;
    const std::size_t linesRead =
        (endLine - firstLine + kLinesTogether - 1) / kLinesTogether * kLinesTogether +
        2 * m_halfWidth;
    m_lines.resize(linesRead);
    for (std::size_t x = 0; x < m_width; x += strip) {
        const std::size_t count = std::min(strip, m_width - x);
        for (std::size_t i = 0; i < linesRead; ++i) {
            const std::size_t line = firstLine + i;
            const std::size_t inside =
                line < m_halfWidth ? 0 : std::min(line - m_halfWidth, m_height - 1);
            m_lines[i] = m_scratch.get() + inside * m_width + x;
        }
        if (!inPlace)
            copyTile(count);
        blurStrip(plane + x, count, firstLine, endLine);
    }
}

void PlaneBlur::copyTile(std::size_t count)
{
    m_tile.resize(m_lines.size() * kTileColumns);
    float* to = m_tile.data();
    for (const float*& line : m_lines) {
        std::copy_n(line, count, to);
        line = to;
        to += kTileColumns;
    }
}

void PlaneBlur::blurStrip(float* column, std::size_t count, std::size_t firstLine,
                          std::size_t endLine)
{
    for (std::size_t y = firstLine; y < endLine; y += kLinesTogether) {
        std::array<float*, kLinesTogether> out;
        for (std::size_t j = 0; j < kLinesTogether; ++j)
            out[j] = y + j < endLine ? column + (y + j) * m_width : m_unused.data();
        sumTapsAcrossRows(m_lines.data() + (y - firstLine), m_weights.data(), m_weights.size(),
                          out.data(), count);
    }
}

} // namespace zre
