#include "engine/fileio/fits_tiles.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

#include <zlib.h>

#include "engine/fileio/failure.h"
#include "engine/fileio/rice_stream.h"

namespace zre::fileio {

namespace {

constexpr std::uint64_t kLargestSample = 8; // bytes

template <int Type, class Value>
std::optional<Value> key(fitsfile* fits, const std::string& name)
{
    Value value{};
    int status = 0;
    if (fits_read_key(fits, Type, name.c_str(), &value, nullptr, &status))
        return std::nullopt;
    return value;
}

/// True when `stream` is one gzip member that ends and holds `samples` samples of one width.
bool isWholeGzipStream(std::span<const std::uint8_t> stream, std::uint64_t samples)
{
    const std::uint64_t limit = samples * kLargestSample;
    z_stream inflater{};
    constexpr int gzipOnly = 15 + 16;
    if (stream.size() > std::numeric_limits<uInt>::max() ||
        inflateInit2(&inflater, gzipOnly) != Z_OK)
        return false;
    std::vector<std::uint8_t> sink(std::size_t{1} << 16);
    inflater.next_in = const_cast<Bytef*>(stream.data());
    inflater.avail_in = static_cast<uInt>(stream.size());
    int result = Z_OK;
    while (result == Z_OK && inflater.total_out <= limit) {
        inflater.next_out = sink.data();
        inflater.avail_out = static_cast<uInt>(sink.size());
        result = inflate(&inflater, Z_NO_FLUSH);
    }
    inflateEnd(&inflater);
    const std::uint64_t width = inflater.total_out / samples;
    return result == Z_STREAM_END && inflater.total_out % samples == 0 &&
           (width == 1 || width == 2 || width == 4 || width == 8);
}

/// The grid of tiles over the image: how many samples each holds.
class TileGrid
{
public:
    explicit TileGrid(const FitsUnit& unit)
        : sides(unit.sides())
        , tile(unit.tile)
    {
    }

    /// Below the image's own count, which fits.
    LONGLONG count() const
    {
        LONGLONG tiles = 1;
        for (std::size_t axis = 0; axis < sides.size(); ++axis)
            tiles *= along(axis);
        return tiles;
    }
    std::uint64_t samplesOf(LONGLONG index) const
    {
        std::uint64_t samples = 1;
        for (std::size_t axis = 0; axis < sides.size(); ++axis) {
            const LONGLONG start = index % along(axis) * tile[axis];
            samples *=
                static_cast<std::uint64_t>(std::min<LONGLONG>(tile[axis], sides[axis] - start));
            index /= along(axis);
        }
        return samples;
    }

private:
    LONGLONG along(std::size_t axis) const { return (sides[axis] + tile[axis] - 1) / tile[axis]; }

    std::span<const std::int64_t> sides;
    std::span<const std::int64_t> tile;
};

/// The variable-length cells of one column, as bytes of the file. Number 0 is an absent column; a
/// column of another kind has no sound cell.
class HeapColumn
{
public:
    HeapColumn(fitsfile* table, std::span<const std::uint8_t> wholeFile, int number)
        : fits(table)
        , file(wholeFile)
        , column(number)
    {
        int status = 0;
        LONGLONG dataStart = 0;
        int type = 0;
        fits_get_coltypell(fits, column, &type, nullptr, nullptr, &status);
        fits_get_hduaddrll(fits, nullptr, &dataStart, nullptr, &status);
        const LONGLONG rowBytes = key<TLONGLONG, LONGLONG>(fits, "NAXIS1").value_or(0);
        const LONGLONG rows = key<TLONGLONG, LONGLONG>(fits, "NAXIS2").value_or(0);
        const LONGLONG heap = key<TLONGLONG, LONGLONG>(fits, "THEAP").value_or(rowBytes * rows);
        if (status || type >= 0 || heap < 0 || heap > static_cast<LONGLONG>(file.size()))
            return;
        elementBytes = type == -TBYTE                           ? 1
                       : type == -TSHORT                        ? 2
                       : type == -TDOUBLE || type == -TLONGLONG ? 8
                                                                : 4;
        heapStart = dataStart + heap;
    }

    /// The cell of `row`, counted from 1; none when it lies outside the file, empty when the column
    /// is absent.
    std::optional<std::span<const std::uint8_t>> cell(LONGLONG row) const
    {
        if (column == 0)
            return std::span<const std::uint8_t>();
        LONGLONG length = 0;
        LONGLONG offset = 0;
        int status = 0;
        const auto size = static_cast<LONGLONG>(file.size());
        if (heapStart < 0 || fits_read_descriptll(fits, column, row, &length, &offset, &status) ||
            length < 0 || offset < 0 || length > size || offset > size ||
            heapStart + offset + length * elementBytes > size)
            return std::nullopt;
        return file.subspan(static_cast<std::size_t>(heapStart + offset),
                            static_cast<std::size_t>(length * elementBytes));
    }
    int bytesOfElement() const { return elementBytes; }

private:
    fitsfile* fits;
    std::span<const std::uint8_t> file;
    int column;
    int elementBytes = 1;
    LONGLONG heapStart = -1;
};

} // namespace

bool checkTiles(fitsfile* fits, std::span<const std::uint8_t> file, const FitsUnit& unit,
                std::string* error)
{
    const FitsTileCoding& coding = unit.coding;
    const TileGrid grid(unit);
    // The very columns that cfitsio will decode. When it found the header wanting while it opened
    // the unit, it has kept quiet about it and has none.
    const FITSfile& opened = *fits->Fptr;
    const HeapColumn coded(fits, file, opened.cn_compressed);
    const HeapColumn gzipped(fits, file, opened.cn_gzip_data);
    const HeapColumn plain(fits, file, opened.cn_uncompressed);
    const LONGLONG tiles = grid.count();
    if (opened.cn_compressed < 1 || opened.numrows != tiles)
        return fail(error, "bad FITS tile coding.");
    for (LONGLONG i = 0; i < tiles; ++i) {
        const std::uint64_t samples = grid.samplesOf(i);
        const auto main = coded.cell(i + 1);
        const auto other = gzipped.cell(i + 1);
        const auto raw = plain.cell(i + 1);
        const bool sound =
            main && other && raw && !(main->empty() && other->empty() && raw->empty()) &&
            (main->empty() || (coding.gzip ? isWholeGzipStream(*main, samples)
                                           : isWholeRiceStream(*main, samples, coding.riceBytes,
                                                               coding.riceBlock))) &&
            (other->empty() || isWholeGzipStream(*other, samples)) &&
            raw->size() / static_cast<std::size_t>(plain.bytesOfElement()) <= samples;
        if (!sound)
            return fail(error, "a tile of the FITS image is damaged.");
    }
    return true;
}

} // namespace zre::fileio
