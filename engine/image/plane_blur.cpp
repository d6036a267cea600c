#include "engine/image/plane_blur.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "engine/image/multiversion.h"

namespace zre {

void LineCounter::advance(int lines)
{
    if (!m_progress)
        return;
    const std::int64_t end = m_done + lines;
    for (std::int64_t mark = (m_done / kStep + 1) * kStep; mark <= end; mark += kStep)
        m_progress(static_cast<double>(mark) / m_total);
    m_done = end;
}

ZR_MULTIVERSION static void addTap(float* __restrict sums, const float* __restrict samples,
                                   float weight, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        sums[i] += weight * samples[i];
}

PlaneBlur::PlaneBlur(int width, int height, GaussianKernel kernel)
    : m_width(static_cast<std::size_t>(width))
    , m_height(static_cast<std::size_t>(height))
    , m_kernel(std::move(kernel))
    , m_scratch(std::make_unique_for_overwrite<float[]>(m_width * m_height))
{
}

void PlaneBlur::apply(float* plane, LineCounter& lines)
{
    blurRows(plane, lines);
    blurColumns(plane, lines);
}

void PlaneBlur::blurRows(const float* plane, LineCounter& lines)
{
    const std::size_t halfWidth = static_cast<std::size_t>(m_kernel.halfWidth);
    std::vector<float> padded(m_width + 2 * halfWidth);
    for (std::size_t y = 0; y < m_height; ++y) {
        const float* row = plane + y * m_width;
        float* out = m_scratch.get() + y * m_width;
        std::fill_n(padded.begin(), halfWidth, row[0]);
        std::copy_n(row, m_width, padded.data() + halfWidth);
        std::fill_n(padded.data() + halfWidth + m_width, halfWidth, row[m_width - 1]);
        std::fill_n(out, m_width, 0.0f);
        for (std::size_t tap = 0; tap < m_kernel.weights.size(); ++tap)
            addTap(out, padded.data() + tap, m_kernel.weights[tap], m_width);
        lines.advance(1);
    }
}

void PlaneBlur::blurColumns(float* plane, LineCounter& lines) const
{
    constexpr std::size_t kStrip = 256;
    const std::ptrdiff_t last = static_cast<std::ptrdiff_t>(m_height) - 1;
    for (std::size_t x = 0; x < m_width; x += kStrip) {
        const std::size_t count = std::min(kStrip, m_width - x);
        for (std::ptrdiff_t y = 0; y <= last; ++y) {
            float* out = plane + static_cast<std::size_t>(y) * m_width + x;
            std::fill_n(out, count, 0.0f);
            for (std::size_t tap = 0; tap < m_kernel.weights.size(); ++tap) {
                const std::ptrdiff_t from = std::clamp<std::ptrdiff_t>(
                    y + static_cast<std::ptrdiff_t>(tap) - m_kernel.halfWidth, 0, last);
                addTap(out, m_scratch.get() + static_cast<std::size_t>(from) * m_width + x,
                       m_kernel.weights[tap], count);
            }
        }
        lines.advance(static_cast<int>(count));
    }
}

} // namespace zre
