#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "engine/astro/wcs.h"
#include "engine/fileio/image_file_info.h"
#include "engine/image/image.h"

namespace zre {

/// Loads the first image of a FITS file: 8, 16, 32, 64-bit integer, float or double, a plane or a
/// cube of three (of any other cube the first plane), plain or tile-compressed by
/// Rice or gzip.
///
/// Rows:    FITS counts them from the bottom, so row 0 of `out` is the file's last, unless
///          `ROWORDER` says 'TOP-DOWN'; the solution follows the rows.
/// Units:   integer data are scaled by their type's range to 0 to 1, of a signed type the half
///          above zero; floating data and integers with a `BSCALE` stay within 0 to 1, beyond that
///          they are scaled by their finite extremes. NaN, infinities and blanks become 0. The data
///          stay as they are otherwise, with `info->linear` set unless they are meant to be seen:
///          8-bit data, those of `writeFits`, and those whose median is 0.2 or more.
/// Errors:  false with a message; `out` and `wcs` change only on success, `wcs` only with a usable
///          solution.
bool loadFits(const std::string& path, Image& out, Wcs& wcs, ImageFileInfo* info,
              std::string* error);

/// The same from the bytes of a file.
bool decodeFits(std::span<const std::uint8_t> file, Image& out, Wcs& wcs, ImageFileInfo* info,
                std::string* error);

/// Writes a float FITS file of one plane or three with the solution kept, bottom row first as FITS
/// has it, through a temporary that is renamed: the target is whole or as it was. A keyword marks
/// the data as ready to be seen.
bool writeFits(const std::string& path, const Image& image, const Wcs* wcs, std::string* error);

} // namespace zre
