#include "engine/fileio/tiff_file.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <vector>

#include "engine/fileio/failure.h"
#include "engine/fileio/orientation.h"
#include "engine/fileio/sample_scale.h"
#include "engine/fileio/tiff_memory.h"
#include "engine/fileio/tiff_samples.h"
#include "engine/fileio/whole_file.h"

namespace zre {

namespace {

using fileio::fail;
using fileio::MemoryTiff;

/// What the tags say of the first page.
struct Page
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    int samples = 1; ///< stored per pixel, alpha included
    int bits = 1;
    int format = SAMPLEFORMAT_UINT;
    int photometric = PHOTOMETRIC_MINISBLACK;
    int orientation = ORIENTATION_TOPLEFT;
    int compression = COMPRESSION_NONE;
    bool planar = false;
    bool tiled = false;
    bool multipliedByAlpha = false; ///< colours that an alpha behind them has darkened

    int channels() const { return photometric == PHOTOMETRIC_RGB ? 3 : 1; }
    std::size_t sampleBytes() const { return static_cast<std::size_t>(bits) / 8; }
};

constexpr std::uint64_t kMaxSamples = std::uint64_t{1} << 31;

std::uint16_t shortTag(TIFF* tiff, std::uint32_t tag)
{
    std::uint16_t value = 0;
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

Page readPage(TIFF* tiff)
{
    Page page;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &page.width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &page.height);
    page.samples = shortTag(tiff, TIFFTAG_SAMPLESPERPIXEL);
    page.bits = shortTag(tiff, TIFFTAG_BITSPERSAMPLE);
    page.orientation = shortTag(tiff, TIFFTAG_ORIENTATION);
    page.compression = shortTag(tiff, TIFFTAG_COMPRESSION);
    page.planar = shortTag(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    page.tiled = TIFFIsTiled(tiff) != 0;
    std::uint16_t extras = 0;
    std::uint16_t* extra = nullptr;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &extras, &extra);
    const bool associated = extras > 0 && extra[0] == EXTRASAMPLE_ASSOCALPHA;
    page.format = shortTag(tiff, TIFFTAG_SAMPLEFORMAT);
    if (page.format == SAMPLEFORMAT_VOID)
        page.format = SAMPLEFORMAT_UINT;
    std::uint16_t photometric = 0;
    if (TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric) == 1)
        page.photometric = photometric;
    else
        page.photometric = page.samples >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    page.multipliedByAlpha =
        associated && page.photometric == PHOTOMETRIC_RGB && page.samples > page.channels();
    return page;
}

/// The most bytes that a codec can make of one. Those of unbounded reach get a figure that no
/// photograph comes near.
std::uint64_t largestRatio(int compression)
{
    switch (compression) {
    case COMPRESSION_NONE:
        return 1;
    case COMPRESSION_PACKBITS:
        return 64;
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:
        return 1032;
    case COMPRESSION_LZW:
        return 4096;
    default:
        return 65536;
    }
}

bool checkSize(const Page& page, std::size_t fileBytes, std::string* error)
{
    constexpr auto maxSide = static_cast<std::uint32_t>(std::numeric_limits<int>::max());
    if (page.width < 1 || page.height < 1 || page.width > maxSide || page.height > maxSide ||
        page.samples < 1 || page.bits < 1 || page.bits > 64)
        return fail(error, "bad TIFF geometry.");
    const std::uint64_t pixels = std::uint64_t{page.width} * page.height; // each below 2^31
    if (pixels > kMaxSamples / 3)
        return fail(error, "the TIFF image is too large.");
    // The smallest the stored picture can be: subsampled colour still keeps every luminance sample.
    const bool everySample =
        page.photometric == PHOTOMETRIC_MINISBLACK || page.photometric == PHOTOMETRIC_RGB;
    const std::uint64_t stored =
        pixels * static_cast<std::uint64_t>(page.bits) *
        static_cast<std::uint64_t>(everySample ? std::min(page.samples, 65535) : 1) / 8;
    if (stored / largestRatio(page.compression) > fileBytes)
        return fail(error, "the TIFF file is smaller than its image.");
    return true;
}

