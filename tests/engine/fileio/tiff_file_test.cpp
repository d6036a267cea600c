#include "engine/fileio/tiff_file.h"

#include <array>
#include <cmath>
#include <cstring>
#include <fstream>
#include <functional>
#include <limits>

#include <tiffio.h>

#include "tests/support/testkit.h"

namespace {

/// How libtiff itself is told to lay a test picture out.
struct TiffLayout
{
    int samples = 3;
    int bits = 8;
    int format = SAMPLEFORMAT_UINT;
    int photometric = PHOTOMETRIC_RGB;
    int compression = COMPRESSION_NONE;
    bool planar = false;
    bool tiled = false;
    const char* mode = "wl"; ///< byte order
    int orientation = ORIENTATION_TOPLEFT;
    int rowsPerStrip = 3;
    int extraSample = -1; ///< meaning of the fourth sample; none said
};

/// The sample of channel c at (x, y) as the bytes to store.
using SampleOf = std::function<std::vector<std::uint8_t>(int x, int y, int c)>;

template <class T>
std::vector<std::uint8_t> bytesOf(T value)
{
    std::vector<std::uint8_t> bytes(sizeof value);
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

void setTags(TIFF* tiff, const TiffLayout& layout, int width, int height)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, layout.samples);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, layout.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, layout.format);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, layout.photometric);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, layout.compression);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, layout.orientation);
    if (const auto extra = static_cast<std::uint16_t>(layout.extraSample); layout.extraSample >= 0)
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &extra);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG,
                 layout.planar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    if (layout.tiled) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, 16);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, 16);
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, layout.rowsPerStrip);
    }
}

/// One block of the file: `columns` by `rows` pixels from (x0, y0) on, repeating the last inside.
std::vector<std::uint8_t> block(const TiffLayout& layout, const SampleOf& sample, int x0, int y0,
                                int columns, int rows, int plane)
{
    std::vector<std::uint8_t> bytes;
    for (int y = y0; y < y0 + rows; ++y)
        for (int x = x0; x < x0 + columns; ++x)
            for (int c = layout.planar ? plane : 0;
                 c < (layout.planar ? plane + 1 : layout.samples); ++c) {
                const auto one = sample(x, y, c);
                bytes.insert(bytes.end(), one.begin(), one.end());
            }
    return bytes;
}

std::filesystem::path makeTiff(const TiffLayout& layout, int width, int height,
                               const SampleOf& sample)
{
    const std::filesystem::path path = zrtest::scratchFolder() / "made.tif";
    TIFF* tiff = TIFFOpen(path.c_str(), layout.mode);
    EXPECT_NE(tiff, nullptr);
    setTags(tiff, layout, width, height);
    for (int plane = 0; plane < (layout.planar ? layout.samples : 1); ++plane)
        if (layout.tiled)
            for (int y = 0; y < height; y += 16)
                for (int x = 0; x < width; x += 16) {
                    auto tile = block(layout, sample, x, y, 16, 16, plane);
                    TIFFWriteTile(tiff, tile.data(), static_cast<std::uint32_t>(x),
                                  static_cast<std::uint32_t>(y), 0,
                                  static_cast<std::uint16_t>(plane));
                }
        else
            for (int y = 0; y < height; ++y) {
                auto row = block(layout, sample, 0, y, width, 1, plane);
                EXPECT_EQ(TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y),
                                            static_cast<std::uint16_t>(plane)),
                          1);
            }
    TIFFClose(tiff);
    return path;
}

zre::Image loaded(const std::filesystem::path& path, zre::ImageFileInfo* info = nullptr)
{
    zre::Image image;
    std::string error;
    EXPECT_TRUE(zre::loadTiff(path.string(), image, info, &error)) << error;
    return image;
}

/// A picture with a different number in every sample.
int stepOf(int x, int y, int c)
{
    return 1 + 7 * x + 131 * y + 3 * c;
}

zre::Image expected(int width, int height, int channels, const std::function<float(int)>& valueOf)
{
    zre::Image image(width, height, channels == 3);
    for (int c = 0; c < channels; ++c)
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                image.plane(c)[y * width + x] = valueOf(stepOf(x, y, c));
    return image;
}

struct LayoutCase
{
    const char* name;
    bool planar;
    bool tiled;
    int compression;
    const char* mode;
};

class TiffLayouts : public testing::TestWithParam<LayoutCase>
{
};

