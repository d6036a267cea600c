#pragma once

#include <cstddef>
#include <vector>

#include "engine/params/star_erasure.h"
#include "engine/stars/erasure_grid.h"
#include "engine/stars/star.h"

namespace zre {

/// The erasures of a session, and which of them matter for the star at hand. The list is not owned
/// and must outlive the mask.
class ErasureMask
{
public:
    explicit ErasureMask(const std::vector<StarErasure>& erasures);

    /// Selects the erasures whose square of half-side radius + feather touches the box; its edges
    /// count.
    void select(double x, double y, double w, double h);
    bool empty() const { return m_selected.empty(); }
    /// Whether a selected erasure blends into the glow (mode 2).
    bool hasBlend() const;
    /// Whether a point lies within the radius of a selected erasure.
    bool covers(double x, double y) const;
    /// What the selected erasures do at a point, each 0 to 1, overlapping discs by their maximum:
    /// light taken from the star, light given back to the background, and (`blend` may be null)
    /// light replaced by the star's radial model.
    void coverageAt(double x, double y, double& remove, double& keepBack, double* blend) const;

    const std::vector<StarErasure>& erasures() const { return m_erasures; }
    const std::vector<std::size_t>& selected() const { return m_selected; }
    /// Calls `visit(index)`, ascending, for the selected that may cover a point, at least.
    template <class Visit>
    void forNear(double x, double y, const Visit& visit) const
    {
        if (m_selected.size() >= kWorthAGrid)
            m_near.forNear(x, y, visit);
        else
            for (const std::size_t index : m_selected)
                visit(index);
    }

private:
    static constexpr std::size_t kWorthAGrid = 16; ///< below, to look at all is quicker

    const std::vector<StarErasure>& m_erasures;
    ErasureGrid m_all;
    ErasureGrid m_near; ///< of the selected, when they are many
    std::vector<std::size_t> m_selected;
};

/// Modes of an erasure beyond plain removal.
inline constexpr int kErasureMovesToBackground = 1;
inline constexpr int kErasureBlends = 2;

/// What one erasure covers of a point: 1 inside the radius, falling to 0 across the feather.
double erasureCoverage(const StarErasure& erasure, double x, double y);

/// Takes the light that the selected erasures remove out of a star's sprite and coverage. With all
/// of its coverage at most 0.0001 afterwards, the star is marked erased: depth -1, no sprite.
void applyErasureToSprite(Star& star, const ErasureMask& mask);

} // namespace zre
