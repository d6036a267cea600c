#include "tests/engine/xisf/xisf_bytes.h"

#include <algorithm>
#include <stdexcept>

#include <lz4.h>
#include <lz4hc.h>
#include <zlib.h>
#include <zstd.h>

namespace zrtest {

Bytes xisfAround(const std::string& header, const Bytes& block)
{
    Bytes file{'X', 'I', 'S', 'F', '0', '1', '0', '0'};
    for (int shift = 0; shift < 32; shift += 8)
        file.push_back(static_cast<std::uint8_t>(header.size() >> shift & 0xFFU));
    file.insert(file.end(), 4, 0xAA); // reserved, never looked at
    file.insert(file.end(), header.begin(), header.end());
    file.insert(file.end(), block.begin(), block.end());
    return file;
}

Bytes xisfFile(const std::string& attributes, const Bytes& block, const std::string& children)
{
    std::string header = "<xisf version=\"1.0\"><Image " + attributes +
                         " location=\"attachment:" + std::to_string(kBlockPosition) + ":" +
                         std::to_string(block.size()) + "\">" + children + "</Image></xisf>";
    if (header.size() > kBlockPosition - 16)
        throw std::length_error("header too long");
    header.resize(kBlockPosition - 16, '\0');
    return xisfAround(header, block);
}

Bytes compressed(const std::string& codec, const Bytes& bytes)
{
    Bytes out(bytes.size() * 2 + 1024);
    const auto* in = reinterpret_cast<const char*>(bytes.data());
    auto* to = reinterpret_cast<char*>(out.data());
    const int size = static_cast<int>(bytes.size());
    const int room = static_cast<int>(out.size());
    if (codec == "zlib") {
        uLongf length = out.size();
        compress2(out.data(), &length, bytes.data(), bytes.size(), 1);
        out.resize(length);
    } else if (codec == "zstd") {
        out.resize(ZSTD_compress(out.data(), out.size(), bytes.data(), bytes.size(), 1));
    } else {
        const int length = codec == "lz4" ? LZ4_compress_default(in, to, size, room)
                                          : LZ4_compress_HC(in, to, size, room, 3);
        out.resize(static_cast<std::size_t>(length));
    }
    return out;
}

Bytes shuffled(const Bytes& bytes, std::size_t itemSize)
{
    Bytes out;
    const std::size_t items = bytes.size() / itemSize;
    for (std::size_t j = 0; j < itemSize && items > 0; ++j)
        for (std::size_t i = 0; i < items; ++i)
            out.push_back(bytes[i * itemSize + j]);
    out.insert(out.end(), bytes.begin() + static_cast<std::ptrdiff_t>(items * itemSize),
               bytes.end());
    return out;
}

Bytes byteSwapped(const Bytes& bytes, std::size_t size)
{
    Bytes out = bytes;
    for (auto at = out.begin(); at != out.end(); at += static_cast<std::ptrdiff_t>(size))
        std::reverse(at, at + static_cast<std::ptrdiff_t>(size));
    return out;
}

} // namespace zrtest
