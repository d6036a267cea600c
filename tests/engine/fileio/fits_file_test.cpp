#include "engine/fileio/fits_file.h"

#include <algorithm>
#include <array>
#include <bit>
#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>

#include <fitsio.h>
#include <gmock/gmock.h>

#include "engine/astro/astrometric_metadata.h"
#include "tests/support/testkit.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

/// A FITS unit by the letter of the standard: cards of 80 characters, records of 2880 bytes.
class FitsBytes
{
public:
    FitsBytes& card(std::string text)
    {
        text.resize(80, ' ');
        bytes.insert(bytes.end(), text.begin(), text.end());
        return *this;
    }
    FitsBytes& primary(int bitpix, const std::vector<int>& sides)
    {
        card("SIMPLE  =                    T");
        return shape(bitpix, sides);
    }
    FitsBytes& shape(int bitpix, const std::vector<int>& sides)
    {
        card("BITPIX  = " + std::to_string(bitpix));
        card("NAXIS   = " + std::to_string(sides.size()));
        for (std::size_t i = 0; i < sides.size(); ++i)
            card("NAXIS" + std::to_string(i + 1) + "  = " + std::to_string(sides[i]));
        return *this;
    }
    FitsBytes& endHeader()
    {
        card("END");
        return pad(' ');
    }
    template <class T>
    FitsBytes& samples(const std::vector<T>& values)
    {
        for (const T value : values) {
            std::array<std::uint8_t, sizeof(T)> raw{};
            std::memcpy(raw.data(), &value, sizeof(T));
            bytes.insert(bytes.end(), raw.rbegin(), raw.rend()); // FITS is big-endian
        }
        return pad(0);
    }

    Bytes bytes;

private:
    FitsBytes& pad(char with)
    {
        while (bytes.size() % 2880 != 0)
            bytes.push_back(static_cast<std::uint8_t>(with));
        return *this;
    }
};

zre::Image decoded(const Bytes& file, zre::ImageFileInfo* info = nullptr, zre::Wcs* wcs = nullptr)
{
    zre::Image image;
    zre::Wcs unused;
    std::string error;
    EXPECT_TRUE(zre::decodeFits(file, image, wcs ? *wcs : unused, info, &error)) << error;
    return image;
}

std::string refusal(const Bytes& file)
{
    zre::Image image = zrtest::ramp(3, 3);
    zre::Wcs wcs;
    std::string error;
    EXPECT_FALSE(zre::decodeFits(file, image, wcs, nullptr, &error));
    EXPECT_TRUE(zrtest::imagesNear(image, zrtest::ramp(3, 3), 0.0))
        << "a failure changed the image";
    return error;
}

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

/// A row of samples and what becomes of them.
struct TypeCase
{
    const char* name;
    Bytes file;
    std::vector<double> values;
    const char* format;
};

template <class T>
Bytes row(int bitpix, const std::vector<T>& values, const std::vector<std::string>& cards = {})
{
    FitsBytes file;
    file.primary(bitpix, {static_cast<int>(values.size()), 1});
    for (const std::string& text : cards)
        file.card(text);
    return file.endHeader().samples(values).bytes;
}

class FitsSamples : public testing::TestWithParam<TypeCase>
{
};

TEST_P(FitsSamples, EveryTypeIsScaledByItsRange)
{
    zre::ImageFileInfo info;
    const zre::Image image = decoded(GetParam().file, &info);
    ASSERT_EQ(image.data.size(), GetParam().values.size());
    for (std::size_t i = 0; i < image.data.size(); ++i)
        EXPECT_NEAR(image.data[i], GetParam().values[i], 2e-7) << i;
    EXPECT_EQ(info.sampleFormat, GetParam().format);
}

