#pragma once

#include <cstddef>
#include <cstdint>

namespace zre::fileio {

/// One sample type that is read at its own depth.
struct TiffSampleType
{
    int bits;
    int format; ///< SAMPLEFORMAT_UINT, _INT or _IEEEFP
    const char* name;
    /// Converts `count` samples that stand `stride` bytes apart to 0 to 1.
    void (*convert)(const std::uint8_t* in, std::size_t stride, float* out, std::size_t count);
};

/// Null when there is no such type.
const TiffSampleType* findTiffSampleType(int bits, int format);

} // namespace zre::fileio
