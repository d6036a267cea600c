#include "engine/flight/script_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdlib>

#include <locale.h>

namespace zre::script {

static constexpr std::string_view kBlanks = " \t\r\n";

static bool isSeparator(char c)
{
    return c == ' ' || c == '\t' || c == ',' || c == ':' || c == '\r' || c == '\n';
}

/// The word from `from` on; empty when there is none.
static Token nextToken(std::string_view line, std::size_t from)
{
    while (from < line.size() && isSeparator(line[from]))
        ++from;
    std::size_t end = from;
    while (end < line.size() && !isSeparator(line[end]) && line[end] != '#')
        ++end;
    return {line.substr(from, end - from), from};
}

std::vector<Token> tokensOf(std::string_view line)
{
    std::vector<Token> tokens;
    for (Token token = nextToken(line, 0); !token.text.empty();
         token = nextToken(line, token.offset + token.text.size()))
        tokens.push_back(token);
    return tokens;
}

std::string_view firstTokenOf(std::string_view line)
{
    return nextToken(line, 0).text;
}

std::vector<std::string_view> linesOf(std::string_view text)
{
    std::vector<std::string_view> lines;
    for (;;) {
        const std::size_t end = text.find('\n');
        lines.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return lines;
        text.remove_prefix(end + 1);
    }
}

std::string lowerCase(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

// strtod reads forms that from_chars does not (hexadecimal, a plus sign, what overflows), but it
// follows the locale; one of its own never changes.
double leadingNumber(std::string_view text, std::size_t& length)
{
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    length = 0;
    if (text.empty())
        return 0.0;
    char* end = nullptr;
    const double value = strtod_l(text.data(), &end, plain);
    const auto read = static_cast<std::size_t>(end - text.data());
    if (read <= text.size()) // else blanks led on to what follows the text
        length = read;
    return value;
}

std::optional<double> wholeTextNumber(std::string_view text)
{
    std::size_t length = 0;
    const double value = leadingNumber(text, length);
    return length > 0 && length == text.size() ? std::optional(value) : std::nullopt;
}

std::optional<int> wholeTextInteger(std::string_view text)
{
    std::string_view digits = text;
    const bool negative = !digits.empty() && digits.front() == '-';
    if (negative || (!digits.empty() && digits.front() == '+'))
        digits.remove_prefix(1);
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    long long value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || value > INT_MAX)
        return negative ? INT_MIN : INT_MAX;
    return static_cast<int>(negative ? -value : value);
}

int saturated(double value)
{
    if (std::isnan(value))
        return 0;
    if (value <= static_cast<double>(INT_MIN))
        return INT_MIN;
    return value >= static_cast<double>(INT_MAX) ? INT_MAX : static_cast<int>(value);
}

int rounded(double value)
{
    return saturated(std::round(value));
}

static std::string printed(double value, std::chars_format format, int digits)
{
    // The longest: 309 digits before the point.
    std::array<char, 400> text{};
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), value, format, digits);
    return std::string(text.data(), result.ptr);
}

std::string general(double value, int digits)
{
    return printed(value, std::chars_format::general, digits);
}

std::string fixedPoint(double value, int decimals)
{
    return printed(value, std::chars_format::fixed, decimals);
}

} // namespace zre::script
