#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace zre {

/// The bytes of a file; not cleared before they are read into.
struct FileBytes
{
    std::unique_ptr<std::uint8_t[]> data;
    std::size_t size = 0;

    std::span<const std::uint8_t> view() const { return {data.get(), size}; }
};

/// Reads a regular file in full. False with a message for anything else: a folder, a pipe, a file
/// of more than 16 GiB, one that shrinks while it is read. `bytes` changes only on success.
bool readWholeFile(const std::string& path, FileBytes& bytes, std::string* error);

/// Gives `path` the content `bytes` through a temporary beside it that is flushed to the disk and
/// renamed, so that the target is whole or as it was. A symbolic link stays one and its target is
/// replaced; the permissions of an existing file stay. False with a message; nothing is left
/// behind.
bool replaceFile(const std::string& path, std::span<const std::uint8_t> bytes, std::string* error);

} // namespace zre
