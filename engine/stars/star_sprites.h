#pragma once

#include <vector>

#include "engine/image/image.h"
#include "engine/stars/star.h"

namespace zre {

/// Adds the sprites to `image`, each moved by its depth and clipped at 1, in the list's order.
///
/// Units:   `amount`, `maxShift` in pixels of total disparity (`maxShift` at most 0: no limit);
///          `dirX` and `dirY` in eye units as the offsets of `renderEye`; `zoomGain` also scales
///          sprites, about (`centerX`, `centerY`), where a value below 0 means the middle.
/// Occlusion: with a `depthMap` (may be null) of the image's size and `occlusion` above 0, a star
///          farther than `occlusion` is hidden where the map stands nearer than the star.
/// Cost:    the pixels of the sprites' boxes; a star outside the frame costs a few comparisons.
void drawStarSprites(const std::vector<Star>& stars, Image& image, double amount,
                     double convergence, double dirX, double dirY, double maxShift, double zoomGain,
                     double centerX, double centerY, const Image* depthMap, float occlusion);

/// The stars for an image of another size: places and sprites scaled, sprites by area means. A
/// scale that is not above 0 gives none.
void scaleStarSprites(const std::vector<Star>& stars, double scaleX, double scaleY,
                      std::vector<Star>& out);

/// Gives each sprite the colours of `source` at its place and keeps its brightness (Rec. 709 luma).
/// Sprites and sources of fewer than three channels stay.
void recolorStarSpritesFromSource(std::vector<Star>& stars, const Image& source);

/// The sum of a starless picture and its stars, clipped at 1, of the size of `starless`; stars of
/// another size are read by nearest neighbour.
Image compositeStarlessStars(const Image& starless, const Image& stars);

} // namespace zre
