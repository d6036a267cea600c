#include "app/export/still_xmp.h"

#include <algorithm>
#include <string_view>

#include "app/export/mp4_boxes.h"

namespace vr180 {

using namespace std::string_view_literals;

static std::string line(int indent, std::string_view text)
{
    return std::string(static_cast<std::size_t>(indent), ' ').append(text).append("\n");
}

static std::string property(std::string_view name, std::string_view value)
{
    std::string text("<");
    text.append(name).append(">").append(value).append("</").append(name).append(">");
    return line(3, text);
}

std::string stillXmp(int width, int height)
{
    const std::string w = std::to_string(width);
    const std::string h = std::to_string(height);
    std::string text =
        line(0, "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>");
    text += line(0, "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\" x:xmptk=\"Zerrith\">");
    text += line(1, "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">");
    text += line(2, "<rdf:Description rdf:about=\"\"");
    text += line(4, "xmlns:GPano=\"http://ns.google.com/photos/1.0/panorama/\"");
    text += line(4, "xmlns:GImage=\"http://ns.google.com/photos/1.0/image/\">");
    text += property("GPano:UsePanoramaViewer", "True");
    text += property("GPano:ProjectionType", "equirectangular");
    text += property("GImage:StereoMode", "LeftRight");
    text += property("GPano:CroppedAreaImageWidthPixels", w);
    text += property("GPano:CroppedAreaImageHeightPixels", h);
    text += property("GPano:FullPanoWidthPixels", w);
    text += property("GPano:FullPanoHeightPixels", h);
    text += property("GPano:CroppedAreaLeftPixels", "0");
    text += property("GPano:CroppedAreaTopPixels", "0");
    text += line(2, "</rdf:Description>") + line(1, "</rdf:RDF>") + line(0, "</x:xmpmeta>");
    return text.append("<?xpacket end=\"w\"?>");
}

static bool startsWith(const Bytes& bytes, std::string_view text)
{
    return bytes.size() >= text.size() &&
           std::equal(text.begin(), text.end(), bytes.begin(), [](char c, std::uint8_t byte) {
               return static_cast<std::uint8_t>(c) == byte;
           });
}

static Bytes withInsertion(const Bytes& file, std::size_t at, const Bytes& piece)
{
    Bytes out;
    out.reserve(file.size() + piece.size());
    const auto cut = file.begin() + static_cast<std::ptrdiff_t>(at);
    out.insert(out.end(), file.begin(), cut);
    out.insert(out.end(), piece.begin(), piece.end());
    out.insert(out.end(), cut, file.end());
    return out;
}

/// CRC-32 as PNG wants it (ISO 3309).
static std::uint32_t crc32(const Bytes& bytes, std::size_t from)
{
    static constexpr std::uint32_t kPolynomial = 0xEDB88320u;
    std::uint32_t crc = 0xFFFFFFFFu;
    for (std::size_t i = from; i < bytes.size(); ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1u) != 0 ? kPolynomial : 0u);
    }
    return ~crc;
}

std::optional<Bytes> withXmpPng(const Bytes& file, int width, int height)
{
    constexpr std::size_t kHeaderEnd = 33;
    if (!startsWith(file, "\x89PNG\r\n\x1a\n\0\0\0\x0DIHDR"sv) || file.size() < kHeaderEnd)
        return std::nullopt;
    // Keyword, not compressed, no language, no translated keyword.
    const std::string data = std::string("XML:com.adobe.xmp\0\0\0\0\0"sv) + stillXmp(width, height);
    Bytes chunk;
    appendBigEndian(chunk, data.size(), 4);
    append(chunk, "iTXt");
    append(chunk, data);
    appendBigEndian(chunk, crc32(chunk, 4), 4);
    return withInsertion(file, kHeaderEnd, chunk);
}

std::optional<Bytes> withXmpJpeg(const Bytes& file, int width, int height)
{
    constexpr std::size_t kMostSegment = 65535;
    if (!startsWith(file, "\xFF\xD8"sv) || file.size() < 4)
        return std::nullopt;
    std::size_t at = 2;
    if (file[2] == 0xFF && file[3] == 0xE0) {
        constexpr std::size_t kLengthBytes = 2; // a segment's length counts itself
        const auto length = file.size() < 6 ? 0 : static_cast<std::size_t>(file[4] * 256 + file[5]);
        if (length < kLengthBytes)
            return std::nullopt;
        at = 4 + length;
    }
    const std::string data =
        std::string("http://ns.adobe.com/xap/1.0/\0"sv) + stillXmp(width, height);
    if (at > file.size() || data.size() + 2 > kMostSegment)
        return std::nullopt;
    Bytes segment;
    append(segment, "\xFF\xE1");
    appendBigEndian(segment, data.size() + 2, 2);
    append(segment, data);
    return withInsertion(file, at, segment);
}

} // namespace vr180
