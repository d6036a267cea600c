#include "engine/stars/sprite_cutter.h"

#include <algorithm>
#include <cmath>

#include "engine/stars/profile_sprite.h"

namespace zre {

static constexpr int kLargestMargin = 128;
static constexpr int kLargestBlur = 16;

/// `value` rounded half up, bound to 0 to `largest`.
static int roundedWithin(float value, int largest)
{
    if (!(value > 0.0f))
        return 0;
    const float rounded = value + 0.5f;
    return rounded < static_cast<float>(largest) ? static_cast<int>(rounded) : largest;
}

/// The feather that suits a blob of this size.
static int featherOf(const BlobBounds& bounds, int maxFeather)
{
    const std::int64_t big =
        std::max(std::int64_t{bounds.maxX} - bounds.minX, std::int64_t{bounds.maxY} - bounds.minY) +
        1;
    if (big <= 1)
        return 1;
    return static_cast<int>(std::min<std::int64_t>((big + 3) / 5, std::max(1, maxFeather)));
}

SpriteCutter::SpriteCutter(const StarDetectParams& params, int width, int height, int channels)
    : m_width(width)
    , m_height(height)
    , m_channels(channels)
    , m_softEdges(params.softEdges)
    , m_maxFeather(params.maxFeather)
    , m_edgeGlow(params.edgeGlow)
    , m_edgeSoftness(params.edgeSoftness)
{
}

void SpriteCutter::frame(Star& star, const std::vector<std::size_t>& region,
                         const BlobBounds& bounds)
{
    m_margin = 0;
    if (m_softEdges)
        m_margin = roundedWithin(static_cast<float>(featherOf(bounds, m_maxFeather)) * m_edgeGlow,
                                 kLargestMargin);
    // Bound before the margin comes on, so that no coordinate overflows.
    const int left = std::max(std::clamp(bounds.minX, 0, m_width) - m_margin, 0);
    const int top = std::max(std::clamp(bounds.minY, 0, m_height) - m_margin, 0);
    const int right = std::min(std::clamp(bounds.maxX, -1, m_width - 1), m_width - 1 - m_margin);
    const int bottom = std::min(std::clamp(bounds.maxY, -1, m_height - 1), m_height - 1 - m_margin);
    star.boxX = left;
    star.boxY = top;
    star.boxW = std::max(right + m_margin + 1 - left, 0);
    star.boxH = std::max(bottom + m_margin + 1 - top, 0);
    star.channels = m_channels;

    const std::size_t boxW = static_cast<std::size_t>(star.boxW);
    const std::size_t count = boxW * static_cast<std::size_t>(star.boxH);
    star.sprite.assign(count * static_cast<std::size_t>(m_channels), 0.0f);
    star.alpha.assign(count, 0.0f);
    m_region.assign(count, 0);
    if (count == 0)
        return;
    for (const std::size_t pixel : region) {
        const std::size_t width = static_cast<std::size_t>(m_width);
        // Wraps to a huge number left of the box and above it.
        const std::size_t x = pixel % width - static_cast<std::size_t>(left);
        const std::size_t y = pixel / width - static_cast<std::size_t>(top);
        if (x < boxW && y < static_cast<std::size_t>(star.boxH))
            m_region[y * boxW + x] = 1;
    }
    std::copy(m_region.begin(), m_region.end(), star.alpha.begin());
    if (m_margin > 0)
        layRim(star);
}

/// Coverage about the region: the share of the region in a square of the margin's reach.
void SpriteCutter::layRim(Star& star)
{
    const int w = star.boxW;
    const int h = star.boxH;
    const std::size_t stride = static_cast<std::size_t>(w) + 1;
    m_sums.assign(stride * (static_cast<std::size_t>(h) + 1), 0);
    const std::uint8_t* inRegion = m_region.data();
    for (int y = 0; y < h; ++y) {
        const std::uint32_t* above = m_sums.data() + static_cast<std::size_t>(y) * stride;
        std::uint32_t* sums = m_sums.data() + static_cast<std::size_t>(y + 1) * stride;
        std::uint32_t line = 0;
        for (int x = 0; x < w; ++x) {
            line += *inRegion++;
            sums[x + 1] = above[x + 1] + line;
        }
    }
    const int side = 2 * m_margin + 1;
    const float area = static_cast<float>(side) * static_cast<float>(side);
    inRegion = m_region.data();
    float* alpha = star.alpha.data();
    for (int y = 0; y < h; ++y) {
        const std::uint32_t* first =
            m_sums.data() + static_cast<std::size_t>(std::max(y - m_margin, 0)) * stride;
        const std::uint32_t* end =
            m_sums.data() + static_cast<std::size_t>(std::min(y + m_margin + 1, h)) * stride;
        for (int x = 0; x < w; ++x, ++alpha) {
            if (*inRegion++)
                continue;
            const int from = std::max(x - m_margin, 0);
            const int to = std::min(x + m_margin + 1, w);
            *alpha = static_cast<float>(end[to] - first[to] - end[from] + first[from]) / area;
        }
    }
}

/// Blurs the coverage with a box along both axes; samples outside the box do not count.
void SpriteCutter::soften(Star& star)
{
    const int base = m_margin > 3 ? m_margin / 2 : 1;
    const int reach = roundedWithin(static_cast<float>(base) * m_edgeSoftness, kLargestBlur);
    if (!m_softEdges || reach < 1)
        return;
    const int w = star.boxW;
    const int h = star.boxH;
    m_line.assign(star.alpha.size(), 0.0f);
    const float* row = star.alpha.data();
    for (float* out = m_line.data(); out != m_line.data() + m_line.size(); row += w)
        for (int x = 0; x < w; ++x) {
            const int from = std::max(x - reach, 0);
            const int to = std::min(x + reach, w - 1);
            float sum = 0.0f;
            for (int i = from; i <= to; ++i)
                sum += row[i];
            *out++ = sum / static_cast<float>(to - from + 1);
        }
    std::fill(star.alpha.begin(), star.alpha.end(), 0.0f);
    float* out = star.alpha.data();
    for (int y = 0; y < h; ++y, out += w) {
        const int from = std::max(y - reach, 0);
        const int to = std::min(y + reach, h - 1);
        for (int i = from; i <= to; ++i) {
            const float* line =
                m_line.data() + static_cast<std::size_t>(i) * static_cast<std::size_t>(w);
            for (int x = 0; x < w; ++x)
                out[x] += line[x];
        }
        for (int x = 0; x < w; ++x)
            out[x] /= static_cast<float>(to - from + 1);
    }
}

void profileSprite(Star& star, const std::vector<std::size_t>& region, int minX, int minY, int maxX,
                   int maxY, int width, int height, int channels, const StarDetectParams& params,
                   const std::function<void(std::size_t, float*)>& sample,
                   const std::function<bool(std::size_t)>& isTaken)
{
    SpriteCutter cutter(params, std::max(width, 0), std::max(height, 0), std::max(channels, 0));
    cutter.cut(star, region, {minX, minY, maxX, maxY}, sample, isTaken);
}

} // namespace zre
