#pragma once

#include <string>

#include "engine/fileio/image_file_info.h"
#include "engine/image/image.h"

namespace zre {

/// Loads the first page of a TIFF file at its own depth: 8, 16, 32-bit integer or 16, 32, 64-bit
/// float; grey, RGB or palette, alpha dropped; interleaved or planar, strips or tiles, any
/// compression libtiff reads; orientation applied. Integers are scaled by their type's range;
/// floats are limited to 0 to 1, NaN becomes 0. Errors: false with a message; `out` changes only on
/// success.
bool loadTiff(const std::string& path, Image& out, ImageFileInfo* info, std::string* error);

/// Writes 8 or 16-bit integer or 32-bit float samples, clamped to 0 to 1 for the integers,
/// deflate-compressed, through a temporary that is renamed.
bool writeTiff(const std::string& path, const Image& image, int bits, std::string* error);

} // namespace zre
