#include "engine/fileio/fits_file.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "engine/fileio/failure.h"
#include "engine/fileio/fits_memory.h"
#include "engine/fileio/fits_solution.h"
#include "engine/fileio/fits_tiles.h"
#include "engine/fileio/sample_scale.h"
#include "engine/fileio/whole_file.h"
#include "engine/image/midtones.h"

namespace zre {

namespace {

using fileio::fail;
using fileio::FitsReader;

constexpr int kMaxAxes = 6; // what cfitsio's tile compression knows
constexpr std::uint64_t kMaxSamples = std::uint64_t{1} << 31;
// Beyond what gzip and Rice make of anything: 1032 and about 400 samples a byte.
constexpr std::uint64_t kMaxPixelsPerByte = 4096;
constexpr double kShownMedian = 0.2;

/// Where the image stands in the file and how its samples are stored.
struct Layout
{
    int bitpix = 0;
    int axes = 0;
    std::array<LONGLONG, kMaxAxes> side{};
    bool compressed = false;
    double zero = 0.0;
    double scale = 1.0;

    std::span<const LONGLONG> used() const
    {
        return std::span(side).first(static_cast<std::size_t>(axes));
    }
    int channels() const { return axes >= 3 && side[2] == 3 ? 3 : 1; }
};

/// How integers of one kind become 0 to 1.
struct IntegerType
{
    int bitpix;
    double zero; ///< the BZERO that makes it so
    const char* name;
    float factor;
};

constexpr std::array kIntegerTypes{
    IntegerType{BYTE_IMG, 0.0, "UInt8", fileio::kUInt8Scale},
    IntegerType{BYTE_IMG, -128.0, "Int8", 1.0f / 127.0f},
    IntegerType{SHORT_IMG, 0.0, "Int16", 1.0f / 32767.0f},
    IntegerType{SHORT_IMG, 32768.0, "UInt16", fileio::kUInt16Scale},
    IntegerType{LONG_IMG, 0.0, "Int32", 1.0f / 2147483647.0f},
    IntegerType{LONG_IMG, 2147483648.0, "UInt32", static_cast<float>(fileio::kUInt32Scale)},
    IntegerType{LONGLONG_IMG, 0.0, "Int64", 1.0f / 9223372036854775807.0f},
    IntegerType{LONGLONG_IMG, 9223372036854775808.0, "UInt64", 1.0f / 18446744073709551615.0f},
};

const IntegerType* integerType(const Layout& layout)
{
    for (const IntegerType& type : kIntegerTypes)
        if (type.bitpix == layout.bitpix && type.zero == layout.zero && layout.scale == 1.0)
            return &type;
    return nullptr;
}

const char* storedName(const Layout& layout)
{
    if (layout.bitpix < 0)
        return layout.bitpix == FLOAT_IMG ? "Float32" : "Float64";
    if (const IntegerType* type = integerType(layout))
        return type->name;
    switch (layout.bitpix) {
    case BYTE_IMG:
        return "UInt8";
    case SHORT_IMG:
        return "Int16";
    case LONG_IMG:
        return "Int32";
    default:
        return "Int64";
    }
}

double realKeyword(FitsReader& file, const char* name, double absent)
{
    double value = absent;
    int status = 0;
    if (file.status == 0 && fits_read_key(file.handle(), TDOUBLE, name, &value, nullptr, &status))
        return absent;
    return value;
}

/// Steps to the first unit that holds a picture of two axes or more.
bool findImage(FitsReader& file, Layout& layout, std::string* error)
{
    for (int unit = 1;; ++unit) {
        int kind = 0;
        if (fits_movabs_hdu(file.handle(), unit, &kind, &file.status))
            return fail(error, unit > 1 && file.status == END_OF_FILE
                                   ? "the FITS file holds no image."
                                   : fileio::fitsMessage(file.status));
        layout.compressed = fits_is_compressed_image(file.handle(), &file.status) != 0;
        if (kind != IMAGE_HDU && !layout.compressed)
            continue;
        fits_get_img_paramll(file.handle(), kMaxAxes, &layout.bitpix, &layout.axes,
                             layout.side.data(), &file.status);
        if (file.status)
            return fail(error, fileio::fitsMessage(file.status));
        if (layout.axes >= 2)
            break;
    }
    layout.zero = realKeyword(file, "BZERO", 0.0);
    layout.scale = realKeyword(file, "BSCALE", 1.0);
    return true;
}

bool checkSize(FitsReader& file, const Layout& layout, std::size_t fileBytes, std::string* error)
{
    if (layout.axes > kMaxAxes)
        return fail(error, "the FITS image has too many axes.");
    std::uint64_t samples = 1;
    for (int axis = 0; axis < layout.axes; ++axis) {
        const LONGLONG side = layout.side[static_cast<std::size_t>(axis)];
        if (side < 1)
            return fail(error, "bad FITS geometry.");
        if (static_cast<std::uint64_t>(side) > kMaxSamples / samples)
            return fail(error, "the FITS image is too large.");
        samples *= static_cast<std::uint64_t>(side);
    }
    LONGLONG headerStart = 0;
    LONGLONG dataStart = 0;
    LONGLONG dataEnd = 0;
    if (fits_get_hduaddrll(file.handle(), &headerStart, &dataStart, &dataEnd, &file.status))
        return fail(error, fileio::fitsMessage(file.status));
    const auto start = static_cast<std::uint64_t>(std::max<LONGLONG>(dataStart, 0));
    const std::uint64_t present = start < fileBytes ? fileBytes - start : 0;
    const auto sampleBytes = static_cast<std::uint64_t>(std::abs(layout.bitpix) / 8);
    const std::uint64_t possible =
        layout.compressed ? present * kMaxPixelsPerByte : present / sampleBytes;
    if (samples > possible)
        return fail(error, "the FITS file is smaller than its image.");
    return true;
}

bool readPlanes(FitsReader& file, const Layout& layout, Image& image, std::string* error)
{
    image = Image(static_cast<int>(layout.side[0]), static_cast<int>(layout.side[1]),
                  layout.channels() == 3);
    for (int c = 0; c < image.channels; ++c) {
        std::array<LONGLONG, kMaxAxes> first{1, 1, c + 1, 1, 1, 1};
        float blank = std::numeric_limits<float>::quiet_NaN();
        int anyBlank = 0;
        fits_read_pixll(file.handle(), TFLOAT, first.data(),
                        static_cast<LONGLONG>(image.pixelCount()), &blank, image.plane(c),
                        &anyBlank, &file.status);
    }
    return file.status == 0 || fail(error, fileio::fitsMessage(file.status));
}

/// Brings floating data that do not lie within 0 to 1 there by their finite extremes.
void scaleByExtremes(Image& image)
{
    float low = std::numeric_limits<float>::infinity();
    float high = -low;
    for (float& v : image.data) {
        if (!std::isfinite(v))
            continue;
        low = std::min(low, v);
        high = std::max(high, v);
    }
    const bool inside = low >= 0.0f && high <= 1.0f;
    const double offset = inside ? 0.0 : low;
    const double span = static_cast<double>(high) - low;
    const double factor = inside || !(span > 0.0) ? 1.0 : 1.0 / span;
    for (float& v : image.data)
        v = std::isfinite(v) ? fileio::unitSample((static_cast<double>(v) - offset) * factor)
                             : 0.0f;
}

void scaleIntegers(Image& image, float factor)
{
    for (float& v : image.data)
        v = fileio::unitSample(v * factor);
}

void flipRows(Image& image)
{
    const auto width = static_cast<std::size_t>(image.width);
    for (int c = 0; c < image.channels; ++c)
        for (int y = 0; y < image.height / 2; ++y) {
            float* upper = image.plane(c) + static_cast<std::size_t>(y) * width;
            float* lower = image.plane(c) + static_cast<std::size_t>(image.height - 1 - y) * width;
            std::swap_ranges(upper, upper + width, lower);
        }
}

std::vector<acl::FITSKeyword> readKeywords(FitsReader& file)
{
    std::vector<acl::FITSKeyword> keywords;
    int count = 0;
    int status = 0;
    fits_get_hdrspace(file.handle(), &count, nullptr, &status);
    for (int i = 1; i <= count && status == 0; ++i) {
        std::array<char, FLEN_KEYWORD> name{};
        std::array<char, FLEN_VALUE> value{};
        std::array<char, FLEN_COMMENT> comment{};
        int cardStatus = 0;
        if (fits_read_keyn(file.handle(), i, name.data(), value.data(), comment.data(),
                           &cardStatus) == 0 &&
            value[0] != '\0')
            keywords.push_back({name.data(), value.data(), comment.data()});
    }
    return keywords;
}

bool isLinear(const Layout& layout, const std::vector<acl::FITSKeyword>& keywords,
              const Image& image)
{
    const bool shown = std::any_of(keywords.begin(), keywords.end(), [](const auto& keyword) {
        return keyword.name == fileio::kDisplayReadyKeyword && keyword.value == "T";
    });
    return !shown && layout.bitpix != BYTE_IMG && sampleMedian(image) < kShownMedian;
}

} // namespace

bool decodeFits(std::span<const std::uint8_t> file, Image& out, Wcs& wcs, ImageFileInfo* info,
                std::string* error)
{
    return fileio::guarded(error, [&] {
        FitsReader fits(file);
        if (!fits.handle())
            return fail(error, fileio::fitsMessage(fits.status));
        Layout layout;
        Image image;
        if (!findImage(fits, layout, error) || !checkSize(fits, layout, file.size(), error) ||
            (layout.compressed && !fileio::checkTiles(fits.handle(), file, layout.used(), error)) ||
            !readPlanes(fits, layout, image, error))
            return false;
        if (const IntegerType* type = integerType(layout))
            scaleIntegers(image, type->factor);
        else
            scaleByExtremes(image);
        std::vector<acl::FITSKeyword> keywords = readKeywords(fits);
        if (!fileio::rowsRunDown(keywords))
            flipRows(image);
        if (info)
            *info = {"FITS",
                     storedName(layout),
                     image.width,
                     image.height,
                     image.channels,
                     std::abs(layout.bitpix),
                     isLinear(layout, keywords, image)};
        fileio::readSolution(std::move(keywords), image.width, image.height, wcs);
        out = std::move(image);
        return true;
    });
}

bool loadFits(const std::string& path, Image& out, Wcs& wcs, ImageFileInfo* info,
              std::string* error)
{
    FileBytes bytes;
    return readWholeFile(path, bytes, error) && decodeFits(bytes.view(), out, wcs, info, error);
}

} // namespace zre
