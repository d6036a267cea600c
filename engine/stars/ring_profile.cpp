#include "engine/stars/ring_profile.h"

#include <algorithm>
#include <cmath>

namespace zre {

RingProfile::RingProfile(const Image& layer, const float* plane, std::size_t centre)
    : m_layer(layer)
    , m_plane(plane)
    , m_centre(centre)
{
}

double RingProfile::radius(std::size_t pixel) const
{
    const auto width = static_cast<std::size_t>(m_layer.width);
    const std::size_t row = pixel / width;
    const std::size_t centreRow = m_centre / width;
    return std::hypot(static_cast<double>(pixel % width) - static_cast<double>(m_centre % width),
                      static_cast<double>(row) - static_cast<double>(centreRow));
}

void RingProfile::add(std::size_t pixel)
{
    const auto ring = static_cast<std::size_t>(radius(pixel) / kRingWidth);
    if (ring >= m_rings.size())
        m_rings.resize(ring + 1);
    m_rings[ring].push_back(pixel);
}

/// The middle one of the values; their order changes.
static double middle(std::vector<float>& values)
{
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), at, values.end());
    return static_cast<double>(*at);
}

void RingProfile::finish()
{
    m_levels.assign(m_rings.size(), {});
    std::vector<float> values;
    for (std::size_t ring = 0; ring < m_rings.size(); ++ring) {
        if (m_rings[ring].empty())
            continue;
        const auto add = [&](const float* plane) {
            values.clear();
            for (const std::size_t pixel : m_rings[ring])
                values.push_back(std::isfinite(plane[pixel]) ? plane[pixel] : 0.0f);
            m_levels[ring].push_back(middle(values));
        };
        add(m_plane);
        for (int c = 0; c < m_layer.channels; ++c)
            add(m_layer.plane(c));
    }
    const auto count = static_cast<int>(m_levels.size());
    m_below.assign(m_levels.size(), -1);
    m_above.assign(m_levels.size(), -1);
    const auto filled = [&](int ring) { return !m_levels[static_cast<std::size_t>(ring)].empty(); };
    for (int ring = 0, last = -1; ring < count; ++ring)
        m_below[static_cast<std::size_t>(ring)] = filled(ring) ? last = ring : last;
    for (int ring = count - 1, next = -1; ring >= 0; --ring) {
        m_above[static_cast<std::size_t>(ring)] = next;
        next = filled(ring) ? ring : next;
    }
}

double RingProfile::read(std::size_t level, double radius) const
{
    if (m_levels.empty())
        return 0.0;
    const double place = radius / kRingWidth;
    const std::size_t ring = std::min(static_cast<std::size_t>(place), m_levels.size() - 1);
    const int below = m_below[ring];
    const int above = m_above[ring];
    const auto of = [&](int filled) { return m_levels[static_cast<std::size_t>(filled)][level]; };
    if (below < 0 || above < 0)
        return below >= 0 ? of(below) : above >= 0 ? of(above) : 0.0;
    return of(below) + (of(above) - of(below)) * (place - below) / (above - below);
}

} // namespace zre
