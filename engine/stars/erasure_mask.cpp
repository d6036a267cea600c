#include "engine/stars/erasure_mask.h"

#include <algorithm>
#include <cmath>

namespace zre {

static constexpr double kLeastFeather = 1e-6;

/// Coverage that is not seen any more.
static constexpr float kNoCoverage = 0.0001f;

void ErasureMask::select(double x, double y, double w, double h)
{
    m_selected.clear();
    for (std::size_t i = 0; i < m_erasures.size(); ++i) {
        const StarErasure& e = m_erasures[i];
        const double reach = e.radius + e.feather;
        // Written so that an erasure with a NaN touches nothing.
        if (e.x + reach >= x && e.x - reach <= x + w && e.y + reach >= y && e.y - reach <= y + h)
            m_selected.push_back(i);
    }
}

bool ErasureMask::hasBlend() const
{
    return std::any_of(m_selected.begin(), m_selected.end(),
                       [&](std::size_t i) { return m_erasures[i].mode == kErasureBlends; });
}

bool ErasureMask::covers(double x, double y) const
{
    return std::any_of(m_selected.begin(), m_selected.end(), [&](std::size_t i) {
        const StarErasure& e = m_erasures[i];
        const double dx = x - e.x;
        const double dy = y - e.y;
        return e.radius >= 0.0 && dx * dx + dy * dy <= e.radius * e.radius;
    });
}

double erasureCoverage(const StarErasure& e, double x, double y)
{
    const double feather = std::max(e.feather, kLeastFeather);
    const double t = (e.radius + feather - std::hypot(x - e.x, y - e.y)) / feather;
    if (!(t > 0.0))
        return 0.0;
    return t > 1.0 ? 1.0 : (3.0 - 2.0 * t) * t * t;
}

void ErasureMask::coverageAt(double x, double y, double& remove, double& keepBack,
                             double* blend) const
{
    remove = 0.0;
    keepBack = 0.0;
    double blended = 0.0;
    for (const std::size_t i : m_selected) {
        const StarErasure& e = m_erasures[i];
        const double coverage = erasureCoverage(e, x, y);
        if (e.mode == kErasureBlends) {
            blended = std::max(blended, coverage);
            continue;
        }
        remove = std::max(remove, coverage);
        if (e.mode == kErasureMovesToBackground)
            keepBack = std::max(keepBack, coverage);
    }
    if (blend)
        *blend = blended;
}

void applyErasureToSprite(Star& star, const ErasureMask& mask)
{
    if (mask.empty())
        return;
    bool seen = false;
    float* light = star.sprite.data();
    float* alpha = star.alpha.data();
    for (int y = 0; y < star.boxH; ++y)
        for (int x = 0; x < star.boxW; ++x, ++alpha, light += star.channels) {
            double remove = 0.0;
            double keepBack = 0.0;
            mask.coverageAt(star.boxX + x, star.boxY + y, remove, keepBack, nullptr);
            const float kept = static_cast<float>(1.0 - remove);
            *alpha *= kept;
            for (int c = 0; c < star.channels; ++c)
                light[c] *= kept;
            seen |= *alpha > kNoCoverage;
        }
    if (seen)
        return;
    star.erased = true;
    star.depth = -1.0f;
    star.sprite = {};
    star.alpha = {};
}

} // namespace zre
