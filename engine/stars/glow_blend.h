#pragma once

#include <cstddef>
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
    /// A blending erasure, and how bright its surroundings are against the model.
    struct Disc
    {
        const StarErasure* erasure;
        double scale = 1.0;
    };

    std::size_t brightest() const;
    double measureScale(const StarErasure& erasure) const;
    double x(std::size_t pixel) const;
    double y(std::size_t pixel) const;

    const Image& m_layer;
    const float* m_plane;
    const std::vector<std::size_t>& m_part;
    const ErasureMask& m_mask;
    RingProfile m_rings;
    std::vector<Disc> m_discs;
};

} // namespace zre
