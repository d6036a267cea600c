#pragma once

#include "engine/stereo/eye.h"
#include "engine/stereo/landing_rows.h"
#include "engine/stereo/warp.h"

namespace zre {

/// The warp of pixels that move by their place, too: by a zoom or by splats. Writes `window` of
/// `out`, its holes filled, and pixels about it.
void renderZoomed(const Warp& warp, const Image& src, const Image& depth, const DepthRange& depths,
                  bool splat, const EyeWindow& window, Image& out, Image* outDepth);

} // namespace zre
