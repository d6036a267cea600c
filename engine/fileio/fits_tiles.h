#pragma once

#include <cstdint>
#include <span>
#include <string>

#include <fitsio.h>

#include "engine/fileio/fits_header.h"

namespace zre::fileio {

/// Checks every compressed tile of the current unit before cfitsio decodes it.
///
/// Its decoders trust their input: a gzip stream without an end makes them allocate for ever, a
/// Rice stream is read beyond its end. So the streams are walked here first. `unit` is the one that
/// `fits` has open in `file`. False with a message.
bool checkTiles(fitsfile* fits, std::span<const std::uint8_t> file, const FitsUnit& unit,
                std::string* error);

} // namespace zre::fileio