INSTANTIATE_TEST_SUITE_P(
    Types, FitsSamples,
    testing::Values(
        TypeCase{"UInt8", row<std::uint8_t>(8, {0, 51, 255}), {0.0, 0.2, 1.0}, "UInt8"},
        TypeCase{"Int16NegativesAreBlack",
                 row<std::int16_t>(16, {-5, 0, 8191, 32767}),
                 {0.0, 0.0, 8191 / 32767.0, 1.0},
                 "Int16"},
        TypeCase{"UInt16ByZeroPoint",
                 row<std::int16_t>(16, {-32768, 0, 32767}, {"BZERO   = 32768"}),
                 {0.0, 32768 / 65535.0, 1.0},
                 "UInt16"},
        TypeCase{"UInt32ByZeroPoint",
                 row<std::int32_t>(32, {INT32_MIN, 0, INT32_MAX}, {"BZERO   = 2147483648."}),
                 {0.0, 0.5, 1.0},
                 "UInt32"},
        TypeCase{
            "Int32", row<std::int32_t>(32, {-7, 1073741824, INT32_MAX}), {0.0, 0.5, 1.0}, "Int32"},
        TypeCase{"BlankIsBlack",
                 row<std::int16_t>(16, {16000, -32768, 32767}, {"BLANK   = -32768"}),
                 {16000 / 32767.0, 0.0, 1.0},
                 "Int16"},
        // 100 to 300 after scaling: brought to 0 to 1 by its extremes.
        TypeCase{"ScaledIntegers",
                 row<std::int16_t>(16, {0, 100, 400}, {"BSCALE  = 0.5", "BZERO   = 100.0"}),
                 {0.0, 0.25, 1.0},
                 "Int16"},
        TypeCase{"FloatWithinTheUnitStays",
                 row<float>(-32, {0.0f, 0.5f, 0.75f, kNan}),
                 {0.0, 0.5, 0.75, 0.0},
                 "Float32"},
        TypeCase{"FloatBeyondIsScaledByFiniteExtremes",
                 row<float>(-32, {-100.0f, 100.0f, 300.0f, kNan, HUGE_VALF}),
                 {0.0, 0.5, 1.0, 0.0, 0.0},
                 "Float32"},
        TypeCase{"Double", row<double>(-64, {-1.0, 0.0, 3.0}), {0.0, 0.25, 1.0}, "Float64"},
        TypeCase{"ConstantBeyondTheUnitDoesNotDivideByZero",
                 row<float>(-32, {7.0f, 7.0f}),
                 {0.0, 0.0},
                 "Float32"}),
    [](const auto& testInfo) { return testInfo.param.name; });

TEST(FitsFile, TheBottomRowIsStoredFirstUnlessTheHeaderSaysOtherwise)
{
    const std::vector<std::uint8_t> samples{10, 20, 30, 40, 50, 60};
    const auto file = [&](const char* order) {
        return FitsBytes().primary(8, {2, 3}).card(order).endHeader().samples(samples).bytes;
    };
    const auto bytes = [](const zre::Image& image) {
        std::vector<int> out;
        for (const float v : image.data)
            out.push_back(static_cast<int>(std::lround(v * 255)));
        return out;
    };
    const std::vector<int> up{50, 60, 30, 40, 10, 20};
    const std::vector<int> down{10, 20, 30, 40, 50, 60};
    EXPECT_EQ(bytes(decoded(file("COMMENT nothing"))), up);
    EXPECT_EQ(bytes(decoded(file("ROWORDER= 'BOTTOM-UP'"))), up);
    EXPECT_EQ(bytes(decoded(file("ROWORDER= 'TOP-DOWN'"))), down);
}

struct CubeCase
{
    std::vector<int> sides;
    int channels;
};

TEST(FitsFile, OnlyACubeOfThreeIsColour)
{
    for (const CubeCase& c : {CubeCase{{2, 2}, 1}, CubeCase{{2, 2, 1}, 1}, CubeCase{{2, 2, 3}, 3},
                              CubeCase{{2, 2, 4}, 1}, CubeCase{{2, 2, 3, 2}, 3}}) {
        std::size_t count = 1;
        for (const int side : c.sides)
            count *= static_cast<std::size_t>(side);
        std::vector<std::uint8_t> samples(count);
        for (std::size_t i = 0; i < count; ++i)
            samples[i] = static_cast<std::uint8_t>(i);
        const zre::Image image =
            decoded(FitsBytes().primary(8, c.sides).endHeader().samples(samples).bytes);
        ASSERT_EQ(image.channels, c.channels);
        for (int plane = 0; plane < c.channels; ++plane)
            EXPECT_NEAR(image.plane(plane)[2], plane * 4 / 255.0, 1e-6); // the first stored sample
    }
}

