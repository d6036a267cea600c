#pragma once

#include <vector>

namespace zre {

/// One star of the star layer: where it stands, how deep, how bright, and a cut-out of its own
/// light.
struct Star
{
    double x = 0.0; ///< flux-weighted centroid, image pixels
    double y = 0.0;
    float depth = 0.5f;      ///< 0 far to 1 near; a negative depth hides the star
    float peak = 0.0f;       ///< highest residual inside the blob
    float distancePc = 0.0f; ///< 0 when none is known
    int boxX = 0;            ///< top-left pixel of the sprite in the image
    int boxY = 0;
    int boxW = 0;
    int boxH = 0;
    int channels = 0;    ///< of the sprite, equal to the source image's
    bool erased = false; ///< every bit of its light was erased
    std::vector<float>
        sprite; ///< interleaved light, background removed, `boxW` by `boxH` by `channels`
    std::vector<float> alpha; ///< coverage, 0 to 1, one value a pixel

    bool operator==(const Star&) const = default;
};

} // namespace zre
