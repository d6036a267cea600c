#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vr180 {

using Bytes = std::vector<std::uint8_t>;

/// The XMP packet of a side-by-side stereo panorama of `width` by `height` pixels.
std::string stillXmp(int width, int height);

/// The file with the packet in it: an iTXt chunk behind IHDR, or an APP1 segment behind APP0.
/// Nothing for bytes that are no such file.
std::optional<Bytes> withXmpPng(const Bytes& file, int width, int height);
std::optional<Bytes> withXmpJpeg(const Bytes& file, int width, int height);

} // namespace vr180