/// Puts decoded blocks of samples into the planes of the image.
class BlockSink
{
public:
    BlockSink(const Page& source, const fileio::TiffSampleType& sampleType, Image& target)
        : page(source)
        , type(sampleType)
        , image(target)
        , pixelBytes(page.sampleBytes() * static_cast<std::size_t>(page.planar ? 1 : page.samples))
        , minIsWhite(page.photometric == PHOTOMETRIC_MINISWHITE)
    {
    }

    std::size_t bytesOfRow(std::size_t columns) const { return pixelBytes * columns; }

    /// One row of `count` pixels from (x, y) on; `plane` is the file's plane in a planar file.
    void put(std::uint8_t* in, std::uint32_t x, std::uint32_t y, std::size_t count, int plane)
    {
        if (minIsWhite && type.format == SAMPLEFORMAT_UINT)
            std::transform(in, in + bytesOfRow(count), in,
                           [](std::uint8_t byte) { return static_cast<std::uint8_t>(~byte); });
        const std::size_t at =
            static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) + x;
        if (page.planar) {
            convert(in, image.plane(plane) + at, count);
            return;
        }
        for (int c = 0; c < image.channels; ++c)
            convert(in + page.sampleBytes() * static_cast<std::size_t>(c), image.plane(c) + at,
                    count);
    }

private:
    void convert(const std::uint8_t* in, float* out, std::size_t count) const
    {
        type.convert(in, pixelBytes, out, count);
        if (minIsWhite && type.format != SAMPLEFORMAT_UINT)
            for (std::size_t i = 0; i < count; ++i)
                out[i] = 1.0f - out[i];
    }

    const Page& page;
    const fileio::TiffSampleType& type;
    Image& image;
    std::size_t pixelBytes;
    bool minIsWhite;
};

/// Strips are read row by row, so that a file of one huge strip needs no second image.
bool readStrips(TIFF* tiff, const Page& page, int planes, BlockSink& sink)
{
    std::vector<std::uint8_t> row(static_cast<std::size_t>(TIFFScanlineSize(tiff)));
    if (row.size() < sink.bytesOfRow(page.width))
        return false;
    for (int plane = 0; plane < planes; ++plane)
        for (std::uint32_t y = 0; y < page.height; ++y) {
            if (TIFFReadScanline(tiff, row.data(), y, static_cast<std::uint16_t>(plane)) != 1)
                return false;
            sink.put(row.data(), 0, y, page.width, plane);
        }
    return true;
}

bool readTiles(TIFF* tiff, const Page& page, int planes, BlockSink& sink, std::string* error)
{
    constexpr std::uint64_t smallestLimit = std::uint64_t{64} << 20;
    std::uint32_t tileWidth = 0;
    std::uint32_t tileHeight = 0;
    TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &tileWidth);
    TIFFGetField(tiff, TIFFTAG_TILELENGTH, &tileHeight);
    const std::uint64_t bytes = TIFFTileSize64(tiff);
    const std::uint64_t imageBytes =
        std::uint64_t{page.width} * page.height * sink.bytesOfRow(1); // below 2^31 samples
    if (tileWidth < 1 || tileHeight < 1 || bytes > std::max(imageBytes * 4, smallestLimit) ||
        bytes < std::uint64_t{tileHeight} * sink.bytesOfRow(tileWidth))
        return fail(error, "bad TIFF tile size.");
    std::vector<std::uint8_t> tile(bytes);
    for (int plane = 0; plane < planes; ++plane)
        for (std::uint32_t y = 0; y < page.height; y += tileHeight)
            for (std::uint32_t x = 0; x < page.width; x += tileWidth) {
                if (TIFFReadTile(tiff, tile.data(), x, y, 0, static_cast<std::uint16_t>(plane)) < 0)
                    return false;
                const std::uint32_t rows = std::min(tileHeight, page.height - y);
                const std::uint32_t columns = std::min(tileWidth, page.width - x);
                for (std::uint32_t r = 0; r < rows; ++r)
                    sink.put(tile.data() + r * sink.bytesOfRow(tileWidth), x, y + r, columns,
                             plane);
            }
    return true;
}

