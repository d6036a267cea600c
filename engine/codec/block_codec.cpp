#include "engine/codec/block_codec.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>
#include <utility>

#include <lz4.h>
#include <zlib.h>
#include <zstd.h>

#include "engine/codec/fail.h"

namespace zre {

namespace {

using Input = std::span<const std::uint8_t>;
using Output = std::span<std::uint8_t>;

bool inflateZlib(Input block, Output out, std::string* error)
{
    uLongf produced = out.size();
    if (uncompress(out.data(), &produced, block.data(), block.size()) != Z_OK ||
        produced != out.size())
        return fail(error, "zlib: decompress failed.");
    return true;
}

bool decodeLz4(Input block, Output out, std::string* error)
{
    constexpr std::size_t kMost = std::numeric_limits<int>::max();
    if (block.size() > kMost || out.size() > kMost)
        return fail(error, "lz4: decompress failed.");
    const int produced = LZ4_decompress_safe(
        reinterpret_cast<const char*>(block.data()), reinterpret_cast<char*>(out.data()),
        static_cast<int>(block.size()), static_cast<int>(out.size()));
    if (produced < 0 || static_cast<std::size_t>(produced) != out.size())
        return fail(error, "lz4: decompress failed.");
    return true;
}

bool decodeZstdFrames(Input block, Output out, std::string* error)
{
    std::size_t read = 0;
    std::size_t written = 0;
    while (read < block.size() && written < out.size()) {
        const std::size_t frame =
            ZSTD_findFrameCompressedSize(block.data() + read, block.size() - read);
        if (ZSTD_isError(frame))
            return fail(error, "zstd frame-size error.");
        const std::size_t produced =
            ZSTD_decompress(out.data() + written, out.size() - written, block.data() + read, frame);
        if (ZSTD_isError(produced))
            return fail(error, std::string("zstd: ") + ZSTD_getErrorName(produced));
        read += frame;
        written += produced;
    }
    if (written != out.size())
        return fail(error, "zstd: decompressed size mismatch.");
    return true;
}

struct Codec
{
    std::string_view name;
    std::uint64_t mostExpansion; ///< output bytes per input byte that the format can reach
    std::uint64_t mostOutput;
    const char* impossibleSize;
    bool (*decode)(Input, Output, std::string*);
};

constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t kLz4Limit = std::numeric_limits<int>::max();

constexpr std::array kCodecs{
    Codec{"zlib", 1032, kNoLimit, "zlib: decompress failed.", inflateZlib},
    Codec{"lz4", 255, kLz4Limit, "lz4: decompress failed.", decodeLz4},
    Codec{"lz4hc", 255, kLz4Limit, "lz4: decompress failed.", decodeLz4},
    Codec{"zstd", 32768, kNoLimit, "zstd: decompressed size mismatch.", decodeZstdFrames},
};

const Codec* findCodec(const std::string& name, std::string* error)
{
    const auto* const found = std::find_if(kCodecs.begin(), kCodecs.end(),
                                           [&](const Codec& codec) { return codec.name == name; });
    if (found != kCodecs.end())
        return found;
    fail(error, "unsupported XISF compression codec: " + name);
    return nullptr;
}

} // namespace

std::vector<std::string> split(const std::string& text, char delimiter)
{
    std::vector<std::string> fields;
    std::size_t start = 0;
    for (std::size_t end = 0; (end = text.find(delimiter, start)) != std::string::npos;
         start = end + 1)
        fields.push_back(text.substr(start, end - start));
    fields.push_back(text.substr(start));
    return fields;
}

bool parseBlockCompression(const std::string& text, std::uint64_t defaultItemSize,
                           BlockCompression& out, std::string* error)
{
    const std::vector<std::string> fields = split(text, ':');
    if (fields.size() < 2)
        return fail(error, "malformed XISF compression attribute.");
    const std::size_t suffix = fields[0].find("+sh");
    BlockCompression how;
    how.codec = fields[0].substr(0, suffix);
    how.shuffled = suffix != std::string::npos;
    how.uncompressedSize = std::stoull(fields[1]);
    how.itemSize = fields.size() > 2 ? std::stoull(fields[2]) : defaultItemSize;
    if (how.itemSize == 0)
        return fail(error, "malformed XISF compression attribute.");
    out = std::move(how);
    return true;
}

bool canExpand(std::uint64_t blockSize, const BlockCompression& how, std::string* error)
{
    const Codec* codec = findCodec(how.codec, error);
    if (!codec)
        return false;
    if (how.uncompressedSize > codec->mostOutput ||
        how.uncompressedSize / codec->mostExpansion > blockSize)
        return fail(error, codec->impossibleSize);
    return true;
}

bool decompressInto(std::span<const std::uint8_t> block, const BlockCompression& how,
                    std::span<std::uint8_t> out, std::string* error)
{
    const Codec* codec = findCodec(how.codec, error);
    return codec && codec->decode(block, out, error);
}

bool decompressBlock(std::span<const std::uint8_t> block, const BlockCompression& how,
                     std::vector<std::uint8_t>& out, std::string* error)
{
    if (!canExpand(block.size(), how, error))
        return false;
    std::vector<std::uint8_t> bytes(how.uncompressedSize);
    if (!decompressInto(block, how, bytes, error))
        return false;
    if (how.shuffled) {
        std::vector<std::uint8_t> ordered(bytes.size());
        unshuffle(bytes, how.itemSize, ordered.data());
        bytes.swap(ordered);
    }
    out = std::move(bytes);
    return true;
}

} // namespace zre