TEST(FitsFile, TheFirstUnitWithAPictureIsTaken)
{
    FitsBytes file;
    file.primary(8, {}).card("EXTEND  =                    T").endHeader();
    file.card("XTENSION= 'IMAGE   '").shape(8, {2, 1});
    file.card("PCOUNT  = 0").card("GCOUNT  = 1").endHeader();
    file.samples(std::vector<std::uint8_t>{0, 255});
    EXPECT_FLOAT_EQ(decoded(file.bytes).data[1], 1.0f);

    FitsBytes empty;
    empty.primary(8, {}).endHeader();
    EXPECT_EQ(refusal(empty.bytes), "the FITS file holds no image.");
}

/// A picture of counts, smooth enough for every codec, as cfitsio itself compresses it.
Bytes compressedFile(int codec, int bitpix, int width, int height, int planes,
                     std::array<long, 3> tile = {})
{
    fitsfile* fits = nullptr;
    void* base = nullptr;
    std::size_t size = 0;
    int status = 0;
    fits_create_memfile(&fits, &base, &size, 2880, std::realloc, &status);
    fits_set_compression_type(fits, codec, &status);
    if (tile[0] > 0)
        fits_set_tile_dim(fits, planes > 1 ? 3 : 2, tile.data(), &status);
    std::array<long, 3> sides{width, height, planes};
    fits_create_img(fits, bitpix, planes > 1 ? 3 : 2, sides.data(), &status);
    std::vector<float> reals;
    std::vector<std::uint16_t> counts; // compressed images are written in their own type only
    for (int c = 0; c < planes; ++c)
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                counts.push_back(static_cast<std::uint16_t>(100 * x + 10 * y + c));
                reals.push_back(counts.back());
            }
    const auto count = static_cast<LONGLONG>(counts.size());
    if (bitpix == FLOAT_IMG)
        fits_write_img(fits, TFLOAT, 1, count, reals.data(), &status);
    else
        fits_write_img(fits, bitpix == USHORT_IMG ? TUSHORT : TSHORT, 1, count, counts.data(),
                       &status);
    fits_flush_file(fits, &status);
    LONGLONG end = 0;
    fits_get_hduaddrll(fits, nullptr, nullptr, &end, &status);
    fits_close_file(fits, &status);
    EXPECT_EQ(status, 0);
    const auto* begin = static_cast<std::uint8_t*>(base);
    Bytes bytes(begin, begin + end);
    std::free(base);
    return bytes;
}

TEST(FitsFile, TileCompressedIntegersAreExact)
{
    // Whole rows, blocks that leave a rest on both sides, a tile through all planes.
    constexpr std::array<std::array<long, 3>, 3> tiles{{{}, {16, 10, 1}, {40, 7, 3}}};
    for (const int codec : {RICE_1, GZIP_1, GZIP_2})
        for (const auto& [planes, tile] : {std::pair{1, tiles[0]}, std::pair{1, tiles[1]},
                                           std::pair{3, tiles[0]}, std::pair{3, tiles[2]}}) {
            zre::ImageFileInfo info;
            const zre::Image image =
                decoded(compressedFile(codec, USHORT_IMG, 40, 24, planes, tile), &info);
            ASSERT_EQ(image.channels, planes) << codec;
            for (int c = 0; c < planes; ++c)
                for (int y = 0; y < 24; ++y)
                    for (int x = 0; x < 40; ++x)
                        ASSERT_EQ(std::lround(image.plane(c)[y * 40 + x] * 65535.0),
                                  100 * x + 10 * (23 - y) + c)
                            << codec;
            EXPECT_EQ(info.sampleFormat, "UInt16");
        }
}

