#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Builds XISF files byte by byte, with the codec libraries themselves and none of the code under
/// test.
namespace zrtest {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::size_t kBlockPosition = 2048;

/// A whole file: one `Image` element with `attributes` and `children`, and `block` at
/// `kBlockPosition`, which the `location` attribute names.
Bytes xisfFile(const std::string& attributes, const Bytes& block, const std::string& children = "");

/// A whole file around a header as it stands.
Bytes xisfAround(const std::string& header, const Bytes& block);

/// "zlib", "lz4", "lz4hc" or "zstd".
Bytes compressed(const std::string& codec, const Bytes& bytes);

/// Byte j of item i goes to j * items + i; what is left over stays at the end.
Bytes shuffled(const Bytes& bytes, std::size_t itemSize);

/// Every run of `size` bytes turned end for end.
Bytes byteSwapped(const Bytes& bytes, std::size_t size);

template <typename Sample>
Bytes bytesOf(const std::vector<Sample>& samples)
{
    const auto* first = reinterpret_cast<const std::uint8_t*>(samples.data());
    return {first, first + samples.size() * sizeof(Sample)};
}

} // namespace zrtest
