#pragma once

#include "engine/image/image.h"
#include "engine/params/params.h"
#include "engine/stars/star.h"

namespace zre {

/// Encodes a pair as a red/cyan anaglyph by `mode`: 0 Color, 1 Half-color, 2 Gray, 3 Optimized
/// (Dubois); any other counts as 0. Both eyes have the same size; `out` becomes three channels,
/// each multiplied by its gain and clamped to 0 to 1. A one-channel eye gives its plane to every
/// colour.
void makeAnaglyph(const Image& left, const Image& right, Image& out, int mode, double gainR,
                  double gainG, double gainB);

/// `renderEyes`, then `makeAnaglyph` by `anaglyphMode`, with the eyes exchanged by `swapEyes`.
void renderAnaglyph(const Image& src, const Image& depth, const ZRParams& p, Image& out,
                    const std::vector<Star>* stars, const Progress& progress,
                    const Image* starsImage, const Image* starsDepth, double gainR, double gainG,
                    double gainB);

/// Both eyes beside each other at full size, twice as wide as `src`, exchanged by `swapEyes`.
void renderSideBySide(const Image& src, const Image& depth, const ZRParams& p, Image& out,
                      const std::vector<Star>* stars, const Progress& progress,
                      const Image* starsImage, const Image* starsDepth);

/// Packs two eyes, each brought to `eyeWidth` by `eyeHeight`, beside or above each other into three
/// channels.
void packEyes(const Image& a, const Image& b, Image& out, bool sideBySide, int eyeWidth,
              int eyeHeight);

/// One viewpoint, `frame` of `frames`, on the closed loop of the parallax motion: a sweep along
/// `wigglePathAngle` or an orbit with `wiggleCircular`, swinging `amplitude` eye separations to
/// each side of `baseOffset`.
void renderWiggleFrame(const Image& src, const Image& depth, int frame, int frames,
                       double amplitude, double convergence, const ZRParams& p, Image& out,
                       const std::vector<Star>* stars, const Image* starsImage,
                       const Image* starsDepth, double baseOffset);

} // namespace zre
