#include "engine/fileio/fits_memory.h"

#include <array>

namespace zre::fileio {

static constexpr std::size_t kRecordBytes = 2880;

FitsReader::FitsReader(std::span<const std::uint8_t> file)
    : base(const_cast<std::uint8_t*>(file.data())) // opened for reading only
    , size(file.size())
{
    // Some writers leave the last record short, which the driver would refuse.
    if (size % kRecordBytes != 0) {
        padded.assign(file.begin(), file.end());
        padded.resize((size / kRecordBytes + 1) * kRecordBytes);
        base = padded.data();
        size = padded.size();
    }
    fits_open_memfile(&fits, "image", READONLY, &base, &size, 0, nullptr, &status);
}

FitsReader::~FitsReader()
{
    int ignored = 0;
    if (fits)
        fits_close_file(fits, &ignored);
}

std::string fitsMessage(int status)
{
    std::array<char, FLEN_STATUS> text{};
    fits_get_errstatus(status, text.data());
    return std::string("FITS: ") + text.data() + ".";
}

} // namespace zre::fileio
