#pragma once

#include "engine/image/image.h"
#include "engine/params/depth_inputs.h"
#include "engine/params/params.h"

/// The depth cues once more, written straight from their definitions: doubles throughout, one plain
/// loop a step, no shared code with the engine. Slow.
zre::Image referenceCues(const zre::Image& source, const zre::ZRParams& p,
                         const zre::DepthInputs& in);