TEST_P(TiffLayouts, EveryLayoutOfTheSamePictureGivesTheSameSamples)
{
    const LayoutCase& c = GetParam();
    for (const int samples : {1, 3, 4}) {
        TiffLayout layout;
        layout.samples = samples;
        layout.bits = 16;
        layout.photometric = samples == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
        layout.planar = c.planar;
        layout.tiled = c.tiled;
        layout.compression = c.compression;
        layout.mode = c.mode;
        const auto path = makeTiff(layout, 37, 21, [](int x, int y, int channel) {
            return bytesOf(static_cast<std::uint16_t>(stepOf(x, y, channel)));
        });
        zre::ImageFileInfo info;
        const zre::Image image = loaded(path, &info);
        // 16-bit samples are exact: each names its own integer again.
        EXPECT_TRUE(zrtest::imagesNear(
            image,
            expected(37, 21, samples == 1 ? 1 : 3, [](int k) { return float(k) / 65535.0f; }),
            1e-7));
        EXPECT_EQ(info.sampleFormat, "UInt16");
        EXPECT_EQ(info.channels, samples == 1 ? 1 : 3);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, TiffLayouts,
    testing::Values(LayoutCase{"ChunkyStrips", false, false, COMPRESSION_NONE, "wl"},
                    LayoutCase{"PlanarStrips", true, false, COMPRESSION_NONE, "wl"},
                    LayoutCase{"ChunkyTiles", false, true, COMPRESSION_NONE, "wl"},
                    LayoutCase{"PlanarTiles", true, true, COMPRESSION_LZW, "wl"},
                    LayoutCase{"BigEndian", false, false, COMPRESSION_NONE, "wb"},
                    LayoutCase{"BigEndianPlanarDeflate", true, false, COMPRESSION_ADOBE_DEFLATE,
                               "wb"},
                    LayoutCase{"PackBits", false, false, COMPRESSION_PACKBITS, "wl"},
                    LayoutCase{"BigTiff", false, false, COMPRESSION_ADOBE_DEFLATE, "w8"}),
    [](const auto& testInfo) { return testInfo.param.name; });

struct SampleCase
{
    const char* name;
    int bits;
    int format;
    std::function<std::vector<std::uint8_t>(int)> store;
    std::function<double(int)> value;
};

class TiffSamples : public testing::TestWithParam<SampleCase>
{
};

TEST_P(TiffSamples, EveryTypeIsScaledByItsRange)
{
    TiffLayout layout;
    layout.samples = 1;
    layout.photometric = PHOTOMETRIC_MINISBLACK;
    layout.bits = GetParam().bits;
    layout.format = GetParam().format;
    for (const char* mode : {"wl", "wb"}) {
        layout.mode = mode;
        zre::ImageFileInfo info;
        const zre::Image image = loaded(
            makeTiff(layout, 9, 1, [](int x, int, int) { return GetParam().store(x); }), &info);
        ASSERT_EQ(image.data.size(), 9U);
        for (int x = 0; x < 9; ++x)
            EXPECT_NEAR(image.data[static_cast<std::size_t>(x)], GetParam().value(x), 1e-6) << x;
        EXPECT_EQ(info.bitDepth, GetParam().bits);
    }
}

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr std::array<double, 9> kReals{0.0, 0.25, 1.0, -0.5, 1.75, kNan, HUGE_VAL, -HUGE_VAL, 6e-8};
constexpr std::array<double, 9> kLimitedReals{0.0, 0.25, 1.0, 0.0, 1.0, 0.0, 1.0, 0.0, 6e-8};
// The same numbers in IEEE 754 binary16, by hand; the last is its smallest subnormal.
constexpr std::array<std::uint16_t, 9> kHalves{0x0000, 0x3400, 0x3c00, 0xb800, 0x3f00,
                                               0x7e00, 0x7c00, 0xfc00, 0x0001};

double limited(int i)
{
    return kLimitedReals[static_cast<std::size_t>(i)];
}

INSTANTIATE_TEST_SUITE_P(
    Types, TiffSamples,
    testing::Values(
        SampleCase{"UInt8", 8, SAMPLEFORMAT_UINT,
                   [](int i) { return bytesOf(static_cast<std::uint8_t>(i * 255 / 8)); },
                   [](int i) { return (i * 255 / 8) / 255.0; }},
        SampleCase{"UInt32", 32, SAMPLEFORMAT_UINT,
                   [](int i) { return bytesOf(static_cast<std::uint32_t>(i * 4294967295LL / 8)); },
                   [](int i) { return i / 8.0; }},
        SampleCase{"Int16NegativesAreBlack", 16, SAMPLEFORMAT_INT,
                   [](int i) { return bytesOf(static_cast<std::int16_t>((i - 4) * 8191)); },
                   [](int i) { return i < 4 ? 0.0 : (i - 4) * 8191 / 32767.0; }},
        SampleCase{"Float16", 16, SAMPLEFORMAT_IEEEFP,
                   [](int i) { return bytesOf(kHalves[static_cast<std::size_t>(i)]); }, limited},
        SampleCase{
            "Float32", 32, SAMPLEFORMAT_IEEEFP,
            [](int i) { return bytesOf(static_cast<float>(kReals[static_cast<std::size_t>(i)])); },
            limited},
        SampleCase{"Float64", 64, SAMPLEFORMAT_IEEEFP,
                   [](int i) { return bytesOf(kReals[static_cast<std::size_t>(i)]); }, limited}),
    [](const auto& testInfo) { return testInfo.param.name; });

TEST(TiffFile, ColoursMultipliedByTheirAlphaAreTakenBack)
{
    for (const bool planar : {false, true})
        for (const bool tiled : {false, true}) {
            TiffLayout layout;
            layout.samples = 4;
            layout.bits = 32;
            layout.format = SAMPLEFORMAT_IEEEFP;
            layout.planar = planar;
            layout.tiled = tiled;
            layout.extraSample = EXTRASAMPLE_ASSOCALPHA;
            const zre::Image image = loaded(makeTiff(layout, 5, 3, [](int x, int y, int c) {
                const float alpha = static_cast<float>(x) / 4.0f; // none at all in column 0
                return bytesOf(c == 3 ? alpha : alpha * static_cast<float>(1 + y + 3 * c) / 10.0f);
            }));
            ASSERT_EQ(image.channels, 3);
            ASSERT_EQ(image.data.size(), 45U);
            for (int c = 0; c < 3; ++c)
                for (int y = 0; y < 3; ++y)
                    for (int x = 0; x < 5; ++x)
                        EXPECT_FLOAT_EQ(image.plane(c)[5 * y + x],
                                        x == 0 ? 0.0f : static_cast<float>(1 + y + 3 * c) / 10.0f)
                            << "planar " << planar << " tiled " << tiled << " at " << x;
        }
}

TEST(TiffFile, MinIsWhiteIsTurnedOver)
{
    TiffLayout layout;
    layout.samples = 1;
    layout.photometric = PHOTOMETRIC_MINISWHITE;
    layout.bits = 16;
    const zre::Image image = loaded(makeTiff(layout, 5, 2, [](int x, int, int) {
        return bytesOf(static_cast<std::uint16_t>(x * 16000));
    }));
    for (int x = 0; x < 5; ++x)
        EXPECT_FLOAT_EQ(image.data[static_cast<std::size_t>(x)], (65535.0f - x * 16000) / 65535.0f);
}

struct WriteCase
{
    int bits;
    int model;
    double tolerance;
};

class TiffRoundTrip : public testing::TestWithParam<WriteCase>
{
};

TEST_P(TiffRoundTrip, ComesBackAtItsDepth)
{
    const WriteCase& c = GetParam();
    zre::Image image = zrtest::noise(301, 57, c.model, 11);
    image.data[0] = std::numeric_limits<float>::quiet_NaN();
    image.data[1] = -3.0f;
    image.data[2] = 7.0f;
    const auto path = zrtest::scratchFolder() / "written.tiff";
    std::string error;
    ASSERT_TRUE(zre::writeTiff(path.string(), image, c.bits, &error)) << error;
    image.data[0] = 0.0f;
    image.data[1] = 0.0f;
    image.data[2] = 1.0f;
    zre::ImageFileInfo info;
    const zre::Image back = loaded(path, &info);
    EXPECT_TRUE(zrtest::imagesNear(back, image, c.tolerance));
    EXPECT_EQ(info.bitDepth, c.bits);
    // What was quantised once stays as it is.
    ASSERT_TRUE(zre::writeTiff(path.string(), back, c.bits, &error)) << error;
    EXPECT_TRUE(zrtest::imagesNear(loaded(path), back, 0.0));
}

INSTANTIATE_TEST_SUITE_P(Depths, TiffRoundTrip,
                         testing::Values(WriteCase{8, 1, 0.5001 / 255},
                                         WriteCase{8, 0, 0.5001 / 255},
                                         WriteCase{16, 1, 0.5001 / 65535},
                                         WriteCase{16, 0, 0.5001 / 65535}, WriteCase{32, 1, 0.0},
                                         WriteCase{32, 0, 0.0}));

TEST(TiffFile, FailedWriteLeavesTheOldFileAndNothingElse)
{
    const auto folder = zrtest::scratchFolder() / "kept";
    std::filesystem::create_directories(folder / "taken.tif");
    std::string error;
    // A folder stands where the file should go: the temporary is complete, the rename fails.
    EXPECT_FALSE(
        zre::writeTiff((folder / "taken.tif").string(), zrtest::noise(8, 8, 1, 1), 16, &error));
    EXPECT_FALSE(error.empty());
    EXPECT_FALSE(zre::writeTiff((folder / "absent" / "a.tif").string(), zrtest::noise(8, 8, 1, 1),
                                16, &error));
    const auto begin = std::filesystem::directory_iterator(folder);
    EXPECT_EQ(std::distance(begin, std::filesystem::directory_iterator{}), 1);
}

/// Small files of several layouts, for damage.
std::vector<std::vector<std::uint8_t>> smallFiles()
{
    std::vector<std::vector<std::uint8_t>> files;
    for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE})
        for (const bool tiled : {false, true}) {
            TiffLayout layout;
            layout.bits = 16;
            layout.compression = compression;
            layout.tiled = tiled;
            layout.planar = tiled;
            files.push_back(zrtest::readBytes(makeTiff(layout, 11, 7, [](int x, int y, int c) {
                return bytesOf(static_cast<std::uint16_t>(stepOf(x, y, c)));
            })));
        }
    return files;
}

