#pragma once

#include "engine/image/image.h"

namespace zre {

/// CIE lightness L*, 0 to 1, of an sRGB image: `dst` becomes one channel of the source's size.
///
/// A source of fewer than three channels is taken on plane 0 alone, without luminance weights.
/// Accuracy: within 2e-7 of the defining formula evaluated with the C library.
void getLightness(const Image& src, Image& dst);

/// Brings `src` to `newWidth` by `newHeight`: the mean of the covered block when reducing, nearest
/// neighbour when enlarging, an exact copy at equal size. A target side below 1 leaves `dst` alone.
/// `dst` has three channels when the source has more than two, else one.
void areaResample(const Image& src, int newWidth, int newHeight, Image& dst);

/// Median of a one-channel image from 1024 bins over 0 to 1, as a bin centre; 0.5 for an empty
/// image.
double medianValue(const Image& oneChannel);

/// The value below which `fraction` (clamped to 0 to 1) of the pixels lie, as `medianValue`; 0.5
/// for an empty image.
double percentileValue(const Image& oneChannel, double fraction);

} // namespace zre
