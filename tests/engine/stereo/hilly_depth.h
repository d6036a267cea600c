#pragma once

#include "engine/image/image.h"

namespace zrtest {

/// A depth map as photographs give: smooth hills, raised plates with sharp edges, and fine noise of
/// the given amplitude.
zre::Image hillyDepth(int width, int height, double noise, unsigned seed);

} // namespace zrtest