TEST(FitsFile, CompressedFloatsComeWithinTheirQuantisation)
{
    const zre::Image image = decoded(compressedFile(GZIP_1, FLOAT_IMG, 40, 24, 1));
    const double top = 100 * 39 + 10 * 23;
    EXPECT_NEAR(image.data[23 * 40 + 39], 3900 / top, 0.01);
    EXPECT_NEAR(image.data[20], 2230 / top, 0.01);
}

TEST(FitsLinear, DataMeantToBeSeenAreNotCalledLinear)
{
    const auto linearOf = [](const Bytes& file) {
        zre::ImageFileInfo info;
        decoded(file, &info);
        return info.linear;
    };
    EXPECT_TRUE(linearOf(row<float>(-32, {0.01f, 0.02f, 0.9f})));
    EXPECT_TRUE(linearOf(row<std::int16_t>(16, {300, 400, 30000})));
    EXPECT_FALSE(linearOf(row<std::uint8_t>(8, {1, 2, 200}))) << "8 bits";
    EXPECT_FALSE(linearOf(row<float>(-32, {0.2f, 0.3f, 0.9f}))) << "a bright background";
    // Frame borders without data do not make a bright picture a dark one.
    EXPECT_FALSE(linearOf(row<float>(-32, {0.0f, 0.0f, 0.0f, 0.0f, 0.3f, 0.4f, 0.9f})));
}

double skyDistance(double ra1, double dec1, double ra2, double dec2)
{
    return std::hypot((ra1 - ra2) * std::cos(dec1 * 3.14159265358979 / 180), dec1 - dec2);
}

TEST(FitsSolution, TheSurveyFieldLiesWhereWcslibPutsIt)
{
    const auto path = zrtest::sample("w5_wise.fits");
    if (!path)
        GTEST_SKIP() << "no sample photographs here";
    zre::Image image;
    zre::Wcs wcs;
    zre::ImageFileInfo info;
    std::string error;
    ASSERT_TRUE(zre::loadFits(path->string(), image, wcs, &info, &error)) << error;
    EXPECT_TRUE(info.linear);
    ASSERT_TRUE(wcs.valid);
    EXPECT_NEAR(wcs.resolutionArcsec, 10.8, 1e-9);
    struct Known
    {
        int x, y;
        double value, ra, dec;
    };
    // From another program: the pixel's value between the file's extremes, and the sky at its
    // centre.
    for (const Known& k : {Known{0, 0, 0.0007979874964, 46.634838795127, 61.841558335134},
                           Known{999, 0, 0.0009065462860, 40.285161204873, 61.841558335134},
                           Known{0, 999, 0.0025874003293, 46.356087953739, 58.849434611830},
                           Known{500, 500, 0.0025387571943, 43.456965209813, 60.378499965467},
                           Known{123, 777, 0.0037949487397, 45.687231000847, 59.528637062463}}) {
        EXPECT_NEAR(image.data[static_cast<std::size_t>(k.y * 1000 + k.x)], k.value, 1e-8);
        double ra = 0.0;
        double dec = 0.0;
        ASSERT_TRUE(wcs.imageToCelestial(k.x + 0.5, k.y + 0.5, ra, dec));
        EXPECT_LT(skyDistance(ra, dec, k.ra, k.dec), 1e-9);
    }
}

TEST(FitsSolution, TopDownFilesCountTheirRowsFromTheTop)
{
    const auto file = [](const char* order) {
        FitsBytes bytes;
        bytes.primary(8, {20, 10});
        for (const char* text :
             {"CTYPE1  = 'RA---TAN'", "CTYPE2  = 'DEC--TAN'", "CRVAL1  = 100.0", "CRVAL2  = 20.0",
              "CRPIX1  = 3.0", "CRPIX2  = 2.0", "CD1_1   = -0.01", "CD1_2   = 0.002",
              "CD2_1   = 0.002", "CD2_2   = 0.01"})
            bytes.card(text);
        return bytes.card(order).endHeader().samples(std::vector<std::uint8_t>(200)).bytes;
    };
    for (const auto& [order, y] :
         {std::pair{"ROWORDER= 'TOP-DOWN'", 1.5}, std::pair{"ROWORDER= 'BOTTOM-UP'", 8.5},
          std::pair{"COMMENT none", 8.5}}) {
        zre::Wcs wcs;
        decoded(file(order), nullptr, &wcs);
        double ra = 0.0;
        double dec = 0.0;
        ASSERT_TRUE(wcs.valid);
        ASSERT_TRUE(wcs.imageToCelestial(2.5, y, ra, dec)); // the pixel of CRPIX
        EXPECT_LT(skyDistance(ra, dec, 100.0, 20.0), 1e-12) << order;
    }
}

