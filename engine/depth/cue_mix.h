#pragma once

#include "engine/image/image.h"

namespace zre {

/// Weights and planes of the cues that share in a depth; a plane is null when its weight is 0. All
/// planes have the same pixel count.
struct CueMix
{
    double luminanceWeight = 0.0;
    double structureWeight = 0.0;
    double narrowbandWeight = 0.0;
    double aiWeight = 0.0;
    bool inverted = false;

    double structureScale = 0.0; ///< brings the structure plane to 0 to 1; above it is cut
    const float* luminance = nullptr;
    const float* structure = nullptr;
    const float* nearPlane = nullptr;
    const float* farPlane = nullptr;
    const float* ai = nullptr;

    double total() const { return luminanceWeight + structureWeight + narrowbandWeight + aiWeight; }
};

/// Writes the weighted mean of the cues, in double per pixel, over `size` samples of `depth`, which
/// may be the structure plane itself. A mean without a finite value becomes 0. `mix.total()` must
/// be above 0.
void mixCues(const CueMix& mix, float* depth, std::size_t size);

} // namespace zre
