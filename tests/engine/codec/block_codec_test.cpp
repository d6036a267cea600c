#include "engine/codec/block_codec.h"

#include <random>
#include <string>

#include <gtest/gtest.h>
#include <lz4.h>
#include <zlib.h>
#include <zstd.h>

#include "engine/codec/text_codec.h"

using Bytes = std::vector<std::uint8_t>;

namespace {

Bytes randomBytes(std::size_t size)
{
    std::mt19937 random(11);
    Bytes bytes(size);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

Bytes bytesOf(const std::string& text)
{
    return {text.begin(), text.end()};
}

/// The fewest bytes that the library of `codec` makes of `size` zeros.
std::size_t packedZeros(const std::string& codec, std::size_t size)
{
    const Bytes zeros(size);
    Bytes packed(size + 1024);
    if (codec == "zlib") {
        uLongf length = packed.size();
        EXPECT_EQ(compress2(packed.data(), &length, zeros.data(), size, 9), Z_OK);
        return length;
    }
    if (codec == "zstd")
        return ZSTD_compress(packed.data(), packed.size(), zeros.data(), size, 19);
    return static_cast<std::size_t>(LZ4_compress_default(
        reinterpret_cast<const char*>(zeros.data()), reinterpret_cast<char*>(packed.data()),
        static_cast<int>(size), static_cast<int>(packed.size())));
}

} // namespace

TEST(CanExpand, WhatACodecReachesPassesAndTwiceAsMuchDoesNot)
{
    constexpr std::size_t kSize = std::size_t{16} << 20;
    for (const char* codec : {"zlib", "lz4", "lz4hc", "zstd"}) {
        const std::size_t packed = packedZeros(codec, kSize);
        zre::BlockCompression how;
        how.codec = codec;
        how.uncompressedSize = kSize;
        EXPECT_TRUE(zre::canExpand(packed, how, nullptr)) << codec << " of " << packed;
        how.uncompressedSize = 2 * kSize;
        EXPECT_FALSE(zre::canExpand(packed, how, nullptr)) << codec << " of " << packed;
    }
}

TEST(Unshuffle, PutsEveryByteWhereTheDefinitionSays)
{
    for (const std::size_t size : {0, 1, 7, 64, 1000, 1003})
        for (const std::size_t item : {1, 2, 3, 4, 8, 16, 999, 1003, 5000}) {
            const Bytes in = randomBytes(size);
            Bytes out(size + 1, 0xEE);
            zre::unshuffle(in, item, out.data());
            const std::size_t items = size / item;
            for (std::size_t i = 0; i < size; ++i) {
                const bool rest = i >= items * item;
                ASSERT_EQ(out[i], in[rest ? i : (i % item) * items + i / item])
                    << size << ' ' << item << ' ' << i;
            }
            EXPECT_EQ(out[size], 0xEE);
        }
}

TEST(Unshuffle, PartsJoinToTheWhole)
{
    for (const std::size_t item : {2, 3, 4, 8}) {
        const std::size_t items = 777;
        const Bytes in = randomBytes(items * item);
        Bytes whole(in.size());
        Bytes parts(in.size());
        zre::unshuffle(in, item, whole.data());
        for (std::size_t first = 0; first < items; first += 100)
            zre::unshuffleItems(in.data(), items, item, first,
                                std::min<std::size_t>(100, items - first),
                                parts.data() + first * item);
        EXPECT_EQ(parts, whole);
    }
}

TEST(TextCodec, Base64ReadsTheVectorsOfItsStandard)
{
    for (const auto& [text, bytes] :
         {std::pair{"", ""}, std::pair{"Zg==", "f"}, std::pair{"Zm8=", "fo"},
          std::pair{"Zm9v", "foo"}, std::pair{"Zm9vYg", "foob"},
          std::pair{" Zm9v\n YmE= ", "fooba"}, std::pair{"Zm9vYmFy", "foobar"}})
        EXPECT_EQ(zre::decodeBase64(text), bytesOf(bytes)) << text;
    for (const char* bad : {"Z", "Zm9vY", "Zm9=v", "Zm9*", "Zm-_"})
        EXPECT_EQ(zre::decodeBase64(bad), std::nullopt) << bad;
}

TEST(TextCodec, HexRefusesHalfABytesAndOtherLetters)
{
    EXPECT_EQ(zre::decodeHex("00 fF\n1a"), (Bytes{0, 255, 26}));
    EXPECT_EQ(zre::decodeHex("0"), std::nullopt);
    EXPECT_EQ(zre::decodeHex("0g"), std::nullopt);
}
