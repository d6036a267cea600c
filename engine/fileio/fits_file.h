#pragma once

#include <string>

#include "engine/astro/wcs.h"
#include "engine/fileio/image_file_info.h"
#include "engine/image/image.h"

namespace zre {

/// Loads the first image of a FITS file: 8, 16, 32-bit integer, float or double, a plane or a cube
/// of three, tile-compressed or not.
///
/// Rows:    FITS counts them from the bottom, so row 0 of `out` is the file's last, unless
/// `ROWORDER` says
///          'TOP-DOWN'; the solution follows the rows.
/// Units:   integer data are scaled by their type's range to 0 to 1; floating data within 0 to 1
/// stay, beyond that
///          they are scaled by their finite extremes. NaN and blanks become 0. The data stay
///          linear.
/// Errors:  false with a message; `out` and `wcs` change only on success, `wcs` only with a usable
/// solution.
bool loadFits(const std::string& path, Image& out, Wcs& wcs, ImageFileInfo* info,
              std::string* error);

/// Writes a float FITS file of one plane or three with the solution kept, bottom row first as FITS
/// has it, through a temporary that is renamed: the target is whole or as it was.
bool writeFits(const std::string& path, const Image& image, const Wcs* wcs, std::string* error);

} // namespace zre
