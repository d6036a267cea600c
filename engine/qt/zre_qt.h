#pragma once

#include <QImage>

#include "engine/image/image.h"

namespace zre_qt {

/// An 8-bit RGBA picture: each value v becomes clamp(v*255 + 0.5), NaN gives 0, alpha is 255; a
/// one-channel image repeats its plane. A null picture for an unusable image or when memory runs
/// out.
QImage toQImage(const zre::Image& image);

/// Three channels from the picture's 8-bit RGB; a null picture gives a default-constructed image.
zre::Image fromQImage(const QImage& picture);

} // namespace zre_qt