/// A colour that was multiplied by `alpha`, as it was before; black when nothing is left of it.
float withoutAlpha(float colour, float alpha)
{
    return alpha > 0.0f ? std::min(colour / alpha, 1.0f) : 0.0f;
}

/// The same in whole steps of a byte, as they were when the file was made.
float byteWithoutAlpha(float colour, float alpha)
{
    const std::uint32_t a = fileio::quantised(alpha, 255.0f);
    const std::uint32_t c = fileio::quantised(colour, 255.0f);
    const std::uint32_t whole = a > 0 ? std::min((2 * 255 * c + a) / (2 * a), 255U) : 0;
    return fileio::unitSample(static_cast<std::uint8_t>(whole));
}

/// Takes the alpha, in the plane behind the colours, out of them and drops it.
void divideByAlpha(Image& image, bool bytes)
{
    const std::size_t pixels = image.pixelCount();
    const float* const alpha = image.plane(3);
    for (int c = 0; c < 3; ++c)
        std::transform(image.plane(c), image.plane(c) + pixels, alpha, image.plane(c),
                       bytes ? byteWithoutAlpha : withoutAlpha);
    image.channels = 3;
    image.data.resize(3 * pixels);
}

bool readSamples(MemoryTiff& file, const Page& page, const fileio::TiffSampleType& type,
                 Image& image, std::string* error)
{
    if (page.samples < page.channels())
        return fail(error, "bad TIFF geometry.");
    image =
        Image(static_cast<int>(page.width), static_cast<int>(page.height), page.channels() == 3);
    if (page.multipliedByAlpha) {
        image.channels = 4;
        image.data.resize(4 * image.pixelCount());
    }
    BlockSink sink(page, type, image);
    const int planes = page.planar ? image.channels : 1;
    std::string own;
    const bool whole = page.tiled ? readTiles(file.handle(), page, planes, sink, &own)
                                  : readStrips(file.handle(), page, planes, sink);
    if (!whole)
        return fail(error, own.empty() ? file.message("the TIFF image data cannot be read.") : own);
    if (page.multipliedByAlpha)
        divideByAlpha(image, type.bits == 8 && type.format == SAMPLEFORMAT_UINT);
    return true;
}

/// The 16-bit entries of a colour map as bytes; some writers filled it with 8-bit numbers.
bool readColourMap(TIFF* tiff, std::array<std::array<std::uint8_t, 256>, 3>& map)
{
    std::array<std::uint16_t*, 3> entries{};
    if (TIFFGetField(tiff, TIFFTAG_COLORMAP, &entries[0], &entries[1], &entries[2]) != 1)
        return false;
    bool wide = false;
    for (const std::uint16_t* channel : entries)
        wide |= std::any_of(channel, channel + 256, [](std::uint16_t v) { return v > 255; });
    for (std::size_t c = 0; c < 3; ++c)
        for (std::size_t i = 0; i < 256; ++i)
            map[c][i] = static_cast<std::uint8_t>(wide ? entries[c][i] >> 8 : entries[c][i]);
    return true;
}

/// 8-bit indices are read like grey samples and then looked up.
bool readPalette(MemoryTiff& file, const Page& page, const fileio::TiffSampleType& type,
                 Image& image, std::string* error)
{
    std::array<std::array<std::uint8_t, 256>, 3> map{};
    if (!readColourMap(file.handle(), map))
        return fail(error, "the TIFF palette cannot be read.");
    Image indices;
    if (!readSamples(file, page, type, indices, error))
        return false;
    image = Image(indices.width, indices.height, 1);
    for (int c = 0; c < 3; ++c) {
        float* out = image.plane(c);
        const auto& channel = map[static_cast<std::size_t>(c)];
        for (std::size_t i = 0; i < indices.pixelCount(); ++i)
            out[i] = fileio::unitSample(channel[fileio::quantised(indices.data[i], 255.0f)]);
    }
    return true;
}

