#include "engine/xisf/image_tag.h"

#include <string_view>

#include "engine/codec/block_codec.h"
#include "engine/codec/fail.h"

namespace zre {

/// What stands between the literal `name="` anywhere in the tag and the next double quote, or
/// nothing. Plain text search: no entities, no notion of XML.
static std::string attr(const std::string& tagText, const std::string& name)
{
    const std::string opening = name + "=\"";
    const std::size_t found = tagText.find(opening);
    if (found == std::string::npos)
        return {};
    const std::size_t begin = found + opening.size();
    const std::size_t end = tagText.find('"', begin);
    return end == std::string::npos ? std::string() : tagText.substr(begin, end - begin);
}

static bool parseGeometry(const std::string& text, ImageTag& tag, std::string* error)
{
    const std::vector<std::string> fields = split(text, ':');
    if (fields.size() < 3)
        return fail(error, "bad <Image> geometry.");
    tag.width = std::stoi(fields[0]);
    tag.height = std::stoi(fields[1]);
    tag.channels = std::stoi(fields[2]);
    if (tag.width < 1 || tag.height < 1 || tag.channels < 1)
        return fail(error, "bad <Image> geometry.");
    return true;
}

static bool parseLocation(const std::string& text, ImageTag& tag, std::string* error)
{
    const std::vector<std::string> fields = split(text, ':');
    if (fields.size() < 3 || fields[0] != "attachment")
        return fail(error, "unsupported XISF pixel location (need attachment): " + text);
    tag.position = std::stoull(fields[1]);
    tag.size = std::stoull(fields[2]);
    return true;
}

std::optional<std::uint64_t> ImageTag::neededBytes() const
{
    std::uint64_t bytes = sampleSize(samples);
    for (const int factor : {width, height, channels})
        if (__builtin_mul_overflow(bytes, static_cast<std::uint64_t>(factor), &bytes))
            return std::nullopt;
    return bytes;
}

bool parseImageTag(const std::string& header, ImageTag& out, std::string* error)
{
    const std::size_t begin = header.find("<Image ");
    if (begin == std::string::npos)
        return fail(error, "no <Image> element in XISF header.");
    const std::size_t end = header.find('>', begin);
    const std::string text = header.substr(begin, end - begin);
    ImageTag tag;
    if (!parseGeometry(attr(text, "geometry"), tag, error))
        return false;
    tag.sampleFormat = attr(text, "sampleFormat");
    const std::optional<SampleKind> kind = sampleKind(tag.sampleFormat);
    if (!kind)
        return fail(error, "unsupported XISF sample format: " + tag.sampleFormat);
    tag.samples = *kind;
    tag.bigEndian = attr(text, "byteOrder") == "big";
    tag.compression = attr(text, "compression");
    if (!parseLocation(attr(text, "location"), tag, error))
        return false;
    out = std::move(tag);
    return true;
}

} // namespace zre
