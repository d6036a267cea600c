#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <fitsio.h>

#include "engine/fileio/fits_header.h"

namespace zre::fileio {

/// Marks a file whose data are shown as they are.
inline constexpr const char* kDisplayReadyKeyword = "ZRSHOWN";

/// One unit of a FITS file, opened in memory: neither other units nor the file name syntax and the
/// network, pipe and compressed-file drivers of cfitsio are within a file's reach.
class FitsReader
{
public:
    /// `file` must outlive this object; `unit` is one that `findPicture` found in it.
    FitsReader(std::span<const std::uint8_t> file, const FitsUnit& unit);
    FitsReader(const FitsReader&) = delete;
    FitsReader& operator=(const FitsReader&) = delete;
    ~FitsReader();

    /// Null when the unit could not be opened, or reads otherwise than `findPicture` read it.
    fitsfile* handle() const { return fits; }
    /// What cfitsio sees as the file.
    std::span<const std::uint8_t> bytes() const
    {
        return {static_cast<const std::uint8_t*>(base), size};
    }
    int status = 0; ///< cfitsio's

private:
    void placeAlone(std::span<const std::uint8_t> file, const FitsUnit& unit);
    bool agrees(const FitsUnit& unit);

    std::vector<std::uint8_t> copy; ///< of the unit, where it cannot be used in its place
    void* base = nullptr;           ///< kept here because cfitsio remembers the addresses
    std::size_t size = 0;
    fitsfile* fits = nullptr;
};

/// cfitsio's text for a status.
std::string fitsMessage(int status);

} // namespace zre::fileio
