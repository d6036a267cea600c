#include "engine/depth/color_depth_rows.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

namespace zre {

// Numbers go through from_chars and to_chars: the C library's functions follow the locale, and a
// decimal comma would tear the fields apart.
template <typename Number>
static bool takeNumber(std::string_view& rest, Number& value)
{
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\n\v\f"), rest.size()));
    if (rest.starts_with('+') && !rest.starts_with("+-"))
        rest.remove_prefix(1);
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
    if (error != std::errc())
        return false;
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    return true;
}

static bool takeFinite(std::string_view& rest, float& value)
{
    if (!rest.starts_with(','))
        return false;
    rest.remove_prefix(1);
    double wide = 0.0;
    if (!takeNumber(rest, wide))
        return false;
    value = static_cast<float>(wide);
    return std::isfinite(value);
}

static bool readRow(std::string_view rest, ColorDepthRow& row)
{
    int enabled = 0;
    if (!takeNumber(rest, enabled))
        return false;
    row.enabled = enabled != 0;
    return takeFinite(rest, row.r) && takeFinite(rest, row.g) && takeFinite(rest, row.b) &&
           takeFinite(rest, row.tolerance) && takeFinite(rest, row.depth);
}

void parseColorDepthRows(const std::string& text, std::vector<ColorDepthRow>& rows)
{
    rows.clear();
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t length = std::min(rest.find(';'), rest.size());
        ColorDepthRow row;
        if (readRow(rest.substr(0, length), row))
            rows.push_back(row);
        rest.remove_prefix(std::min(length + 1, rest.size()));
    }
}

static void appendFixed(std::string& text, float value)
{
    std::array<char, 64> digits{};
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                      std::chars_format::fixed, 4);
    text += ',';
    text.append(digits.data(), result.ptr);
}

std::string colorDepthRowsText(const std::vector<ColorDepthRow>& rows)
{
    std::string text;
    for (const ColorDepthRow& row : rows) {
        if (!text.empty())
            text += ';';
        text += row.enabled ? '1' : '0';
        for (const float value : {row.r, row.g, row.b, row.tolerance, row.depth})
            appendFixed(text, value);
    }
    return text;
}

} // namespace zre
