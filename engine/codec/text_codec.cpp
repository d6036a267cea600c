#include "engine/codec/text_codec.h"

#include <string>

namespace zre {

/// Gathers the values of the digits of `text`, `bits` each and most significant first, into bytes.
/// The bits left over of a last incomplete byte are counted in `leftOver`.
static std::optional<std::vector<std::uint8_t>>
gather(std::string_view text, std::string_view digits, unsigned bits, unsigned& leftOver)
{
    std::vector<std::uint8_t> bytes;
    std::uint32_t held = 0;
    leftOver = 0;
    for (const char c : text) {
        if (std::string_view(" \t\r\n").find(c) != std::string_view::npos)
            continue;
        const std::size_t value = digits.find(c);
        if (value == std::string_view::npos)
            return std::nullopt;
        held = (held << bits | static_cast<std::uint32_t>(value)) & 0xFFFFU;
        leftOver += bits;
        if (leftOver >= 8) {
            leftOver -= 8;
            bytes.push_back(static_cast<std::uint8_t>(held >> leftOver & 0xFFU));
        }
    }
    return bytes;
}

std::optional<std::vector<std::uint8_t>> decodeBase64(std::string_view text)
{
    const std::size_t last = text.find_last_not_of("= \t\r\n");
    text = text.substr(0, last == std::string_view::npos ? 0 : last + 1);
    unsigned leftOver = 0;
    auto bytes = gather(text, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/", 6,
                        leftOver);
    return leftOver < 6 ? bytes : std::nullopt;
}

std::optional<std::vector<std::uint8_t>> decodeHex(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'F')
            c = static_cast<char>(c - 'A' + 'a');
    unsigned leftOver = 0;
    auto bytes = gather(lower, "0123456789abcdef", 4, leftOver);
    return leftOver == 0 ? bytes : std::nullopt;
}

} // namespace zre
