#include "engine/codec/xisf_container.h"

#include <array>
#include <bit>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "engine/codec/fail.h"

namespace zre {

static_assert(std::endian::native == std::endian::little);

static constexpr std::string_view kSignature = "XISF0100";
static constexpr std::uint32_t kMostHeaderBytes = 64U << 20U;
static constexpr std::uint64_t kHeaderPosition = 16;

bool XisfContainer::open(const std::string& path, std::string* error)
{
    std::error_code ignored;
    if (std::filesystem::is_fifo(path, ignored)) // opening one waits for somebody to write
        return fail(error, "cannot open file: " + path);
    // Whole blocks go straight to their destination; a buffer would only add a copy.
    file.rdbuf()->pubsetbuf(nullptr, 0);
    file.open(path, std::ios::binary);
    if (!file)
        return fail(error, "cannot open file: " + path);
    file.seekg(0, std::ios::end);
    const std::streamoff end = file.tellg();
    fileSize = file && end > 0 ? static_cast<std::uint64_t>(end) : 0;
    std::array<std::uint8_t, 8> signature{};
    if (!holds(0, signature.size()) || !seek(0) || !read(signature) ||
        std::memcmp(signature.data(), kSignature.data(), signature.size()) != 0)
        return fail(error, "not an XISF file (bad signature).");
    std::array<std::uint8_t, 4> lengthBytes{};
    std::uint32_t length = 0;
    const bool lengthRead = read(lengthBytes);
    std::memcpy(&length, lengthBytes.data(), sizeof length);
    if (!lengthRead || length < 1 || length > kMostHeaderBytes)
        return fail(error, "invalid XISF header length.");
    if (!holds(kHeaderPosition, length) || !seek(kHeaderPosition))
        return fail(error, "truncated XISF header.");
    xml.resize(length);
    if (!read({reinterpret_cast<std::uint8_t*>(xml.data()), xml.size()}))
        return fail(error, "truncated XISF header.");
    return true;
}

bool XisfContainer::holds(std::uint64_t position, std::uint64_t size) const
{
    return position <= fileSize && size <= fileSize - position;
}

bool XisfContainer::seek(std::uint64_t position)
{
    file.clear();
    return static_cast<bool>(file.seekg(static_cast<std::streamoff>(position)));
}

bool XisfContainer::read(std::span<std::uint8_t> out)
{
    const auto wanted = static_cast<std::streamsize>(out.size());
    return file.read(reinterpret_cast<char*>(out.data()), wanted) && file.gcount() == wanted;
}

} // namespace zre
