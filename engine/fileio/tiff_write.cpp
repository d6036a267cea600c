#include "engine/fileio/tiff_file.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "engine/fileio/failure.h"
#include "engine/fileio/sample_scale.h"
#include "engine/fileio/tiff_memory.h"
#include "engine/fileio/whole_file.h"

namespace zre {

namespace {

using fileio::fail;

// A plain TIFF addresses 4 GiB; deflate may add a little to what cannot be compressed.
constexpr std::uint64_t kBigTiffAbove = 4'000'000'000;
constexpr std::uint64_t kStripBytes = std::uint64_t{1} << 18;
constexpr int kDeflateLevel = 4; // level 6 takes four times as long and saves 5 % at most

int planesOf(const Image& image)
{
    return image.channels >= 3 ? 3 : 1;
}

bool setTags(TIFF* tiff, const Image& image, int bits)
{
    const int planes = planesOf(image);
    const bool set =
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(image.width)) &&
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(image.height)) &&
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, planes) &&
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits) &&
        TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT,
                     bits == 32 ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_UINT) &&
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
                     planes == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK) &&
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
        TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) &&
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE) &&
        TIFFSetField(tiff, TIFFTAG_ZIPQUALITY, kDeflateLevel) &&
        TIFFSetField(tiff, TIFFTAG_PREDICTOR,
                     bits == 32 ? PREDICTOR_FLOATINGPOINT : PREDICTOR_HORIZONTAL) &&
        TIFFSetField(tiff, TIFFTAG_SOFTWARE, "Zerrith Studio");
    const std::uint64_t rows = kStripBytes / std::max<std::uint64_t>(1, TIFFScanlineSize64(tiff));
    return set && TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP,
                               static_cast<std::uint32_t>(std::max<std::uint64_t>(1, rows))) == 1;
}

template <class Stored>
void interleave(const Image& image, int y, std::uint8_t* row)
{
    const auto planes = static_cast<std::size_t>(planesOf(image));
    const auto width = static_cast<std::size_t>(image.width);
    for (std::size_t c = 0; c < planes; ++c) {
        const float* in = image.plane(static_cast<int>(c)) + static_cast<std::size_t>(y) * width;
        std::uint8_t* out = row + c * sizeof(Stored);
        for (std::size_t x = 0; x < width; ++x, out += planes * sizeof(Stored)) {
            Stored sample;
            if constexpr (std::is_floating_point_v<Stored>)
                sample = in[x];
            else
                sample = static_cast<Stored>(fileio::quantised(
                    in[x], static_cast<float>(std::numeric_limits<Stored>::max())));
            std::memcpy(out, &sample, sizeof sample);
        }
    }
}

bool writeRows(TIFF* tiff, const Image& image, int bits)
{
    const auto interleaveRow = bits == 8    ? interleave<std::uint8_t>
                               : bits == 16 ? interleave<std::uint16_t>
                                            : interleave<float>;
    std::vector<std::uint8_t> row(static_cast<std::size_t>(TIFFScanlineSize(tiff)));
    for (int y = 0; y < image.height; ++y) {
        interleaveRow(image, y, row.data());
        if (TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0) != 1)
            return false;
    }
    return true;
}

} // namespace

bool writeTiff(const std::string& path, const Image& image, int bits, std::string* error)
{
    if (!image.usable())
        return fail(error, "the image is empty.");
    if (bits != 8 && bits != 16 && bits != 32)
        return fail(error, "TIFF is written with 8, 16 or 32 bits.");
    return fileio::guarded(error, [&] {
        const std::uint64_t samples =
            image.pixelCount() * static_cast<std::uint64_t>(planesOf(image));
        std::vector<std::uint8_t> bytes;
        fileio::MemoryTiff file(bytes,
                                samples * static_cast<std::uint64_t>(bits) / 8 > kBigTiffAbove);
        if (!file.handle() || !setTags(file.handle(), image, bits) ||
            !writeRows(file.handle(), image, bits) || !file.close())
            return fail(error, file.message("the TIFF image cannot be encoded."));
        return replaceFile(path, bytes, error);
    });
}

} // namespace zre
