#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace zre {

/// How a data block is compressed, from a text `codec[+sh]:uncompressedSize[:itemSize]`.
struct BlockCompression
{
    std::string codec; ///< "zlib", "lz4", "lz4hc" or "zstd", without "+sh"
    bool shuffled = false;
    std::uint64_t uncompressedSize = 0;
    std::uint64_t itemSize = 1;
};

/// Reads the text of a `compression` attribute; `defaultItemSize` holds when it names none.
/// False with "malformed XISF compression attribute." for fewer than two fields or an item size of
/// 0. A non-numeric field throws std::invalid_argument, one beyond 64 bits std::out_of_range.
bool parseBlockCompression(const std::string& text, std::uint64_t defaultItemSize,
                           BlockCompression& out, std::string* error);

/// Whether `blockSize` bytes can hold what `how` claims: false, with the text of an unknown codec
/// or of the codec's own failure, when no stream of that length expands so far. Asked before memory
/// is taken for the claim.
bool canExpand(std::uint64_t blockSize, const BlockCompression& how, std::string* error);

/// Decompresses `block` into `out`, whose size is the claimed one; a shuffled block stays shuffled.
/// False with the codec's text when the block is damaged or gives another number of bytes; `out` is
/// then undefined.
bool decompressInto(std::span<const std::uint8_t> block, const BlockCompression& how,
                    std::span<std::uint8_t> out, std::string* error);

/// Undoes compression and shuffling of `block` into `out`. A size that the codec cannot reach from
/// so few bytes is refused with the codec's own failure text before anything is allocated. `out`
/// changes only on success.
bool decompressBlock(std::span<const std::uint8_t> block, const BlockCompression& how,
                     std::vector<std::uint8_t>& out, std::string* error);

/// Undoes a byte shuffle: output byte i*item + j is input byte j*(n/item) + i; the rest is copied
/// as it stands. An item size of 0 counts as 1.
void unshuffle(std::span<const std::uint8_t> in, std::uint64_t itemSize, std::uint8_t* out);

/// The part of `unshuffle` that yields the `count` items from `first` on, out of `items` in all.
void unshuffleItems(const std::uint8_t* in, std::uint64_t items, std::uint64_t itemSize,
                    std::uint64_t first, std::uint64_t count, std::uint8_t* out);

/// Cuts `text` at each `delimiter`, keeping empty fields.
std::vector<std::string> split(const std::string& text, char delimiter);

} // namespace zre
