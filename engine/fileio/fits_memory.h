#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <fitsio.h>

namespace zre::fileio {

/// Marks a file whose data are shown as they are.
inline constexpr const char* kDisplayReadyKeyword = "ZRSHOWN";

/// A FITS file in memory: neither the file name syntax nor the network, pipe and compressed-file
/// drivers of cfitsio are within a file's reach.
class FitsReader
{
public:
    explicit FitsReader(std::span<const std::uint8_t> file);
    FitsReader(const FitsReader&) = delete;
    FitsReader& operator=(const FitsReader&) = delete;
    ~FitsReader();

    /// Null when the file could not be opened.
    fitsfile* handle() const { return fits; }
    int status = 0; ///< cfitsio's; each call does nothing once it is set

private:
    std::vector<std::uint8_t> padded; ///< a copy, when the file's last record is short
    void* base = nullptr;             ///< kept here because cfitsio remembers the addresses
    std::size_t size = 0;
    fitsfile* fits = nullptr;
};

/// cfitsio's text for a status.
std::string fitsMessage(int status);

} // namespace zre::fileio
