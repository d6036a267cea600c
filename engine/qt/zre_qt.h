#pragma once

#include <QImage>

#include "engine/image/image.h"

namespace zre_qt {

/// An 8-bit RGBA picture: each value v becomes clamp(v*255 + 0.5), NaN gives 0, alpha is 255; a
/// one-channel image repeats its plane. A null picture for an unusable image or when memory runs
/// out.
QImage toQImage(const zre::Image& image);

/// The same picture made straight in `format`: Format_RGBA8888, Format_RGB32 as it is painted
/// fastest, or Format_RGB888. A null picture for any other.
QImage toQImage(const zre::Image& image, QImage::Format format);

/// Three channels from the picture's 8-bit RGB; a null picture gives a default-constructed image.
zre::Image fromQImage(const QImage& picture);

} // namespace zre_qt
