#include <stdexcept>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "engine/xisf/xisf.h"
#include "tests/engine/xisf/xisf_bytes.h"
#include "tests/support/testkit.h"

using namespace zrtest;
using zre::Image;
using zre::Wcs;

namespace {

std::filesystem::path filePath()
{
    return scratchFolder() / "failure.xisf";
}

/// What loading `file` says; a failure must leave image and solution alone.
std::string messageOf(const Bytes& file)
{
    writeBytes(filePath(), file);
    Image image = ramp(3, 2);
    Wcs wcs;
    wcs.resolutionArcsec = 42.0;
    std::string error;
    EXPECT_FALSE(zre::loadXisf(filePath().string(), image, wcs, &error));
    EXPECT_TRUE(imagesNear(image, ramp(3, 2), 0));
    EXPECT_EQ(wcs.resolutionArcsec, 42.0);
    EXPECT_FALSE(zre::loadXisf(filePath().string(), image, wcs, nullptr));
    return error;
}

const std::string kGeometry = "geometry=\"4:3:1\" ";
const std::string kUInt8 = kGeometry + "sampleFormat=\"UInt8\" ";
const Bytes kBlock(12, 7);

std::string messageWith(const std::string& attributes, const Bytes& block = kBlock)
{
    return messageOf(xisfFile(attributes, block));
}

std::string messageCompressed(const std::string& compression, const Bytes& block = kBlock)
{
    return messageWith(kUInt8 + "compression=\"" + compression + "\"", block);
}

/// A whole file of a few hundred bytes, its block at the very end.
Bytes small()
{
    constexpr std::size_t kPosition = 200;
    const Bytes block = compressed("zlib", Bytes(12, 7));
    std::string header =
        "<xisf><Image geometry=\"4:3:1\" sampleFormat=\"UInt8\" compression=\"zlib:12\" "
        "location=\"attachment:200:" +
        std::to_string(block.size()) + "\"><FITSKeyword name=\"CTYPE1\"/></Image></xisf>";
    header.resize(kPosition - 16, '\n');
    return xisfAround(header, block);
}

} // namespace

TEST(XisfFailure, TextsOfTheContainer)
{
    Image image;
    Wcs wcs;
    std::string error;
    const std::string missing = (scratchFolder() / "missing.xisf").string();
    EXPECT_FALSE(zre::loadXisf(missing, image, wcs, &error));
    EXPECT_EQ(error, "cannot open file: " + missing);
    EXPECT_FALSE(zre::loadXisf(scratchFolder().string(), image, wcs, &error));
    EXPECT_EQ(error, "not an XISF file (bad signature).");
    EXPECT_EQ(messageOf({}), "not an XISF file (bad signature).");
    Bytes file = xisfFile(kUInt8, kBlock);
    file[7] = '1';
    EXPECT_EQ(messageOf(file), "not an XISF file (bad signature).");
    for (const Bytes& length : {Bytes{0, 0, 0, 0}, Bytes{1, 0, 0, 4}, Bytes{255, 255, 255, 255}}) {
        file = xisfFile(kUInt8, kBlock);
        std::copy(length.begin(), length.end(), file.begin() + 8);
        EXPECT_EQ(messageOf(file), "invalid XISF header length.");
    }
    file = xisfFile(kUInt8, kBlock);
    file[11] = 4; // 64 MiB of header in a small file
    file[8] = file[9] = file[10] = 0;
    EXPECT_EQ(messageOf(file), "truncated XISF header.");
    EXPECT_EQ(messageOf(xisfAround("<xisf><Image/></xisf>", {})),
              "no <Image> element in XISF header.");
}

TEST(XisfFailure, APipeIsRefusedAndNotWaitedFor)
{
    const std::string pipe = (scratchFolder() / "pipe.xisf").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    Image image;
    Wcs wcs;
    std::string error;
    EXPECT_FALSE(zre::loadXisf(pipe, image, wcs, &error));
    EXPECT_EQ(error, "cannot open file: " + pipe);
}

TEST(XisfFailure, TextsOfTheImageElement)
{
    for (const char* geometry : {"", "4:3", "0:3:1", "4:-3:1", "4:3:0"})
        EXPECT_EQ(messageWith("sampleFormat=\"UInt8\" geometry=\"" + std::string(geometry) + "\""),
                  "bad <Image> geometry.");
    for (const char* format : {"", "UInt64", "Float64", "Complex32", "uint8"})
        EXPECT_EQ(messageWith(kGeometry + "sampleFormat=\"" + format + "\""),
                  std::string("unsupported XISF sample format: ") + format);
    for (const char* location : {"", "inline:base64", "embedded", "attachment:1", "url(x):1:2"})
        EXPECT_EQ(messageWith("location=\"" + std::string(location) + "\" " + kUInt8),
                  std::string("unsupported XISF pixel location (need attachment): ") + location);
}

