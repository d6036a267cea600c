#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zre {

enum class SampleKind
{
    UInt8,
    UInt16,
    UInt32,
    Float32
};

/// The kind that a `sampleFormat` names; none for a format that is not read.
std::optional<SampleKind> sampleKind(std::string_view name);

/// Bytes of one sample.
std::size_t sampleSize(SampleKind kind);

/// Turns the bytes of `count` samples end for end, in place.
void swapSamples(SampleKind kind, std::uint8_t* bytes, std::size_t count);

/// Converts `count` little-endian samples to floats of 0 to 1. A Float32 is limited to that range
/// and a NaN becomes 1; `bytes` may then be the memory of `out` itself.
void convertSamples(SampleKind kind, const std::uint8_t* bytes, std::size_t count, float* out);

} // namespace zre
