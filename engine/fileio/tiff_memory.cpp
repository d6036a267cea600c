#include "engine/fileio/tiff_memory.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <exception>

namespace zre::fileio {

namespace {

// No strip, tile or tag that we read needs more at once; a hostile file may ask for it.
constexpr tmsize_t kMaxSingleAllocation = tmsize_t{512} << 20;

MemoryTiff& selfOf(void* self)
{
    return *static_cast<MemoryTiff*>(self);
}

int ignoreMessage(TIFF*, void*, const char*, const char*, va_list)
{
    return 1;
}

int closeNothing(thandle_t)
{
    return 0;
}

void unmapNothing(thandle_t, void*, toff_t) {}

} // namespace

MemoryTiff::MemoryTiff(std::span<const std::uint8_t> file)
    : input(file)
{
    open("r");
}

MemoryTiff::MemoryTiff(std::vector<std::uint8_t>& out, bool big)
    : output(&out)
{
    open(big ? "w8" : "w");
}

MemoryTiff::~MemoryTiff()
{
    if (tiff)
        TIFFClose(tiff);
}

void MemoryTiff::open(const char* mode)
{
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(
        TIFFOpenOptionsAlloc(), TIFFOpenOptionsFree);
    if (!options)
        return;
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kMaxSingleAllocation);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keepMessage, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), ignoreMessage, nullptr);
    tiff = TIFFClientOpenExt("image", mode, this, read, write, seek, closeNothing, sizeOf, map,
                             unmapNothing, options.get());
}

bool MemoryTiff::close()
{
    const bool flushed = tiff && TIFFFlush(tiff) == 1;
    if (tiff)
        TIFFClose(tiff);
    tiff = nullptr;
    return flushed && firstMessage.empty();
}

std::string MemoryTiff::message(const char* otherwise) const
{
    return firstMessage.empty() ? otherwise : firstMessage;
}

tmsize_t MemoryTiff::read(thandle_t self, void* buffer, tmsize_t size)
{
    MemoryTiff& file = selfOf(self);
    const std::span<const std::uint8_t> bytes =
        file.output ? std::span<const std::uint8_t>(*file.output) : file.input;
    if (size <= 0 || file.position >= bytes.size())
        return 0;
    const std::size_t count =
        std::min(static_cast<std::size_t>(size), bytes.size() - file.position);
    std::memcpy(buffer, bytes.data() + file.position, count);
    file.position += count;
    return static_cast<tmsize_t>(count);
}

tmsize_t MemoryTiff::write(thandle_t self, void* buffer, tmsize_t size)
{
    MemoryTiff& file = selfOf(self);
    if (!file.output || size <= 0)
        return 0;
    try {
        const std::uint64_t end = file.position + static_cast<std::uint64_t>(size);
        if (file.output->size() < end)
            file.output->resize(end);
    } catch (const std::exception&) {
        return -1; // an exception must not pass through C
    }
    std::memcpy(file.output->data() + file.position, buffer, static_cast<std::size_t>(size));
    file.position += static_cast<std::uint64_t>(size);
    return size;
}

toff_t MemoryTiff::seek(thandle_t self, toff_t offset, int whence)
{
    MemoryTiff& file = selfOf(self);
    if (whence == SEEK_CUR)
        offset += file.position;
    else if (whence == SEEK_END)
        offset += sizeOf(self);
    file.position = offset;
    return offset;
}

toff_t MemoryTiff::sizeOf(thandle_t self)
{
    const MemoryTiff& file = selfOf(self);
    return file.output ? file.output->size() : file.input.size();
}

int MemoryTiff::map(thandle_t self, void** base, toff_t* size)
{
    const MemoryTiff& file = selfOf(self);
    if (file.output)
        return 0;
    *base = const_cast<std::uint8_t*>(file.input.data()); // libtiff maps only what it reads
    *size = file.input.size();
    return 1;
}

int MemoryTiff::keepMessage(TIFF*, void* self, const char*, const char* format, va_list args)
{
    std::array<char, 512> text{};
    std::vsnprintf(text.data(), text.size(), format, args);
    if (std::string& first = selfOf(self).firstMessage; first.empty()) {
        try {
            first = text.data();
        } catch (const std::exception&) {
            first.clear();
        }
    }
    return 1;
}

} // namespace zre::fileio
