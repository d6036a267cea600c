#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "engine/fileio/image_file_info.h"
#include "engine/image/image.h"

namespace zre {

/// Loads the first page of a TIFF file at its own depth: 8, 16, 32-bit integer or 16, 32, 64-bit
/// float; grey, RGB or palette, alpha dropped (and taken out of colours multiplied by it);
/// interleaved or planar, strips or tiles, any compression libtiff reads; orientation applied.
/// Integers are scaled by their type's range (of a signed type the half above zero); floats are
/// limited to 0 to 1, NaN becomes 0. What else libtiff understands (bilevel, YCbCr, CMYK, Lab, ...)
/// arrives as its 8-bit RGB. Errors: false with a message; `out` changes only on success.
bool loadTiff(const std::string& path, Image& out, ImageFileInfo* info, std::string* error);

/// The same from the bytes of a file.
bool decodeTiff(std::span<const std::uint8_t> file, Image& out, ImageFileInfo* info,
                std::string* error);

/// True when `file` begins as a TIFF or BigTIFF does.
bool hasTiffSignature(std::span<const std::uint8_t> file);

/// Writes 8 or 16-bit integer or 32-bit float samples, clamped to 0 to 1 for the integers,
/// deflate-compressed, through a temporary that is renamed. One plane stays grey.
bool writeTiff(const std::string& path, const Image& image, int bits, std::string* error);

} // namespace zre
