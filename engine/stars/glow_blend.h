#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "engine/image/image.h"
#include "engine/stars/erasure_mask.h"
#include "engine/stars/ring_profile.h"

namespace zre {

/// Lets a star's light follow its own radial model under the erasures that blend.
class GlowBlend
{
public:
    /// `part` lists the pixels of the star, `plane` holds the brightest channel of `layer`, and
    /// `mask` has the erasures over the part selected. None is owned.
    GlowBlend(const Image& layer, const float* plane, const std::vector<std::size_t>& part,
              const ErasureMask& mask);

    /// The share of a pixel's light that stays, 0 to 1.
    double weight(std::size_t pixel) const;

private:
    std::size_t brightest() const;
    double measureScale(const StarErasure& erasure, const std::vector<std::size_t>& byPlace) const;
    double x(std::size_t pixel) const;
    double y(std::size_t pixel) const;

    const Image& m_layer;
    const float* m_plane;
    const std::vector<std::size_t>& m_part;
    const ErasureMask& m_mask;
    RingProfile m_rings;
    /// How bright the surroundings of each blending erasure are against the model.
    std::unordered_map<std::size_t, double> m_scales;
};

} // namespace zre
