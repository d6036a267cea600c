#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string_view>

#include "engine/flight/flyby_script.h"
#include "engine/flight/script_text.h"

namespace zre {

using script::Token;

namespace {

struct Factors
{
    double x = 1.0;
    double y = 1.0;
};

/// Which words of a command's line are coordinates: the first and second behind it.
struct CommandRow
{
    std::string_view name;
    double Factors::*first;
    double Factors::*second = nullptr;
};

constexpr std::array kCommands{
    CommandRow{"moveto", &Factors::x, &Factors::y},
    CommandRow{"flyto", &Factors::x, &Factors::y},
    CommandRow{"flyin", &Factors::x, &Factors::y},
    CommandRow{"pan", &Factors::x, &Factors::y},
    CommandRow{"panl", &Factors::x},
    CommandRow{"panr", &Factors::x},
    CommandRow{"pant", &Factors::y},
    CommandRow{"panb", &Factors::y},
};

/// The text of a scaled literal; nothing for what is no literal or has no whole form.
std::optional<std::string> scaled(std::string_view literal, double factor)
{
    constexpr double kMost = 9e15; // whole numbers that a double tells apart
    const std::optional<double> value = script::wholeTextNumber(literal);
    if (!value || !(std::abs(*value * factor) < kMost))
        return std::nullopt;
    return std::to_string(std::llround(*value * factor));
}

/// Rewrites one line, from its beginning on.
class LineScaler
{
public:
    LineScaler(std::string_view line, const Factors& factors)
        : m_tokens(script::tokensOf(line))
        , m_factors(factors)
        , m_line(line)
    {
    }

    std::string run()
    {
        const std::string name =
            m_tokens.empty() ? std::string() : script::lowerCase(m_tokens.front().text);
        if (name == "waypoint" || name == "path_start")
            scaleParameters();
        const auto row = std::find_if(kCommands.begin(), kCommands.end(),
                                      [&](const CommandRow& r) { return name == r.name; });
        if (row != kCommands.end()) {
            scaleWord(1, row->first);
            scaleWord(2, row->second);
        }
        return m_text.append(m_line.substr(m_done));
    }

private:
    void scaleWord(std::size_t index, double Factors::*factor)
    {
        if (factor && index < m_tokens.size())
            replace(m_tokens[index].text, m_tokens[index].offset, m_factors.*factor);
    }

    void scaleParameters()
    {
        for (std::size_t i = 1; i < m_tokens.size(); ++i) {
            const Token& token = m_tokens[i];
            const std::size_t cut = token.text.find('=');
            const std::string name = script::lowerCase(token.text.substr(0, cut));
            if (cut == std::string_view::npos || (name != "x" && name != "y"))
                continue;
            replace(token.text.substr(cut + 1), token.offset + cut + 1,
                    name == "x" ? m_factors.x : m_factors.y);
        }
    }

    void replace(std::string_view literal, std::size_t offset, double factor)
    {
        const std::optional<std::string> text = scaled(literal, factor);
        if (!text)
            return;
        m_text.append(m_line.substr(m_done, offset - m_done)).append(*text);
        m_done = offset + literal.size();
    }

    std::vector<Token> m_tokens;
    const Factors& m_factors;
    std::string_view m_line;
    std::size_t m_done = 0; ///< how much of it stands in the text
    std::string m_text;
};

} // namespace

std::string scaleFlybyScriptCoords(const std::string& text, double sx, double sy)
{
    const Factors factors{sx, sy};
    std::string out;
    bool first = true;
    for (const std::string_view line : script::linesOf(text)) {
        if (!first)
            out += '\n';
        first = false;
        out += LineScaler(line, factors).run();
    }
    return out;
}

} // namespace zre