TEST(XisfFailure, TextsOfTheBlock)
{
    for (const char* location : {"2048:13", "2060:1", "2061:0", "99999999999:12", "-1:12",
                                 "2048:-1", "18446744073709551615:18446744073709551615"})
        EXPECT_EQ(messageWith("location=\"attachment:" + std::string(location) + "\" " + kUInt8),
                  "failed to read XISF pixel block.")
            << location;
    EXPECT_EQ(messageWith(kUInt8, Bytes(11, 0)),
              "XISF data block smaller than the image geometry.");
    const std::string huge =
        "geometry=\"2147483647:2147483647:2147483647\" sampleFormat=\"UInt32\"";
    EXPECT_EQ(messageWith(huge), "XISF data block smaller than the image geometry.");
    for (const char* claim : {"zlib:12", "zlib:18446744073709551615", "zlib:-1"})
        EXPECT_EQ(messageWith(huge + " compression=\"" + claim + "\""),
                  "XISF uncompressed size smaller than the image geometry.");
}

TEST(XisfFailure, TextsOfTheCodecs)
{
    EXPECT_EQ(messageCompressed("zlib"), "malformed XISF compression attribute.");
    EXPECT_EQ(messageCompressed("zlib+sh:12:0"), "malformed XISF compression attribute.");
    EXPECT_EQ(messageCompressed("zlib:11"),
              "XISF uncompressed size smaller than the image geometry.");
    EXPECT_EQ(messageCompressed("lzma+sh:12"), "unsupported XISF compression codec: lzma");
    EXPECT_EQ(messageCompressed("zlib:12"), "zlib: decompress failed.");
    EXPECT_EQ(messageCompressed("lz4:12"), "lz4: decompress failed.");
    EXPECT_EQ(messageCompressed("lz4hc:12"), "lz4: decompress failed.");
    EXPECT_EQ(messageCompressed("zstd:12"), "zstd frame-size error.");
    const Bytes samples(13, 7);
    EXPECT_EQ(messageCompressed("zlib:14", compressed("zlib", samples)),
              "zlib: decompress failed.");
    EXPECT_EQ(messageCompressed("lz4:14", compressed("lz4", samples)), "lz4: decompress failed.");
    EXPECT_EQ(messageCompressed("zstd:14", compressed("zstd", samples)),
              "zstd: decompressed size mismatch.");
    EXPECT_EQ(messageCompressed("zstd:12", compressed("zstd", samples)),
              "zstd: Destination buffer is too small");
}

TEST(XisfFailure, ClaimsBeyondTheCodecsReachAreRefusedBeforeMemoryIsTaken)
{
    // Each would ask for more memory than any machine has.
    for (const char* size : {"2305843009213693952", "18446744073709551615"}) {
        const std::string claim(size);
        EXPECT_EQ(messageCompressed("zlib:" + claim), "zlib: decompress failed.");
        EXPECT_EQ(messageCompressed("zlib+sh:" + claim + ":4"), "zlib: decompress failed.");
        EXPECT_EQ(messageCompressed("lz4:" + claim), "lz4: decompress failed.");
        EXPECT_EQ(messageCompressed("zstd:" + claim), "zstd: decompressed size mismatch.");
    }
    EXPECT_EQ(messageCompressed("lz4:2147483648"), "lz4: decompress failed.");
}

TEST(XisfFailure, NonNumericFieldsLeaveTheReaderAsExceptions)
{
    const auto load = [](const std::string& attributes) {
        writeBytes(filePath(), xisfFile(attributes, kBlock));
        Image image;
        Wcs wcs;
        zre::loadXisf(filePath().string(), image, wcs, nullptr);
    };
    EXPECT_THROW(load("geometry=\"a:3:1\" sampleFormat=\"UInt8\""), std::invalid_argument);
    EXPECT_THROW(load("geometry=\"4:3:99999999999\" sampleFormat=\"UInt8\""), std::out_of_range);
    EXPECT_THROW(load("location=\"attachment:x:1\" " + kUInt8), std::invalid_argument);
    EXPECT_THROW(load(kUInt8 + "compression=\"zlib:\""), std::invalid_argument);
    EXPECT_THROW(load(kUInt8 + "compression=\"zlib:12:x\""), std::invalid_argument);
}

TEST(XisfFailure, EveryPrefixOfAFileIsRefused)
{
    const Bytes whole = small();
    writeBytes(filePath(), whole);
    Image image;
    Wcs wcs;
    ASSERT_TRUE(zre::loadXisf(filePath().string(), image, wcs, nullptr));
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(
            messageOf({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}).empty())
            << length;
}

TEST(XisfFailure, FlippedBytesNeverGiveAnImageThatDoesNotHoldItsPixels)
{
    const Bytes whole = small();
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (const int flip : {0x01, 0x10, 0xFF}) {
            Bytes file = whole;
            file[at] = static_cast<std::uint8_t>(file[at] ^ flip);
            writeBytes(filePath(), file);
            Image image;
            Wcs wcs;
            bool loaded = false;
            try {
                loaded = zre::loadXisf(filePath().string(), image, wcs, nullptr);
            } catch (const std::logic_error&) {
                // The number conversion of a damaged field.
            }
            if (loaded) {
                EXPECT_TRUE(image.usable());
                EXPECT_EQ(image.data.size(),
                          image.pixelCount() * static_cast<std::size_t>(image.channels));
            }
        }
}
