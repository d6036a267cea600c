#pragma once

namespace zre {

/// How stars are found and cut out.
struct StarDetectParams
{
    float backgroundScale = 6.0f; ///< sigma in pixels of the background's blur, classical detector
    float thresholdSigma = 6.0f;  ///< a star begins this many sigma above the median
    float minPeak = 0.1f;         ///< lowest peak of a star; 0 means no floor
    int maxRadius = 14;           ///< largest radius in pixels, classical detector
    float companionWipe = 0.0f;   ///< companions below this share of a star's peak are wiped; 0 off
    int companionSeparation = 3;  ///< least distance in pixels of two peaks counted apart
    float companionProminence = 0.02f; ///< least height of a companion above its saddle
    float splitRatio = 0.0f; ///< stars part where the saddle is below this share of the lower peak
    int maxFeather = 8;      ///< upper limit of the feather of a sprite, pixels
    int maxStars = 2000000;  ///< the brightest are kept
    bool softEdges = true;
    float edgeGlow = 1.0f;     ///< how far the soft rim reaches
    float edgeSoftness = 1.0f; ///< how much the rim is blurred

    bool operator==(const StarDetectParams&) const = default;
};

} // namespace zre
