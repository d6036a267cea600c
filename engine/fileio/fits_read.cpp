#include "engine/fileio/fits_file.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "engine/astro/fits_text.h"
#include "engine/fileio/failure.h"
#include "engine/fileio/fits_header.h"
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
using fileio::FitsUnit;

constexpr double kShownMedian = 0.2;

/// The linear scaling that the header asks for.
struct Scaling
{
    double zero = 0.0;
    double scale = 1.0;
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

/// Null for floating samples and for integers scaled to something else.
const IntegerType* integerType(int bitpix, const Scaling& scaling)
{
    for (const IntegerType& type : kIntegerTypes)
        if (type.bitpix == bitpix && type.zero == scaling.zero && scaling.scale == 1.0)
            return &type;
    return nullptr;
}

const char* storedName(int bitpix, const Scaling& scaling)
{
    if (bitpix < 0)
        return bitpix == FLOAT_IMG ? "Float32" : "Float64";
    const IntegerType* type = integerType(bitpix, scaling);
    if (!type)
        type = integerType(bitpix, {});
    return type ? type->name : "";
}

Scaling readScaling(const FitsUnit& unit)
{
    const acl::KeywordLookup keywords(unit.cards);
    return {keywords.number("BZERO").value_or(0.0), keywords.number("BSCALE").value_or(1.0)};
}

constexpr float kBlank = std::numeric_limits<float>::quiet_NaN();

/// One plane of a plain unit.
void readPlane(FitsReader& file, int plane, Image& image)
{
    std::array<LONGLONG, fileio::kMaxFitsAxes> first{1, 1, plane + 1, 1, 1, 1};
    float blank = kBlank;
    int anyBlank = 0;
    fits_read_pixll(file.handle(), TFLOAT, first.data(), static_cast<LONGLONG>(image.pixelCount()),
                    &blank, image.plane(plane), &anyBlank, &file.status);
}

/// One plane of a compressed unit, a tile a call: behind a tile that fails, cfitsio would go on
/// with what it has not read.
void readTiledPlane(FitsReader& file, const FitsUnit& unit, int plane, Image& image)
{
    const auto tileWidth = static_cast<int>(unit.tile[0]);
    const auto tileHeight = static_cast<int>(unit.tile[1]);
    std::vector<float> tile(static_cast<std::size_t>(tileWidth) *
                            static_cast<std::size_t>(tileHeight));
    for (int y = 0; y < image.height; y += std::min(tileHeight, image.height - y))
        for (int x = 0; x < image.width; x += std::min(tileWidth, image.width - x)) {
            const int columns = std::min(tileWidth, image.width - x);
            const int rows = std::min(tileHeight, image.height - y);
            std::array<long, fileio::kMaxFitsAxes> first{x + 1, y + 1, plane + 1, 1, 1, 1};
            std::array<long, fileio::kMaxFitsAxes> last{x + columns, y + rows, plane + 1, 1, 1, 1};
            std::array<long, fileio::kMaxFitsAxes> step{1, 1, 1, 1, 1, 1};
            float blank = kBlank;
            int anyBlank = 0;
            if (fits_read_subset(file.handle(), TFLOAT, first.data(), last.data(), step.data(),
                                 &blank, tile.data(), &anyBlank, &file.status))
                return;
            for (int row = 0; row < rows; ++row)
                std::copy_n(tile.begin() + std::ptrdiff_t{row} * columns, columns,
                            image.plane(plane) +
                                static_cast<std::size_t>(y + row) *
                                    static_cast<std::size_t>(image.width) +
                                x);
        }
}

bool readPlanes(FitsReader& file, const FitsUnit& unit, Image& image, std::string* error)
{
    image =
        Image(static_cast<int>(unit.side[0]), static_cast<int>(unit.side[1]), unit.channels() == 3);
    for (int c = 0; c < image.channels && file.status == 0; ++c)
        if (unit.compressed)
            readTiledPlane(file, unit, c, image);
        else
            readPlane(file, c, image);
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

bool isLinear(const FitsUnit& unit, const Image& image)
{
    const bool shown = acl::KeywordLookup(unit.cards).text(fileio::kDisplayReadyKeyword) == "T";
    return !shown && unit.bitpix != BYTE_IMG && sampleMedian(image) < kShownMedian;
}

/// The samples of the unit as they are stored, row by row.
bool readSamples(std::span<const std::uint8_t> file, const FitsUnit& unit, Image& image,
                 std::string* error)
{
    FitsReader fits(file, unit);
    if (!fits.handle())
        return fail(error, fileio::fitsMessage(fits.status));
    if (unit.compressed && !fileio::checkTiles(fits.handle(), fits.bytes(), unit, error))
        return false;
    return readPlanes(fits, unit, image, error);
}

} // namespace

bool decodeFits(std::span<const std::uint8_t> file, Image& out, Wcs& wcs, ImageFileInfo* info,
                std::string* error)
{
    return fileio::guarded(error, [&] {
        FitsUnit unit;
        Image image;
        if (!fileio::findPicture(file, unit, error) || !readSamples(file, unit, image, error))
            return false;
        const Scaling scaling = readScaling(unit);
        if (const IntegerType* type = integerType(unit.bitpix, scaling))
            scaleIntegers(image, type->factor);
        else
            scaleByExtremes(image);
        if (!fileio::rowsRunDown(unit.cards))
            flipRows(image);
        if (info)
            *info = {"FITS",
                     storedName(unit.bitpix, scaling),
                     image.width,
                     image.height,
                     image.channels,
                     std::abs(unit.bitpix),
                     isLinear(unit, image)};
        fileio::readSolution(std::move(unit.cards), image.width, image.height, wcs);
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
