#include "engine/stars/erasure_mask.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace zre {

static constexpr double kLeastFeather = 1e-6;

/// Coverage that is not seen any more.
static constexpr float kNoCoverage = 0.0001f;

ErasureMask::ErasureMask(const std::vector<StarErasure>& erasures)
    : m_erasures(erasures)
{
    std::vector<std::size_t> every(erasures.size());
    std::iota(every.begin(), every.end(), std::size_t{0});
    m_all.build(erasures, every);
}

void ErasureMask::select(double x, double y, double w, double h)
{
    m_selected.clear();
    if (m_erasures.empty())
        return;
    for (const std::size_t i : m_all.meeting(x, y, w, h)) {
        const StarErasure& e = m_erasures[i];
        const double reach = e.radius + e.feather;
        // Written so that an erasure with a NaN touches nothing.
        if (e.x + reach >= x && e.x - reach <= x + w && e.y + reach >= y && e.y - reach <= y + h)
            m_selected.push_back(i);
    }
    if (m_selected.size() >= kWorthAGrid)
        m_near.build(m_erasures, m_selected);
}

bool ErasureMask::hasBlend() const
{
    return std::any_of(m_selected.begin(), m_selected.end(),
                       [&](std::size_t i) { return m_erasures[i].mode == kErasureBlends; });
}

bool ErasureMask::covers(double x, double y) const
{
    bool covered = false;
    forNear(x, y, [&](std::size_t i) {
        const StarErasure& e = m_erasures[i];
        const double dx = x - e.x;
        const double dy = y - e.y;
        covered |= e.radius >= 0.0 && dx * dx + dy * dy <= e.radius * e.radius;
    });
    return covered;
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
    forNear(x, y, [&](std::size_t i) {
        const StarErasure& e = m_erasures[i];
        const double coverage = erasureCoverage(e, x, y);
        if (e.mode == kErasureBlends) {
            blended = std::max(blended, coverage);
            return;
        }
        remove = std::max(remove, coverage);
        if (e.mode == kErasureMovesToBackground)
            keepBack = std::max(keepBack, coverage);
    });
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
