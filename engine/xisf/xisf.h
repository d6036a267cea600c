#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/astro/wcs.h"
#include "engine/image/image.h"

namespace zre {

/// Loads the first image of an XISF 1.0 file.
///
/// Shape:   planar samples; one plane from fewer than three channels, else the first three. UInt8,
///          UInt16, UInt32 and Float32, either byte order, raw or compressed by zlib, lz4, lz4hc or
///          zstd, shuffled or not.
/// Units:   0 to 1; a Float32 sample is limited to that range, a NaN becomes 1.
/// Errors:  false with a message in `error` (may be null); `out` is replaced only on success. A
///          non-numeric field throws what std::stoull throws, a size beyond memory std::bad_alloc.
/// `wcs` is written only when the file holds a usable solution.
bool loadXisf(const std::string& path, Image& out, Wcs& wcs, std::string* error);

/// Builds a monolithic XISF file in memory: Float32, uncompressed, with the solution as FITS
/// keywords when `wcs` holds one. `out` is replaced; false, with `out` untouched, when the image
/// has no pixels.
bool writeXisf(const Image& image, std::vector<std::uint8_t>& out, const Wcs* wcs);

/// What the header tells of the first image, without reading its pixels.
struct XisfInfo
{
    int width = 0;
    int height = 0;
    int channels = 0;
    std::string sampleFormat;
    std::string compression; ///< empty when the block is raw
    bool bigEndian = false;
};

/// Reads the header only; errors as `loadXisf`.
bool readXisfInfo(const std::string& path, XisfInfo& out, std::string* error);

} // namespace zre
