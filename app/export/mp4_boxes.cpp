#include "app/export/mp4_boxes.h"

#include <algorithm>
#include <limits>

namespace vr180 {

static constexpr std::size_t kHeader = 8;
static constexpr std::size_t kLongHeader = 16;

std::uint64_t bigEndian(const Bytes& bytes, std::size_t at, int count)
{
    std::uint64_t value = 0;
    for (int i = 0; i < count; ++i)
        value = value << 8 | bytes[at + static_cast<std::size_t>(i)];
    return value;
}

static void storeBigEndian(Bytes& bytes, std::size_t at, std::uint64_t value, int count)
{
    for (int i = count - 1; i >= 0; --i, value >>= 8)
        bytes[at + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value);
}

void appendBigEndian(Bytes& bytes, std::uint64_t value, int count)
{
    const std::size_t at = bytes.size();
    bytes.resize(at + static_cast<std::size_t>(count));
    storeBigEndian(bytes, at, value, count);
}

void append(Bytes& bytes, std::string_view text)
{
    for (const char c : text)
        bytes.push_back(static_cast<std::uint8_t>(c));
}

std::optional<Box> boxAt(const Bytes& bytes, std::size_t begin, std::size_t end)
{
    end = std::min(end, bytes.size());
    if (begin > end || end - begin < kHeader)
        return std::nullopt;
    std::uint64_t size = bigEndian(bytes, begin, 4);
    std::size_t header = kHeader;
    if (size == 1) {
        header = kLongHeader;
        if (end - begin < header)
            return std::nullopt;
        size = bigEndian(bytes, begin + kHeader, 8);
    } else if (size == 0) {
        size = end - begin;
    }
    if (size < header || size > end - begin)
        return std::nullopt;
    return Box{begin, begin + header, static_cast<std::size_t>(size)};
}

static bool isOfType(const Bytes& bytes, const Box& box, std::string_view type)
{
    return std::equal(
        type.begin(), type.end(), bytes.begin() + static_cast<std::ptrdiff_t>(box.start) + 4,
        [](char c, std::uint8_t byte) { return static_cast<std::uint8_t>(c) == byte; });
}

std::optional<Box> findBox(const Bytes& bytes, std::size_t begin, std::size_t end,
                           std::string_view type)
{
    while (const std::optional<Box> box = boxAt(bytes, begin, end)) {
        if (isOfType(bytes, *box, type))
            return box;
        begin = box->end();
    }
    return std::nullopt;
}

static bool isVideo(const Bytes& bytes, const Box& trak)
{
    constexpr std::size_t kHandlerType = 8;
    const std::optional<Box> mdia = findBox(bytes, trak.payload, trak.end(), "mdia");
    if (!mdia)
        return false;
    const std::optional<Box> handler = findBox(bytes, mdia->payload, mdia->end(), "hdlr");
    if (!handler || handler->end() - handler->payload < kHandlerType + 4)
        return false;
    return bigEndian(bytes, handler->payload + kHandlerType, 4) == 0x76696465; // "vide"
}

std::optional<Box> findVideoTrak(const Bytes& bytes, std::size_t begin, std::size_t end)
{
    while (const std::optional<Box> trak = findBox(bytes, begin, end, "trak")) {
        if (isVideo(bytes, *trak))
            return trak;
        begin = trak->end();
    }
    return std::nullopt;
}

bool growBoxSize(Bytes& bytes, const Box& box, std::size_t delta)
{
    const std::uint64_t size = bigEndian(bytes, box.start, 4);
    if (size == 0)
        return true;
    const bool isLong = size == 1;
    const std::uint64_t grown = std::uint64_t{box.size} + delta;
    if (!isLong && grown > std::numeric_limits<std::uint32_t>::max())
        return false;
    storeBigEndian(bytes, box.start + (isLong ? kHeader : 0), grown, isLong ? 8 : 4);
    return true;
}

static void appendBoxHeader(Bytes& bytes, std::string_view type, std::size_t payloadBytes)
{
    appendBigEndian(bytes, kHeader + payloadBytes, 4);
    append(bytes, type);
}

void appendFullBoxHeader(Bytes& bytes, std::string_view type, std::size_t payloadBytes)
{
    constexpr std::size_t kVersionAndFlags = 4;
    appendBoxHeader(bytes, type, kVersionAndFlags + payloadBytes);
    appendBigEndian(bytes, 0, kVersionAndFlags);
}

void appendBox(Bytes& bytes, std::string_view type, const Bytes& payload)
{
    appendBoxHeader(bytes, type, payload.size());
    bytes.insert(bytes.end(), payload.begin(), payload.end());
}

void appendFullBox(Bytes& bytes, std::string_view type, const Bytes& payload)
{
    appendFullBoxHeader(bytes, type, payload.size());
    bytes.insert(bytes.end(), payload.begin(), payload.end());
}

} // namespace vr180
