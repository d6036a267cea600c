#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zre::script {

/// A word of a script line, and where it stands in the line.
struct Token
{
    std::string_view text;
    std::size_t offset = 0;
};

/// The words of a line: blank, tab, CR, LF, "," and ":" part them, "#" ends the line.
std::vector<Token> tokensOf(std::string_view line);
/// The first of them; empty when there is none.
std::string_view firstTokenOf(std::string_view line);

/// The lines of a text, cut at each newline; the piece behind the last one is a line too.
std::vector<std::string_view> linesOf(std::string_view text);

std::string lowerCase(std::string_view text);
/// Without blank, tab, CR and LF at either end.
std::string_view trimmed(std::string_view text);

/// The number at the start of `text`, as strtod reads it under the locale "C", and its length; 0
/// when there is none. What follows `text` in memory is a separator or a null character, at which
/// a number ends.
double leadingNumber(std::string_view text, std::size_t& length);
/// The number that all of `text` is.
std::optional<double> wholeTextNumber(std::string_view text);
/// The base-10 integer that all of `text` is, as strtol reads it; bound to the range of int.
std::optional<int> wholeTextInteger(std::string_view text);

/// `value` without its fraction, bound to the range of int; 0 for a NaN.
int saturated(double value);
/// `value` rounded half away from zero, bound likewise.
int rounded(double value);

/// As printf's %.*g and %.*f print it, with a point.
std::string general(double value, int digits);
std::string fixedPoint(double value, int decimals);

} // namespace zre::script