TEST(FitsSolution, BrokenKeywordsLeaveThePictureAndTheOldSolution)
{
    FitsBytes file;
    file.primary(8, {2, 2}).card("CTYPE1  = 'RA---TAN'").card("CTYPE2  = 'DEC--TAN'");
    file.card("CRPIX1  = 'three'").card("CD1_1   = 1.0").endHeader();
    file.samples(std::vector<std::uint8_t>(4));
    zre::Wcs wcs;
    ASSERT_TRUE(zre::makeSyntheticWcs(10.0, 20.0, 1.0, 0.0, 5, 5, wcs));
    const auto before = wcs.solution;
    decoded(file.bytes, nullptr, &wcs);
    EXPECT_EQ(wcs.solution, before);
}

struct ModelCase
{
    int model;
    double rotation;
};

class FitsRoundTrip : public testing::TestWithParam<ModelCase>
{
};

TEST_P(FitsRoundTrip, SamplesAndSolutionComeBack)
{
    zre::Image image = zrtest::noise(61, 37, GetParam().model, 3);
    image.data[5] = 0.0f;
    zre::Wcs wcs;
    ASSERT_TRUE(zre::makeSyntheticWcs(83.6, -5.4, 3.6, GetParam().rotation, 61, 37, wcs));
    const std::string path = (zrtest::scratchFolder() / "written.fits").string();
    std::string error;
    ASSERT_TRUE(zre::writeFits(path, image, &wcs, &error)) << error;
    zre::Image back;
    zre::Wcs again;
    zre::ImageFileInfo info;
    ASSERT_TRUE(zre::loadFits(path, back, again, &info, &error)) << error;
    EXPECT_TRUE(zrtest::imagesNear(back, image, 0.0));
    EXPECT_FALSE(info.linear) << "our own pictures are shown as they were";
    ASSERT_TRUE(again.valid);
    for (const auto& [x, y] : {std::pair{0.0, 0.0}, std::pair{61.0, 12.0}, std::pair{30.5, 37.0}}) {
        double ra1 = 0.0;
        double dec1 = 0.0;
        double ra2 = 0.0;
        double dec2 = 0.0;
        ASSERT_TRUE(wcs.imageToCelestial(x, y, ra1, dec1));
        ASSERT_TRUE(again.imageToCelestial(x, y, ra2, dec2));
        EXPECT_LT(skyDistance(ra1, dec1, ra2, dec2), 1e-10);
    }
    EXPECT_EQ(zrtest::readBytes(path).size() % 2880, 0U);
}

INSTANTIATE_TEST_SUITE_P(Models, FitsRoundTrip,
                         testing::Values(ModelCase{0, 30.0}, ModelCase{1, 30.0}, ModelCase{1, 0.0},
                                         ModelCase{0, -123.0}));

TEST(FitsSolution, WrittenKeywordsHoldForRowsCountedFromTheBottom)
{
    zre::Wcs wcs;
    ASSERT_TRUE(zre::makeSyntheticWcs(200.0, 45.0, 10.0, 25.0, 50, 40, wcs));
    const std::string path = (zrtest::scratchFolder() / "keywords.fits").string();
    ASSERT_TRUE(zre::writeFits(path, zrtest::noise(50, 40, 0, 4), &wcs, nullptr));
    fitsfile* fits = nullptr;
    int status = 0;
    fits_open_diskfile(&fits, path.c_str(), READONLY, &status);
    const auto number = [&](const char* name) {
        double value = 0.0;
        fits_read_key(fits, TDOUBLE, name, &value, nullptr, &status);
        return value;
    };
    const double dx = 7.0 - number("CRPIX1");
    const double dy = 11.0 - number("CRPIX2"); // row 11 from the bottom
    const double planeX = number("CD1_1") * dx + number("CD1_2") * dy;
    const double planeY = number("CD2_1") * dx + number("CD2_2") * dy;
    fits_close_file(fits, &status);
    ASSERT_EQ(status, 0);
    const acl::Point plane = wcs.solution->transformationOf()->toPlane({6.5, 40 - 10.5});
    EXPECT_NEAR(planeX, plane.x, 1e-14);
    EXPECT_NEAR(planeY, plane.y, 1e-14);
}

