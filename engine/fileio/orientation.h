#pragma once

#include "engine/image/image.h"

namespace zre::fileio {

/// Turns `image` upright from the orientation tag of TIFF and EXIF: 1 to 8, anything else counts as
/// 1.
void applyOrientation(Image& image, int orientation);

} // namespace zre::fileio