TEST(TiffDamage, EveryTruncationIsRefusedAndLeavesTheImage)
{
    for (const auto& file : smallFiles())
        for (std::size_t length = 0; length < file.size(); ++length) {
            zre::Image image = zrtest::ramp(3, 3);
            // A copy of its own size, so that a sanitizer sees a read behind the end.
            const std::vector<std::uint8_t> prefix(file.begin(),
                                                   file.begin() + static_cast<long>(length));
            std::string error;
            if (!zre::decodeTiff(prefix, image, nullptr, &error)) {
                EXPECT_FALSE(error.empty());
                EXPECT_TRUE(zrtest::imagesNear(image, zrtest::ramp(3, 3), 0.0));
            } else {
                // Only what lies behind the directory's needs may be missing.
                EXPECT_GT(length + 8, file.size());
            }
        }
}

TEST(TiffDamage, FlippedBytesNeverGiveSamplesOutsideTheRange)
{
    for (const auto& file : smallFiles())
        for (std::size_t at = 0; at < file.size(); ++at)
            for (const std::uint8_t flip : {std::uint8_t{0xff}, std::uint8_t{0x01}}) {
                std::vector<std::uint8_t> damaged = file;
                damaged[at] ^= flip;
                zre::Image image;
                if (!zre::decodeTiff(damaged, image, nullptr, nullptr))
                    continue;
                ASSERT_TRUE(image.usable());
                ASSERT_EQ(image.data.size(),
                          image.pixelCount() * static_cast<std::size_t>(image.channels));
                for (const float v : image.data)
                    ASSERT_TRUE(v >= 0.0f && v <= 1.0f);
            }
}

