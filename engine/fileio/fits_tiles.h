#pragma once

#include <cstdint>
#include <span>
#include <string>

#include <fitsio.h>

namespace zre::fileio {

/// Checks every compressed tile of the current unit before cfitsio decodes it.
///
/// Its decoders trust their input: a gzip stream without an end makes them allocate for ever, a
/// Rice stream is read beyond its end, sizes inside an HCOMPRESS stream are taken as they come. So
/// gzip and Rice tiles are walked here first, and the rare other codecs are refused. `sides` are
/// the lengths of the image's axes, already found plausible, `file` the whole file. False with a
/// message.
bool checkTiles(fitsfile* fits, std::span<const std::uint8_t> file, std::span<const LONGLONG> sides,
                std::string* error);

} // namespace zre::fileio
