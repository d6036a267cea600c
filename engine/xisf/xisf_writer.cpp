#include <bit>
#include <cstring>
#include <exception>
#include <string_view>

#include "engine/astro/astrometric_metadata.h"
#include "engine/xisf/xisf.h"

namespace zre {

static_assert(std::endian::native == std::endian::little);

/// Bytes before the header: signature, header length, four reserved bytes.
static constexpr std::size_t kPreambleBytes = 16;

static std::string escaped(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        switch (c) {
        case '"':
            out += "&quot;";
            break;
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

/// The solution as keyword lines; nothing when there is none or it cannot be told.
static std::string keywordLines(const Wcs* wcs)
{
    if (!wcs || !wcs->valid || !wcs->solution)
        return {};
    try {
        std::vector<acl::FITSKeyword> keywords;
        wcs->solution->UpdateWCSKeywords(keywords);
        std::string lines;
        for (const acl::FITSKeyword& keyword : keywords)
            lines += "<FITSKeyword name=\"" + escaped(keyword.name) + "\" value=\"" +
                     escaped(keyword.value) + "\" comment=\"" + escaped(keyword.comment) + "\"/>\n";
        return lines;
    } catch (const std::exception&) {
        return {};
    }
}

static std::string headerText(const Image& image, int planes, std::uint64_t position,
                              std::uint64_t blockSize, const std::string& keywords)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<xisf version=\"1.0\" xmlns=\"http://www.pixinsight.com/xisf\">\n"
           "<Image geometry=\"" +
           std::to_string(image.width) + ":" + std::to_string(image.height) + ":" +
           std::to_string(planes) + "\" sampleFormat=\"Float32\" colorSpace=\"" +
           (planes == 1 ? "Gray" : "RGB") + "\" location=\"attachment:" + std::to_string(position) +
           ":" + std::to_string(blockSize) + "\" bounds=\"0:1\">\n" + keywords +
           "</Image>\n</xisf>";
}

/// The header names where the block behind it starts, and its own length moves that block.
static std::string settledHeader(const Image& image, int planes, std::uint64_t blockSize,
                                 const std::string& keywords)
{
    std::uint64_t position = 0;
    std::string header = headerText(image, planes, position, blockSize, keywords);
    for (int pass = 0; pass < 6; ++pass) {
        const std::uint64_t settled = header.size() + kPreambleBytes;
        if (settled == position)
            break;
        position = settled;
        header = headerText(image, planes, position, blockSize, keywords);
    }
    return header;
}

bool writeXisf(const Image& image, std::vector<std::uint8_t>& out, const Wcs* wcs)
{
    if (!image.usable())
        return false;
    const int planes = image.channels < 3 ? 1 : 3;
    const std::size_t samples = image.pixelCount() * static_cast<std::size_t>(planes);
    if (image.data.size() < samples)
        return false;
    const std::size_t blockSize = samples * sizeof(float);
    const std::string header = settledHeader(image, planes, blockSize, keywordLines(wcs));
    const auto length = static_cast<std::uint32_t>(header.size());

    std::vector<std::uint8_t> file;
    file.reserve(kPreambleBytes + header.size() + blockSize);
    const auto append = [&file](const void* bytes, std::size_t size) {
        const auto* const first = static_cast<const std::uint8_t*>(bytes);
        file.insert(file.end(), first, first + size);
    };
    constexpr std::uint32_t kReserved = 0;
    append("XISF0100", 8);
    append(&length, sizeof length);
    append(&kReserved, sizeof kReserved);
    append(header.data(), header.size());
    for (int channel = 0; channel < planes; ++channel)
        append(image.plane(channel), image.pixelCount() * sizeof(float));
    out = std::move(file);
    return true;
}

} // namespace zre