TEST(TiffDamage, ClaimedSizeBeyondTheFileIsRefusedBeforeItIsAllocated)
{
    TiffLayout layout;
    layout.samples = 1;
    layout.photometric = PHOTOMETRIC_MINISBLACK;
    layout.rowsPerStrip = 1 << 20;
    for (const int compression : {COMPRESSION_NONE, COMPRESSION_ADOBE_DEFLATE}) {
        layout.compression = compression;
        const auto path = zrtest::scratchFolder() / "claims.tif";
        TIFF* tiff = TIFFOpen(path.c_str(), "w");
        setTags(tiff, layout, 20000, 20000);
        std::vector<std::uint8_t> row(20000);
        TIFFWriteScanline(tiff, row.data(), 0, 0);
        TIFFClose(tiff);
        zre::Image image;
        std::string error;
        EXPECT_FALSE(zre::loadTiff(path.string(), image, nullptr, &error));
        EXPECT_EQ(error, "the TIFF file is smaller than its image.");
    }
}

TEST(TiffFile, SixteenBitStarFieldKeepsItsRealCounts)
{
    const auto path = zrtest::sample("starfield_uma_16bit.tiff");
    if (!path)
        GTEST_SKIP() << "no sample photographs here";
    zre::ImageFileInfo info;
    const zre::Image image = loaded(*path, &info);
    EXPECT_EQ(image.width, 1024);
    EXPECT_EQ(image.height, 768);
    EXPECT_EQ(image.channels, 1);
    EXPECT_EQ(info.bitDepth, 16);
    // Counts by another program's reading of the file.
    for (const auto& [x, y, count] :
         {std::array{0, 0, 3776}, std::array{1023, 767, 5744}, std::array{500, 300, 6896}})
        EXPECT_EQ(std::lround(image.data[static_cast<std::size_t>(y * 1024 + x)] * 65535.0), count);
    long sum = 0;
    for (const float v : image.data)
        sum += std::lround(v * 65535.0);
    EXPECT_EQ(sum, 5009881255);
}

} // namespace
