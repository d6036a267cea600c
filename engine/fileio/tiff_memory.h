#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <tiffio.h>

namespace zre::fileio {

/// Reads or writes a TIFF in memory. Errors of libtiff are kept here, the first one counting;
/// neither they nor warnings reach standard error or any handler the process has installed.
class MemoryTiff
{
public:
    /// Opens `file` for reading; it must outlive this object.
    explicit MemoryTiff(std::span<const std::uint8_t> file);
    /// Writes into `out`, which must outlive this object; `big` for files of more than 4 GiB.
    MemoryTiff(std::vector<std::uint8_t>& out, bool big);
    MemoryTiff(const MemoryTiff&) = delete;
    MemoryTiff& operator=(const MemoryTiff&) = delete;
    ~MemoryTiff();

    /// Null when the file could not be opened.
    TIFF* handle() const { return tiff; }
    /// Ends the file; false when writing it out failed. The handle is null afterwards.
    bool close();
    /// What libtiff said first, or `otherwise`.
    std::string message(const char* otherwise) const;

private:
    void open(const char* mode);
    static tmsize_t read(thandle_t self, void* buffer, tmsize_t size);
    static tmsize_t write(thandle_t self, void* buffer, tmsize_t size);
    static toff_t seek(thandle_t self, toff_t offset, int whence);
    static toff_t sizeOf(thandle_t self);
    static int map(thandle_t self, void** base, toff_t* size);
    static int keepMessage(TIFF*, void* self, const char* module, const char* format, va_list args);

    std::span<const std::uint8_t> input;
    std::vector<std::uint8_t>* output = nullptr;
    std::uint64_t position = 0;
    std::string firstMessage;
    TIFF* tiff = nullptr;
};

} // namespace zre::fileio
