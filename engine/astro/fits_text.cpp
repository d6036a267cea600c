#include "engine/astro/fits_text.h"

#include <charconv>
#include <cmath>

#include "engine/astro/projection.h"

namespace acl {

static std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string fitsText(std::string_view value)
{
    std::string_view inner = trimmed(value);
    if (inner.size() < 2 || inner.front() != '\'' || inner.back() != '\'')
        return std::string(inner);
    inner = inner.substr(1, inner.size() - 2);
    std::string text;
    for (std::size_t i = 0; i < inner.size(); ++i) {
        text += inner[i];
        if (inner[i] == '\'' && i + 1 < inner.size() && inner[i + 1] == '\'')
            ++i;
    }
    return std::string(trimmed(text));
}

std::optional<double> fitsNumber(std::string_view value)
{
    std::string text = fitsText(value);
    for (char& c : text)
        if (c == 'D' || c == 'd')
            c = 'e';
    std::string_view digits = text;
    if (digits.starts_with('+') && !digits.starts_with("+-"))
        digits.remove_prefix(1);
    double number = 0.0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, failure] = std::from_chars(digits.data(), end, number);
    if (failure != std::errc() || stop != end || !std::isfinite(number))
        return std::nullopt;
    return number;
}

std::string fitsReal(double value)
{
    char digits[40];
    const auto written =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 17);
    std::string text(digits, written.ptr);
    for (char& c : text)
        if (c == 'e')
            c = 'E';
    return text;
}

std::string fitsQuoted(std::string_view text)
{
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("''") : std::string(1, c);
    quoted.resize(std::max<std::size_t>(quoted.size(), 9), ' ');
    return quoted + '\'';
}

std::optional<std::string> KeywordLookup::text(std::string_view name) const
{
    for (const FITSKeyword& keyword : list)
        if (keyword.name == name) {
            std::string value = fitsText(keyword.value);
            return value.empty() ? std::nullopt : std::optional(std::move(value));
        }
    return std::nullopt;
}

std::optional<double> KeywordLookup::number(std::string_view name) const
{
    const std::optional<std::string> value = text(name);
    if (!value)
        return std::nullopt;
    const std::optional<double> parsed = fitsNumber(*value);
    if (!parsed)
        throw Error("Invalid WCS metadata: " + std::string(name) + " is not a number");
    return parsed;
}

} // namespace acl
