#pragma once

#include "engine/image/image.h"

namespace zre {

/// An image as `Image(width, height, colorModel)` makes it, but in the buffer of `old` where that
/// has the size, so that no fresh memory is fetched and cleared. The samples are then those of
/// `old`, and the caller writes every one of them. `old` stays as it is when its buffer does not
/// fit, or when there is no memory; it becomes empty otherwise.
inline Image reshaped(Image& old, int width, int height, int colorModel)
{
    Image img;
    img.width = width;
    img.height = height;
    img.channels = colorModel == 1 ? 3 : 1;
    img.colorModel = colorModel;
    const std::size_t count = img.pixelCount() * static_cast<std::size_t>(img.channels);
    if (old.data.size() == count) {
        img.data.swap(old.data);
        old = Image();
    } else {
        img.data = std::vector<float>(count);
    }
    return img;
}

} // namespace zre
