#pragma once

#include <cstdint>
#include <vector>

#include "engine/image/image.h"
#include "engine/params/star_erasure.h"
#include "engine/stars/star.h"
#include "engine/stars/star_detect_params.h"

namespace zre {

/// Finds the stars of a photograph and takes them out of it.
///
/// The background is a blur of `backgroundScale`; blobs of the residual grow from peaks above
/// `thresholdSigma` down to 0.4 of it. `stars` comes in raster order of the peaks; `starless` is
/// `image`, which has to be another one, less their light. `erasures` may be null. Errors: none; an
/// image below three pixels a side has no stars.
void detectStars(const Image& image, std::vector<Star>& stars, Image& starless,
                 const StarDetectParams& params, const std::vector<StarErasure>* erasures);

/// Median and spread of a stars layer. They depend on the layer alone, so that a caller who
/// searches one layer again and again keeps them.
struct LayerStats
{
    double median = 0.0;
    double sigma = 0.0;
};
LayerStats starsLayerStats(const Image& layer);

/// Finds the stars of a layer that holds nothing else.
///
/// Shape:   `starlessLayer` (may be null) gives the texture behind wiped companions; `keepBack`
///          (may be null) takes the layer's size and receives the light that is to be added to the
///          base; `searchMask` (may be null) has one byte a pixel: a blob that meets no set one is
///          passed over, and the final cull by `maxStars` is left out. `erasures` may be null.
/// Blobs of any size are kept whole, parted by `splitRatio`, and companions in a star's glow wiped
/// by `companionWipe`.
void detectStarsFromResidual(const Image& layer, std::vector<Star>& stars,
                             const StarDetectParams& params, const Image* starlessLayer,
                             const std::vector<StarErasure>* erasures, Image* keepBack,
                             const std::vector<std::uint8_t>* searchMask);

/// The same with what is known of the layer (`known` may be null): a search within a mask then
/// costs the blobs that it meets, and not the layer.
void detectStarsFromResidual(const Image& layer, std::vector<Star>& stars,
                             const StarDetectParams& params, const Image* starlessLayer,
                             const std::vector<StarErasure>* erasures, Image* keepBack,
                             const std::vector<std::uint8_t>* searchMask, const LayerStats* known);

} // namespace zre
