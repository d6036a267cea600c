#include "engine/stars/masked_blobs.h"

#include <algorithm>
#include <cstring>

namespace zre {

static constexpr std::uint32_t kGrown = 1u << 31;

MaskedBlobs::MaskedBlobs(const Image& layer, const BlobThresholds& thresholds,
                         const std::vector<std::uint8_t>& mask)
    : m_layer(layer)
    , m_width(static_cast<std::size_t>(layer.width))
    , m_height(static_cast<std::size_t>(layer.height))
    , m_high(thresholds.high)
    , m_low(thresholds.low)
    , m_component(mask.size())
    , m_plane(mask.size())
    , m_seeds(1, kNoSeed)
{
    std::vector<std::uint32_t> met;
    constexpr std::size_t kBlock = 64;
    static constexpr std::uint8_t kNone[kBlock] = {};
    for (std::size_t first = 0; first < mask.size(); first += kBlock) {
        const std::size_t count = std::min(kBlock, mask.size() - first);
        if (std::memcmp(mask.data() + first, kNone, count) == 0)
            continue;
        for (std::size_t pixel = first; pixel < first + count; ++pixel)
            if (mask[pixel])
                met.push_back(componentOf(pixel));
    }
    for (const std::uint32_t component : met)
        if (m_seeds[component] != kNoSeed)
            m_order.push_back(m_seeds[component]);
    std::sort(m_order.begin(), m_order.end());
    m_order.erase(std::unique(m_order.begin(), m_order.end()), m_order.end());
}

template <class Visit>
void MaskedBlobs::forFour(std::size_t pixel, const Visit& visit) const
{
    const std::size_t x = pixel % m_width;
    const std::size_t y = pixel / m_width;
    if (x + 1 < m_width)
        visit(pixel + 1);
    if (x > 0)
        visit(pixel - 1);
    if (y + 1 < m_height)
        visit(pixel + m_width);
    if (y > 0)
        visit(pixel - m_width);
}

bool MaskedBlobs::isSeed(std::size_t pixel) const
{
    const std::size_t x = pixel % m_width;
    const std::size_t y = pixel / m_width;
    const float value = layerLight(m_layer, pixel);
    if (x < 1 || y < 1 || x + 1 >= m_width || y + 1 >= m_height ||
        !(static_cast<double>(value) >= m_high))
        return false;
    for (std::size_t row = pixel - m_width; row <= pixel + m_width; row += m_width)
        for (std::size_t at = row - 1; at <= row + 1; ++at)
            if (layerLight(m_layer, at) > value)
                return false;
    return true;
}

std::uint32_t MaskedBlobs::componentOf(std::size_t pixel)
{
    const auto above = [&](std::size_t at) {
        return static_cast<double>(layerLight(m_layer, at)) > m_low;
    };
    if (const std::uint32_t known = m_component[pixel]; known != 0)
        return known & ~kGrown;
    if (!above(pixel))
        return 0;
    const auto component = static_cast<std::uint32_t>(m_seeds.size());
    m_seeds.push_back(kNoSeed);
    std::vector<std::size_t> stack{pixel};
    m_component[pixel] = component;
    while (!stack.empty()) {
        const std::size_t at = stack.back();
        stack.pop_back();
        if (at < m_seeds.back() && isSeed(at))
            m_seeds.back() = at;
        forFour(at, [&](std::size_t neighbour) {
            if (m_component[neighbour] != 0 || !above(neighbour))
                return;
            m_component[neighbour] = component;
            stack.push_back(neighbour);
        });
    }
    return component;
}

bool MaskedBlobs::next(Blob& blob)
{
    if (m_next >= m_order.size())
        return false;
    m_current = m_order[m_next++];
    grow(m_current, blob);
    fillPlane(blob.bounds);
    return true;
}

void MaskedBlobs::grow(std::size_t seed, Blob& blob)
{
    const std::uint32_t component = m_component[seed] & ~kGrown;
    blob.clear();
    m_stack.assign(1, seed);
    m_component[seed] |= kGrown;
    while (!m_stack.empty()) {
        const std::size_t pixel = m_stack.back();
        m_stack.pop_back();
        blob.take(pixel, static_cast<int>(pixel % m_width), static_cast<int>(pixel / m_width),
                  layerLight(m_layer, pixel));
        forFour(pixel, [&](std::size_t neighbour) {
            if (m_component[neighbour] != component)
                return;
            m_component[neighbour] |= kGrown;
            m_stack.push_back(neighbour);
        });
    }
}

void MaskedBlobs::fillPlane(const BlobBounds& bounds)
{
    const auto from = [](int first) { return static_cast<std::size_t>(std::max(first - 1, 0)); };
    const std::size_t endX = std::min(m_width, static_cast<std::size_t>(bounds.maxX) + 2);
    const std::size_t endY = std::min(m_height, static_cast<std::size_t>(bounds.maxY) + 2);
    for (std::size_t y = from(bounds.minY); y < endY; ++y)
        for (std::size_t x = from(bounds.minX); x < endX; ++x)
            m_plane[y * m_width + x] = layerLight(m_layer, y * m_width + x);
}

bool MaskedBlobs::isTaken(std::size_t pixel)
{
    return m_seeds[componentOf(pixel)] <= m_current;
}

} // namespace zre
