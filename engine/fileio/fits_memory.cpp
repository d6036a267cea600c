#include "engine/fileio/fits_memory.h"

#include <algorithm>
#include <array>

namespace zre::fileio {

namespace {

/// A primary unit without data, for an extension to follow.
std::vector<std::uint8_t> emptyPrimary()
{
    std::string text;
    for (std::string card :
         {"SIMPLE  =                    T", "BITPIX  =                    8",
          "NAXIS   =                    0", "EXTEND  =                    T", "END"}) {
        card.resize(80, ' ');
        text += card;
    }
    text.resize(kFitsRecordBytes, ' ');
    return {text.begin(), text.end()};
}

} // namespace

FitsReader::FitsReader(std::span<const std::uint8_t> file, const FitsUnit& unit)
{
    placeAlone(file, unit);
    fits_open_memfile(&fits, "image", READONLY, &base, &size, 0, nullptr, &status);
    if (fits && !agrees(unit)) {
        int ignored = 0;
        fits_close_file(fits, &ignored);
        fits = nullptr;
        status = status ? status : BAD_NAXES;
    }
}

FitsReader::~FitsReader()
{
    int ignored = 0;
    if (fits)
        fits_close_file(fits, &ignored);
}

/// A primary unit with whole records stays where it is, so that a large picture is not copied; an
/// extension gets a primary of its own, and a short last record, which some writers leave, is
/// filled up.
void FitsReader::placeAlone(std::span<const std::uint8_t> file, const FitsUnit& unit)
{
    const std::size_t padding = (kFitsRecordBytes - unit.end % kFitsRecordBytes) % kFitsRecordBytes;
    if (unit.primary && unit.end + padding <= file.size()) {
        base = const_cast<std::uint8_t*>(file.data()); // opened for reading only
        size = unit.end + padding;
        return;
    }
    std::size_t begin = unit.begin;
    if (!unit.primary)
        copy = emptyPrimary();
    if (unit.compressed) {
        const std::vector<std::uint8_t> header = plainTableHeader(unit);
        copy.insert(copy.end(), header.begin(), header.end());
        begin = unit.dataBegin;
    }
    const auto bytes = file.subspan(begin, unit.end - begin);
    copy.reserve(copy.size() + bytes.size() + padding);
    copy.insert(copy.end(), bytes.begin(), bytes.end());
    copy.resize(copy.size() + padding);
    base = copy.data();
    size = copy.size();
}

bool FitsReader::agrees(const FitsUnit& unit)
{
    int kind = 0;
    int bitpix = 0;
    int axes = 0;
    std::array<LONGLONG, kMaxFitsAxes> side{};
    fits_movabs_hdu(fits, unit.primary ? 1 : 2, &kind, &status);
    const bool compressed = fits_is_compressed_image(fits, &status) != 0;
    fits_get_img_paramll(fits, kMaxFitsAxes, &bitpix, &axes, side.data(), &status);
    LONGLONG dataBegin = 0;
    LONGLONG dataEnd = 0;
    fits_get_hduaddrll(fits, nullptr, &dataBegin, &dataEnd, &status);
    const std::size_t dataBytes = size - static_cast<std::size_t>(dataBegin);
    const std::size_t ours = unit.end - unit.dataBegin;
    return status == 0 && dataBytes >= ours && dataBytes - ours < kFitsRecordBytes &&
           dataEnd == static_cast<LONGLONG>(size) && compressed == unit.compressed &&
           bitpix == unit.bitpix && axes == unit.axes &&
           std::equal(side.begin(), side.begin() + axes, unit.side.begin());
}

std::string fitsMessage(int status)
{
    std::array<char, FLEN_STATUS> text{};
    fits_get_errstatus(status, text.data());
    return std::string("FITS: ") + text.data() + ".";
}

} // namespace zre::fileio
