#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace zre {

/// The bytes that base64 text spells; white space may stand anywhere, padding may be missing. None
/// when another character stands in it.
std::optional<std::vector<std::uint8_t>> decodeBase64(std::string_view text);

/// The bytes that pairs of hexadecimal digits spell; white space may stand anywhere. None when
/// another character stands in it or half a byte is left over.
std::optional<std::vector<std::uint8_t>> decodeHex(std::string_view text);

} // namespace zre
