#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vr180 {

using Bytes = std::vector<std::uint8_t>;

/// A box of an MP4 file, as offsets into its bytes.
struct Box
{
    std::size_t start = 0;
    std::size_t payload = 0; ///< behind the header
    std::size_t size = 0;    ///< header and payload

    std::size_t end() const { return start + size; }
};

std::uint64_t bigEndian(const Bytes& bytes, std::size_t at, int count);
void appendBigEndian(Bytes& bytes, std::uint64_t value, int count);
void append(Bytes& bytes, std::string_view text);

/// The box that begins at `begin`; nothing when its header or its end lies beyond `end`. Size 1 is
/// followed by a 64-bit size, size 0 reaches to `end`.
std::optional<Box> boxAt(const Bytes& bytes, std::size_t begin, std::size_t end);

/// The first box of `type` among the siblings from `begin` to `end`; nothing when a damaged one
/// stands before it.
std::optional<Box> findBox(const Bytes& bytes, std::size_t begin, std::size_t end,
                           std::string_view type);

/// The first `trak` box of a video from `begin` to `end`.
std::optional<Box> findVideoTrak(const Bytes& bytes, std::size_t begin, std::size_t end);

/// Adds `delta` to a box's size; false when its field cannot hold the sum. A size of 0 needs none.
bool growBoxSize(Bytes& bytes, const Box& box, std::size_t delta);

/// Appends the header of a full box: version 0, no flags.
void appendFullBoxHeader(Bytes& bytes, std::string_view type, std::size_t payloadBytes);
/// Appends a box of `type` around `payload`.
void appendBox(Bytes& bytes, std::string_view type, const Bytes& payload);
/// The same with a full box.
void appendFullBox(Bytes& bytes, std::string_view type, const Bytes& payload);

} // namespace vr180
