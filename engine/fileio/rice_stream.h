#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zre::fileio {

/// True when `stream` holds all the bits that a Rice decoder of `sampleBytes` (1, 2 or 4) and
/// `blockSize` samples a block takes for `samples` samples (White & Pence, FITS tiled image
/// convention).
bool isWholeRiceStream(std::span<const std::uint8_t> stream, std::uint64_t samples, int sampleBytes,
                       int blockSize);

} // namespace zre::fileio
