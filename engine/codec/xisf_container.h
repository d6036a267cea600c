#pragma once

#include <cstdint>
#include <fstream>
#include <span>
#include <string>

namespace zre {

/// A monolithic XISF file open for reading: its XML header, and the bytes behind it.
class XisfContainer
{
public:
    /// Opens `path` (UTF-8) and reads the header. False with a message of the XISF reader when the
    /// file cannot be opened, is no XISF file, or its header is not whole.
    bool open(const std::string& path, std::string* error);

    const std::string& header() const { return xml; }

    /// Whether the file is long enough for `size` bytes at the absolute offset `position`.
    bool holds(std::uint64_t position, std::uint64_t size) const;
    bool seek(std::uint64_t position);
    /// Fills `out` from where the last read ended; false when the file gives fewer bytes.
    bool read(std::span<std::uint8_t> out);

private:
    std::ifstream file;
    std::uint64_t fileSize = 0;
    std::string xml;
};

} // namespace zre