TEST(FitsSolution, APictureWithMoreRowsThanItsSolutionKnowsKeepsItsPlaces)
{
    zre::Wcs wcs;
    ASSERT_TRUE(zre::makeSyntheticWcs(200.0, 45.0, 10.0, 25.0, 50, 40, wcs));
    const std::string path = (zrtest::scratchFolder() / "taller.fits").string();
    ASSERT_TRUE(zre::writeFits(path, zrtest::noise(50, 64, 0, 4), &wcs, nullptr));
    zre::Image image;
    zre::Wcs again;
    ASSERT_TRUE(zre::loadFits(path, image, again, nullptr, nullptr));
    const auto& before = wcs.solution->transformationOf()->matrix();
    const auto& after = again.solution->transformationOf()->matrix();
    for (std::size_t i = 0; i < before.size(); ++i)
        EXPECT_NEAR(after[i], before[i], 1e-12) << i;
}

TEST(FitsFile, NamesThatAreSyntaxElsewhereAreJustNames)
{
    // cfitsio reads brackets as image sections, "!" as an order to overwrite, "|" as a command.
    const auto folder = zrtest::scratchFolder();
    for (const char* name :
         {"a[1].fits", "!b.fits", "c|true|.fits", "d.fits(e).fits", "f.fits+1"}) {
        const std::string path = (folder / name).string();
        const zre::Image image = zrtest::noise(5, 4, 0, 9);
        std::string error;
        ASSERT_TRUE(zre::writeFits(path, image, nullptr, &error)) << name << error;
        zre::Image back;
        zre::Wcs wcs;
        ASSERT_TRUE(zre::loadFits(path, back, wcs, nullptr, &error)) << name << error;
        EXPECT_TRUE(zrtest::imagesNear(back, image, 0.0));
    }
}

TEST(FitsDamage, CodecsWhoseDecoderTrustsItsInputAreRefused)
{
    for (const int codec : {HCOMPRESS_1, PLIO_1})
        EXPECT_THAT(refusal(compressedFile(codec, SHORT_IMG, 40, 24, 1)),
                    testing::StartsWith("unsupported FITS compression: "));
}

TEST(FitsDamage, GzipIsNotUnpackedInMemory)
{
    EXPECT_FALSE(
        refusal({0x1f, 0x8b, 0x08, 0, 0, 0, 0, 0, 0, 3, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0}).empty());
}

TEST(FitsDamage, ClaimedSizesBeyondTheFileAreRefusedBeforeTheyAreAllocated)
{
    constexpr const char* smaller = "the FITS file is smaller than its image.";
    EXPECT_EQ(refusal(row<std::uint8_t>(8, {})), "bad FITS geometry.");
    for (const auto& [sides, message] :
         {std::pair{std::vector<int>{30000, 30000}, smaller},
          std::pair{std::vector<int>{2147483647, 2147483647}, "bad FITS header."},
          std::pair{std::vector<int>{2147483647, 2147483647, 2147483647, 4}, "bad FITS header."},
          std::pair{std::vector<int>{-5, -5}, "bad FITS header."}}) {
        FitsBytes file;
        file.primary(-64, sides).endHeader().samples(std::vector<double>(360));
        EXPECT_EQ(refusal(file.bytes), message);
    }
}

/// A compressed file with the text of one card changed in place.
Bytes changedCard(Bytes file, const std::string& name, const std::string& value)
{
    std::string card = name;
    card.resize(8, ' ');
    card += "= " + value;
    card.resize(80, ' ');
    const auto at = std::search(file.begin(), file.end(), card.begin(), card.begin() + 10);
    EXPECT_NE(at, file.end()) << name;
    std::copy(card.begin(), card.end(), at);
    return file;
}