/// Everything libtiff can turn into 8-bit RGB by itself.
bool readThroughRgba(MemoryTiff& file, const Page& page, Image& image, std::string* error)
{
    std::array<char, 1024> why{};
    if (TIFFRGBAImageOK(file.handle(), why.data()) != 1)
        return fail(error, std::string("unsupported TIFF image: ") + why.data());
    std::vector<std::uint32_t> raster(std::size_t{page.width} * page.height);
    // Asking for the stored orientation keeps libtiff from turning half of them by itself.
    if (TIFFReadRGBAImageOriented(file.handle(), page.width, page.height, raster.data(),
                                  page.orientation, 1) != 1)
        return fail(error, file.message("the TIFF image data cannot be read."));
    image = Image(static_cast<int>(page.width), static_cast<int>(page.height), 1);
    for (int c = 0; c < 3; ++c) {
        float* out = image.plane(c);
        for (std::size_t i = 0; i < raster.size(); ++i)
            out[i] = fileio::unitSample(static_cast<std::uint8_t>(raster[i] >> (8 * c)));
    }
    return true;
}

bool readImage(MemoryTiff& file, const Page& page, Image& image, ImageFileInfo& info,
               std::string* error)
{
    const fileio::TiffSampleType* type = fileio::findTiffSampleType(page.bits, page.format);
    const bool grey =
        page.photometric == PHOTOMETRIC_MINISBLACK || page.photometric == PHOTOMETRIC_MINISWHITE;
    const bool bytes = page.bits == 8 && page.format == SAMPLEFORMAT_UINT;
    info.container = "TIFF";
    info.linear = false;
    info.sampleFormat = type ? type->name : "UInt8";
    info.bitDepth = page.bits;
    if (type && (grey || page.photometric == PHOTOMETRIC_RGB))
        return readSamples(file, page, *type, image, error);
    if (type && bytes && page.photometric == PHOTOMETRIC_PALETTE && page.samples == 1)
        return readPalette(file, page, *type, image, error);
    return readThroughRgba(file, page, image, error);
}

} // namespace

bool hasTiffSignature(std::span<const std::uint8_t> file)
{
    constexpr std::array<std::array<std::uint8_t, 4>, 4> signatures{
        {{'I', 'I', 42, 0}, {'M', 'M', 0, 42}, {'I', 'I', 43, 0}, {'M', 'M', 0, 43}}};
    return file.size() >= 4 &&
           std::any_of(signatures.begin(), signatures.end(), [&](const auto& signature) {
               return std::memcmp(file.data(), signature.data(), 4) == 0;
           });
}

bool decodeTiff(std::span<const std::uint8_t> file, Image& out, ImageFileInfo* info,
                std::string* error)
{
    return fileio::guarded(error, [&] {
        if (!hasTiffSignature(file))
            return fail(error, "this is not a TIFF file.");
        MemoryTiff tiff(file);
        if (!tiff.handle())
            return fail(error, tiff.message("the TIFF file cannot be opened."));
        const Page page = readPage(tiff.handle());
        Image image;
        ImageFileInfo found;
        if (!checkSize(page, file.size(), error) || !readImage(tiff, page, image, found, error))
            return false;
        found.channels = image.channels;
        fileio::applyOrientation(image, page.orientation);
        found.width = image.width;
        found.height = image.height;
        out = std::move(image);
        if (info)
            *info = std::move(found);
        return true;
    });
}

bool loadTiff(const std::string& path, Image& out, ImageFileInfo* info, std::string* error)
{
    FileBytes bytes;
    return readWholeFile(path, bytes, error) && decodeTiff(bytes.view(), out, info, error);
}

} // namespace zre
