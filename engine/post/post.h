#pragma once

#include "engine/image/image.h"
#include "engine/params/params.h"

namespace zre {

/// True when the ten grade controls stand exactly at their neutral values.
bool postIsIdentity(const ZRParams& p);

/// Grades a rendered colour image in place: tone curve, white balance, saturation and vibrance, hue
/// rotation. Nothing happens with `postEnabled` off or a neutral grade; an image of fewer than
/// three channels gets the tone curve alone.
void applyPost(Image& img, const ZRParams& p);

} // namespace zre
