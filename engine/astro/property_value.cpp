#include "engine/astro/property_value.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string_view>

#include "engine/astro/fits_text.h"
#include "engine/astro/projection.h"
#include "engine/codec/block_codec.h"
#include "engine/codec/text_codec.h"

namespace acl {

using Bytes = std::vector<std::uint8_t>;

/// Names and numbers of a solution are a handful of bytes; a block beyond this is not one.
static constexpr std::uint64_t kMostBlockBytes = 65536;

template <typename Number>
static double numberAt(const std::uint8_t* bytes)
{
    Number value;
    std::memcpy(&value, bytes, sizeof value);
    return static_cast<double>(value);
}

/// A type of vector and matrix elements; `prefix` stands before "Vector" and "Matrix".
struct ElementType
{
    std::string_view prefix;
    std::size_t size;
    double (*at)(const std::uint8_t*);
};

static constexpr std::array kElementTypes{
    ElementType{"F64", 8, numberAt<double>},         ElementType{"", 8, numberAt<double>},
    ElementType{"F32", 4, numberAt<float>},          ElementType{"I8", 1, numberAt<std::int8_t>},
    ElementType{"UI8", 1, numberAt<std::uint8_t>},   ElementType{"I16", 2, numberAt<std::int16_t>},
    ElementType{"UI16", 2, numberAt<std::uint16_t>}, ElementType{"I32", 4, numberAt<std::int32_t>},
    ElementType{"UI32", 4, numberAt<std::uint32_t>}, ElementType{"I64", 8, numberAt<std::int64_t>},
    ElementType{"UI64", 8, numberAt<std::uint64_t>},
};

static const ElementType* elementType(std::string_view type)
{
    for (const std::string_view shape : {"Vector", "Matrix"}) {
        if (!type.ends_with(shape))
            continue;
        const std::string_view prefix = type.substr(0, type.size() - shape.size());
        for (const ElementType& candidate : kElementTypes)
            if (candidate.prefix == prefix)
                return &candidate;
    }
    return nullptr;
}

static Bytes decodeText(std::string_view text, std::string_view encoding)
{
    std::optional<Bytes> bytes;
    if (encoding == "base64")
        bytes = zre::decodeBase64(text);
    else if (encoding == "hex" || encoding == "base16")
        bytes = zre::decodeHex(text);
    if (!bytes)
        throw Error("Invalid XISF property: damaged " + std::string(encoding) + " data");
    return *std::move(bytes);
}

static Bytes storedBlock(const PropertyElement& element, const AttachmentReader& attachment)
{
    const std::vector<std::string> fields = zre::split(element.location, ':');
    if (fields[0] == "inline" && fields.size() >= 2)
        return decodeText(element.content, fields[1]);
    if (fields[0] == "embedded")
        return decodeText(element.content, element.dataEncoding);
    if (fields[0] != "attachment" || fields.size() < 3)
        throw Error("Invalid XISF property: location " + element.location);
    const std::uint64_t size = std::stoull(fields[2]);
    if (size > kMostBlockBytes)
        throw Error("Invalid XISF property: oversized block");
    return attachment(std::stoull(fields[1]), size);
}

static Bytes dataBlock(const PropertyElement& element, std::size_t itemSize,
                       const AttachmentReader& attachment)
{
    Bytes bytes = storedBlock(element, attachment);
    if (element.compression.empty())
        return bytes;
    zre::BlockCompression how;
    std::string failure;
    if (!zre::parseBlockCompression(element.compression, itemSize, how, &failure))
        throw Error(failure);
    if (how.uncompressedSize > kMostBlockBytes)
        throw Error("Invalid XISF property: oversized block");
    const Bytes stored = std::move(bytes);
    if (!zre::decompressBlock(stored, how, bytes, &failure))
        throw Error(failure);
    return bytes;
}

static std::string stringValue(const PropertyElement& element, const AttachmentReader& attachment)
{
    if (!element.location.empty()) {
        const Bytes bytes = dataBlock(element, 1, attachment);
        return {bytes.begin(), bytes.end()};
    }
    return element.value.empty() ? element.content : element.value;
}

static std::vector<double> vectorValue(const PropertyElement& element, const ElementType& type,
                                       const AttachmentReader& attachment)
{
    Bytes bytes = dataBlock(element, type.size, attachment);
    if (bytes.size() % type.size != 0)
        throw Error("Invalid XISF property: part of an element");
    std::vector<double> numbers;
    for (std::size_t at = 0; at < bytes.size(); at += type.size) {
        std::uint8_t* const item = bytes.data() + at;
        if (element.byteOrder == "big")
            std::reverse(item, item + type.size);
        numbers.push_back(type.at(item));
    }
    return numbers;
}

Property readProperty(const PropertyElement& element, const AttachmentReader& attachment)
{
    if (element.type == "String")
        return {element.id, stringValue(element, attachment)};
    if (const ElementType* type = elementType(element.type))
        return {element.id, vectorValue(element, *type, attachment)};
    throw Error("Invalid XISF property: type " + element.type);
}

} // namespace acl