TEST(FitsDamage, TilesThatWouldMisleadTheDecoderAreRefused)
{
    const Bytes rice = compressedFile(RICE_1, USHORT_IMG, 40, 24, 1);
    for (const auto& [name, value] :
         {std::pair{"ZTILE1", "0"}, std::pair{"ZTILE2", "-1"}, std::pair{"ZTILE1", "41"},
          std::pair{"ZNAXIS1", "2000000000"}, std::pair{"ZNAXIS", "999"},
          std::pair{"ZNAXIS2", "23"}, std::pair{"ZVAL1", "0"}, std::pair{"ZVAL2", "3"},
          std::pair{"ZBITPIX", "7"}, std::pair{"PCOUNT", "99999999"},
          std::pair{"ZCMPTYPE", "'ZSTD'"}, std::pair{"TFIELDS", "-1"}})
        EXPECT_FALSE(refusal(changedCard(rice, name, value)).empty()) << name << " " << value;
    // cfitsio takes the "=" in another column for one as well, and would divide by this 0.
    Bytes shifted = rice;
    const std::string card = "ZTILE2    =   0                ";
    const auto at = std::search(shifted.begin(), shifted.end(), card.begin(), card.begin() + 6);
    ASSERT_NE(at, shifted.end());
    std::copy(card.begin(), card.end(), at);
    EXPECT_TRUE(zrtest::imagesNear(decoded(shifted), decoded(rice), 0.0));
    Bytes disordered = rice;
    const std::string name = "PCOUNT  =";
    *std::search(disordered.begin(), disordered.end(), name.begin(), name.end()) = 'Q';
    EXPECT_EQ(refusal(disordered), "bad FITS header.");
}

std::vector<Bytes> smallFiles()
{
    std::vector<float> samples(12 * 9);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(i) / 100.0f;
    return {FitsBytes()
                .primary(-32, {12, 9})
                .card("CTYPE1  = 'RA---TAN'")
                .card("CTYPE2  = 'DEC--TAN'")
                .card("CRVAL1  = 10.0")
                .card("CRVAL2  = 20.0")
                .card("CRPIX1  = 3.0")
                .card("CRPIX2  = 2.0")
                .card("CDELT1  = -0.01")
                .card("CDELT2  = 0.01")
                .endHeader()
                .samples(samples)
                .bytes,
            compressedFile(RICE_1, USHORT_IMG, 12, 9, 1),
            compressedFile(RICE_1, FLOAT_IMG, 12, 9, 1),
            compressedFile(GZIP_2, FLOAT_IMG, 12, 9, 1)};
}

TEST(FitsDamage, EveryTruncationIsRefusedOrCostsOnlyPadding)
{
    for (const Bytes& file : smallFiles()) {
        const zre::Image whole = decoded(file);
        for (std::size_t length = 0; length < file.size(); length += length % 2880 < 400 ? 1 : 37) {
            const Bytes prefix(file.begin(), file.begin() + static_cast<long>(length));
            zre::Image image;
            zre::Wcs wcs;
            if (zre::decodeFits(prefix, image, wcs, nullptr, nullptr)) {
                EXPECT_GT(length + 2880, file.size());
                EXPECT_EQ(image.data.size(), whole.data.size());
            }
        }
    }
}

TEST(FitsDamage, FlippedBytesNeverGiveSamplesOutsideTheRange)
{
    for (const Bytes& file : smallFiles())
        for (std::size_t at = 0; at < file.size(); ++at) {
            if (file[at] == ' ' && at % 5 != 0)
                continue; // most of a header is blanks
            Bytes damaged = file;
            damaged[at] ^= at % 2 == 0 ? 0x01 : 0x13;
            zre::Image image;
            zre::Wcs wcs;
            if (!zre::decodeFits(damaged, image, wcs, nullptr, nullptr))
                continue;
            ASSERT_TRUE(image.usable());
            for (const float v : image.data)
                ASSERT_TRUE(v >= 0.0f && v <= 1.0f) << at;
        }
}

} // namespace
