#pragma once

#include "engine/image/image.h"

namespace zre {

/// The optional images of a depth build, null when absent. Not owned; any size, except `aiDepth`,
/// whose pixel count must equal the working image's or it is ignored.
struct DepthInputs
{
    const Image* starless = nullptr; ///< star-free source of the cues, with `starInputMode` 2 or 3
    const Image* starMask = nullptr; ///< one-channel star mask, with `starInputMode` 1
    const Image* externalDepth = nullptr; ///< the loaded depth map
    const Image* depthModel = nullptr;    ///< result of the depth editor
    const Image* aiDepth = nullptr;       ///< learned depth cue
};

} // namespace zre
