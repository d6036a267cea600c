#include "engine/fileio/fits_file.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "engine/fileio/failure.h"
#include "engine/fileio/fits_memory.h"
#include "engine/fileio/fits_solution.h"
#include "engine/fileio/whole_file.h"

namespace zre {

namespace {

using fileio::fail;

/// A new FITS file in memory that cfitsio enlarges as it needs.
class FitsWriter
{
public:
    FitsWriter() { fits_create_memfile(&fits, &base, &size, kGrowth, std::realloc, &status); }
    FitsWriter(const FitsWriter&) = delete;
    FitsWriter& operator=(const FitsWriter&) = delete;
    ~FitsWriter()
    {
        int ignored = 0;
        if (fits)
            fits_close_file(fits, &ignored);
        std::free(base);
    }

    fitsfile* handle() const { return fits; }
    int status = 0;

    /// The finished file: whole records to the end of its only unit.
    std::span<const std::uint8_t> finish()
    {
        LONGLONG headerStart = 0;
        LONGLONG dataStart = 0;
        LONGLONG end = 0;
        fits_flush_file(fits, &status);
        fits_get_hduaddrll(fits, &headerStart, &dataStart, &end, &status);
        fits_close_file(fits, &status);
        fits = nullptr;
        if (status != 0 || end < 0 || static_cast<std::size_t>(end) > size)
            return {};
        return {static_cast<const std::uint8_t*>(base), static_cast<std::size_t>(end)};
    }

private:
    static constexpr std::size_t kGrowth = std::size_t{16} << 20;
    fitsfile* fits = nullptr;
    void* base = nullptr;
    std::size_t size = 0;
};

/// One header card: numbers end in column 30, strings begin in column 11.
std::string card(const acl::FITSKeyword& keyword)
{
    const bool text = !keyword.value.empty() && keyword.value.front() == '\'';
    std::array<char, FLEN_CARD> line{};
    std::snprintf(line.data(), line.size(), text ? "%-8.8s= %-20s / %s" : "%-8.8s= %20s / %s",
                  keyword.name.c_str(), keyword.value.c_str(), keyword.comment.c_str());
    return line.data();
}

void writeHeader(FitsWriter& file, const Image& image, const Wcs* wcs)
{
    const int planes = image.channels >= 3 ? 3 : 1;
    std::array<LONGLONG, 3> sides{image.width, image.height, planes};
    fits_create_imgll(file.handle(), FLOAT_IMG, planes == 3 ? 3 : 2, sides.data(), &file.status);
    int shown = 1;
    fits_write_key(file.handle(), TLOGICAL, fileio::kDisplayReadyKeyword, &shown,
                   "the samples are meant to be seen as they are", &file.status);
    if (wcs)
        for (const acl::FITSKeyword& keyword : fileio::bottomUpKeywords(*wcs, image.height))
            fits_write_record(file.handle(), card(keyword).c_str(), &file.status);
}

void writeRows(FitsWriter& file, const Image& image)
{
    const int planes = image.channels >= 3 ? 3 : 1;
    const auto width = static_cast<std::size_t>(image.width);
    std::vector<float> row(width); // cfitsio takes its input as not const
    for (int c = 0; c < planes; ++c)
        for (int y = 0; y < image.height; ++y) {
            const float* in =
                image.plane(c) + static_cast<std::size_t>(image.height - 1 - y) * width;
            row.assign(in, in + width);
            std::array<LONGLONG, 3> first{1, y + 1, c + 1};
            fits_write_pixll(file.handle(), TFLOAT, first.data(), static_cast<LONGLONG>(width),
                             row.data(), &file.status);
        }
}

} // namespace

bool writeFits(const std::string& path, const Image& image, const Wcs* wcs, std::string* error)
{
    if (!image.usable())
        return fail(error, "the image is empty.");
    return fileio::guarded(error, [&] {
        FitsWriter file;
        if (!file.handle())
            return fail(error, fileio::fitsMessage(file.status));
        writeHeader(file, image, wcs);
        writeRows(file, image);
        const std::span<const std::uint8_t> bytes = file.finish();
        if (bytes.empty())
            return fail(error, fileio::fitsMessage(file.status));
        return replaceFile(path, bytes, error);
    });
}

} // namespace zre
