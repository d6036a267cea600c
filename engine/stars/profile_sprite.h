#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "engine/stars/star.h"
#include "engine/stars/star_detect_params.h"

namespace zre {

/// Cuts a star's sprite out: the blob's bounds, grown by a margin, with a soft rim.
///
/// Shape:   `region` holds the blob's pixel indices (y * width + x) in an image of `width` by
///          `height`; `minX` to `maxY` are its extreme coordinates. `sample(pixel, out)` writes the
///          star's light of a pixel for all `channels`; `isTaken(pixel)` tells whether a pixel
///          belongs to any blob: such a neighbour's light stays out.
/// Output:  box, channels, sprite and alpha of `star`; the rest of it stays.
void profileSprite(Star& star, const std::vector<std::size_t>& region, int minX, int minY, int maxX,
                   int maxY, int width, int height, int channels, const StarDetectParams& params,
                   const std::function<void(std::size_t, float*)>& sample,
                   const std::function<bool(std::size_t)>& isTaken);

} // namespace zre
