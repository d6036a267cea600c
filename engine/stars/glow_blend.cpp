#include "engine/stars/glow_blend.h"

#include <algorithm>
#include <cmath>

#include "engine/stars/layer_plane.h"

namespace zre {

GlowBlend::GlowBlend(const Image& layer, const float* plane, const std::vector<std::size_t>& part,
                     const ErasureMask& mask)
    : m_layer(layer)
    , m_plane(plane)
    , m_part(part)
    , m_mask(mask)
    , m_rings(layer, plane, brightest())
{
    double remove = 0.0;
    double keepBack = 0.0;
    double blend = 0.0;
    for (const std::size_t pixel : part) {
        mask.coverageAt(x(pixel), y(pixel), remove, keepBack, &blend);
        if (blend == 0.0)
            m_rings.add(pixel);
    }
    m_rings.finish();
    std::vector<std::size_t> byPlace = part;
    std::sort(byPlace.begin(), byPlace.end());
    for (const std::size_t index : mask.selected())
        if (mask.erasures()[index].mode == kErasureBlends)
            m_scales[index] = measureScale(mask.erasures()[index], byPlace);
}

std::size_t GlowBlend::brightest() const
{
    return *std::min_element(m_part.begin(), m_part.end(), [&](std::size_t a, std::size_t b) {
        return m_plane[a] > m_plane[b] || (m_plane[a] == m_plane[b] && a < b);
    });
}

double GlowBlend::x(std::size_t pixel) const
{
    return static_cast<double>(pixel % static_cast<std::size_t>(m_layer.width));
}

double GlowBlend::y(std::size_t pixel) const
{
    const std::size_t row = pixel / static_cast<std::size_t>(m_layer.width);
    return static_cast<double>(row);
}

static double middle(std::vector<double>& values)
{
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

/// How the star's light just outside a disc compares with the model: its halo need not be round.
double GlowBlend::measureScale(const StarErasure& erasure,
                               const std::vector<std::size_t>& byPlace) const
{
    constexpr std::size_t kFewestSamples = 8;
    constexpr double kNoModel = 1e-6;
    constexpr double kLeast = 0.25;
    constexpr double kMost = 4.0;
    const double outer = erasure.radius + std::max(0.6 * erasure.radius, 4.0);
    std::vector<double> measured;
    std::vector<double> modelled;
    const auto rowStart = [&](double row) {
        const double bound = row > 0.0 ? std::min(std::floor(row), double(m_layer.height)) : 0.0;
        const auto first =
            static_cast<std::size_t>(bound) * static_cast<std::size_t>(m_layer.width);
        return std::lower_bound(byPlace.begin(), byPlace.end(), first);
    };
    const auto end = rowStart(erasure.y + outer + 1.0);
    for (auto at = rowStart(erasure.y - outer); at < end; ++at) {
        const std::size_t pixel = *at;
        const double distance = std::hypot(x(pixel) - erasure.x, y(pixel) - erasure.y);
        double remove = 0.0;
        double keepBack = 0.0;
        double blend = 0.0;
        if (!(distance >= erasure.radius && distance <= outer))
            continue;
        m_mask.coverageAt(x(pixel), y(pixel), remove, keepBack, &blend);
        if (remove > 0.0 || keepBack > 0.0 || blend > 0.0)
            continue;
        measured.push_back(static_cast<double>(m_plane[pixel]));
        modelled.push_back(m_rings.at(pixel));
    }
    if (measured.size() < kFewestSamples)
        return 1.0;
    const double model = middle(modelled);
    const double light = middle(measured);
    return model > kNoModel && light > 0.0 ? std::clamp(light / model, kLeast, kMost) : 1.0;
}

double GlowBlend::weight(std::size_t pixel) const
{
    const double value = static_cast<double>(layerLight(m_layer, pixel));
    if (!(value > 0.0))
        return 1.0;
    double coverage = 0.0;
    double scale = 1.0;
    m_mask.forNear(x(pixel), y(pixel), [&](std::size_t index) {
        const StarErasure& erasure = m_mask.erasures()[index];
        if (erasure.mode != kErasureBlends)
            return;
        const double own = erasureCoverage(erasure, x(pixel), y(pixel));
        if (own > coverage) {
            coverage = own;
            scale = m_scales.at(index);
        }
    });
    if (coverage == 0.0)
        return 1.0;
    const double share = std::min(1.0, m_rings.at(pixel) * scale / value);
    return 1.0 - coverage * (1.0 - share);
}

} // namespace zre
