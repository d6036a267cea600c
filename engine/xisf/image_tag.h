#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/xisf/sample_convert.h"

namespace zre {

/// What the first `Image` element of a header says of its pixels.
struct ImageTag
{
    int width = 0;
    int height = 0;
    int channels = 0;
    std::string sampleFormat;
    SampleKind samples = SampleKind::UInt8;
    bool bigEndian = false;
    std::uint64_t position = 0; ///< of the pixel block in the file
    std::uint64_t size = 0;     ///< of the pixel block in the file
    std::string compression;    ///< empty for a raw block

    /// Bytes that the samples of all channels take; none when they exceed 64 bits.
    std::optional<std::uint64_t> neededBytes() const;
};

/// Finds the first `Image` element of a header and reads its attributes. False with a message when
/// one cannot be used; a non-numeric field throws what std::stoull throws.
bool parseImageTag(const std::string& header, ImageTag& out, std::string* error);

} // namespace zre
