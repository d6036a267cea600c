#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "engine/flight/block_words.h"
#include "engine/flight/flyby_script.h"
#include "engine/flight/script_text.h"

namespace zre {

using script::fixedPoint;
using script::general;
using script::kEases;
using script::kMoves;
using script::kStartNames;
using script::kWaypointNames;
using script::Token;

namespace {

constexpr double kLeastZoom = 0.05;
constexpr double kMostZoom = 32.0;
constexpr int kMostFps = 240;

template <std::size_t N>
bool contains(const std::array<std::string_view, N>& words, std::string_view word)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

std::string quoted(std::string_view text)
{
    std::string out(1, '\'');
    return out.append(text).append(1, '\'');
}

/// The name=value parameters of one block line; what is wrong with them goes to the errors.
class BlockLine
{
public:
    BlockLine(int line, std::vector<ZRFlybyError>& errors)
        : m_line(line)
        , m_errors(errors)
    {
    }

    template <class IsName>
    void read(const std::vector<Token>& tokens, const IsName& isName)
    {
        for (std::size_t i = 1; i < tokens.size(); ++i) {
            const std::string_view token = tokens[i].text;
            const std::size_t cut = token.find('=');
            if (cut == std::string_view::npos || cut == 0) {
                fail(quoted(token) + " is not a name=value parameter.");
                continue;
            }
            const std::string name = script::lowerCase(token.substr(0, cut));
            if (isName(name))
                m_values[name] = token.substr(cut + 1);
            else
                fail("Unknown parameter " + quoted(name) + ".");
        }
    }

    bool has(const std::string& name) const { return m_values.count(name) > 0; }
    std::size_t errorCount() const { return m_errors.size(); }
    void fail(std::string message) { m_errors.push_back({m_line, std::move(message)}); }

    /// A value that may be absent. `as` names it in errors.
    std::optional<double> number(const std::string& name, const std::string& as = {})
    {
        if (!has(name))
            return std::nullopt;
        const std::optional<double> value = script::wholeTextNumber(m_values[name]);
        if (!value)
            fail(quoted(as.empty() ? name : as) + " must be a number.");
        return value;
    }

    std::optional<int> whole(const std::string& name)
    {
        if (!has(name))
            return std::nullopt;
        const std::optional<int> value = script::wholeTextInteger(m_values[name]);
        if (!value)
            fail(quoted(name) + " must be a whole number.");
        return value;
    }

    double neededNumber(const std::string& name)
    {
        return need(name) ? number(name).value_or(0.0) : 0.0;
    }

    int neededWhole(const std::string& name) { return need(name) ? whole(name).value_or(0) : 0; }

    template <std::size_t N>
    std::string neededWord(const std::string& name, const std::array<std::string_view, N>& words,
                           const char* choice)
    {
        if (!need(name))
            return {};
        std::string word = script::lowerCase(m_values[name]);
        if (!contains(words, word))
            fail(quoted(name) + " must be " + choice + ".");
        return word;
    }

    bool need(const std::string& name)
    {
        if (!has(name))
            fail("Missing " + quoted(name) + ".");
        return has(name);
    }

    std::string neededEase() { return neededWord("ease", kEases, "linear, in, out, or inout"); }

    void checkZoom(double zoom)
    {
        if (!(zoom >= kLeastZoom && zoom <= kMostZoom))
            fail("'zoom' must be 0.05 to 32.");
    }

private:
    int m_line;
    std::vector<ZRFlybyError>& m_errors;
    std::map<std::string, std::string_view> m_values;
};

/// Truncated after a half is added: -0.7 gives 0.
std::string whole(double value)
{
    return std::to_string(script::saturated(value + 0.5));
}

std::string optionalLine(const char* command, const std::optional<double>& value)
{
    return value ? std::string(command).append(": ").append(general(*value, 6)).append("\n")
                 : std::string();
}

std::string optionalWholeLine(const char* command, const std::optional<double>& value)
{
    return value ? std::string(command).append(": ").append(whole(*value)).append("\n")
                 : std::string();
}

double neededStartZoom(BlockLine& line)
{
    if (!line.need("zoom"))
        return 1.0;
    const double zoom = line.number("zoom").value_or(1.0);
    line.checkZoom(zoom);
    return zoom;
}

std::string startCommands(BlockLine& line)
{
    const std::optional<int> fps = line.whole("fps");
    if (fps && (*fps < 1 || *fps > kMostFps))
        line.fail("'fps' must be 1 to 240.");
    const double x = line.neededNumber("x");
    const double y = line.neededNumber("y");
    const double zoom = neededStartZoom(line);
    const std::string ease = line.neededEase();
    const std::optional<double> roll = line.number("roll");
    const std::optional<double> sway = line.number("sway");
    const std::optional<double> amp = line.number("amp");
    const std::optional<int> period = line.whole("period");
    const std::optional<int> hold = line.whole("hold");

    std::string out;
    if (fps)
        out += "videofps: " + std::to_string(*fps) + '\n';
    out += optionalLine("sway", sway) + optionalLine("amp", amp);
    if (period)
        out += "period: " + std::to_string(*period) + '\n';
    out += optionalLine("roll", roll) + "ease: " + ease + '\n';
    out += "zoom: " + fixedPoint(zoom, 3) + '\n';
    out += "moveto: " + whole(x) + ' ' + whole(y) + " 1\n";
    if (hold && *hold >= 1)
        out += "hold: " + std::to_string(*hold) + '\n';
    return out;
}

/// The wiggle and timing that a waypoint sets before or after its move.
struct Timing
{
    std::optional<double> sway;
    std::optional<double> amp;
    std::optional<double> period;
    std::optional<double> fps;

    std::string commands() const
    {
        return optionalWholeLine("setfps", fps) + optionalLine("sway", sway) +
               optionalLine("amp", amp) + optionalWholeLine("period", period);
    }
};

Timing timing(BlockLine& line, const std::string& side)
{
    return {line.number("sway_" + side), line.number("amp_" + side), line.number("period_" + side),
            line.number("fps_" + side)};
}

struct Waypoint
{
    double x = 0.0;
    double y = 0.0;
    std::string move;
    int frames = 1;
    double zoom = 1.0;
    double warp = 0.0;
    std::string ease;
    int hold = 0;
    std::optional<double> roll;
};

double neededWarp(BlockLine& line)
{
    if (!line.has("warp") && line.has("away"))
        return line.number("away", "warp").value_or(0.0);
    return line.neededNumber("warp");
}

void checkRanges(const Waypoint& point, BlockLine& line)
{
    if (point.frames < 1)
        line.fail("'frames' must be >= 1.");
    line.checkZoom(point.zoom);
    if (!(point.warp >= 0.0 && point.warp <= 100.0))
        line.fail("'away' must be 0 to 100.");
    if (point.hold < 0)
        line.fail("'hold' must be >= 0.");
}

Waypoint readWaypoint(BlockLine& line)
{
    const std::size_t before = line.errorCount();
    Waypoint point;
    point.x = line.neededNumber("x");
    point.y = line.neededNumber("y");
    point.move = line.neededWord("move", kMoves, "moveto, flyto, flyin, zoomto, or stay");
    point.frames = line.neededWhole("frames");
    point.zoom = line.neededNumber("zoom");
    point.warp = neededWarp(line);
    point.ease = line.neededEase();
    point.hold = line.neededWhole("hold");
    if (line.errorCount() == before)
        checkRanges(point, line);
    point.roll = line.number("roll");
    return point;
}

std::string moveCommand(const Waypoint& point)
{
    const std::string frames = std::to_string(point.frames);
    const std::string place = whole(point.x) + ' ' + whole(point.y) + ' ' + frames;
    std::string roll;
    if (point.roll)
        roll.append(" ").append(general(*point.roll, 6));
    roll.append("\n");
    const std::string warp = fixedPoint(point.warp, 0);
    const std::string zoom = fixedPoint(point.zoom, 3);
    if (point.move == "moveto")
        return "moveto: " + place + roll;
    if (point.move == "flyto")
        return "flyto: " + place + ' ' + warp + roll;
    if (point.move == "flyin")
        return "flyin: " + place + ' ' + zoom + ' ' + warp + roll;
    if (point.move == "zoomto")
        return "zoomto: " + zoom + ' ' + frames + roll;
    return optionalLine("roll", point.roll) + "hold: " + frames + '\n';
}

std::string waypointCommands(BlockLine& line)
{
    const Waypoint point = readWaypoint(line);
    const Timing before = timing(line, "before");
    const Timing after = timing(line, "after");
    std::string out =
        before.commands() + "ease: " + point.ease + '\n' + moveCommand(point) + after.commands();
    if (point.hold > 0)
        out += "hold: " + std::to_string(point.hold) + '\n';
    return out;
}

/// The lines of a script, and where its block lies.
struct Layout
{
    struct Keyword
    {
        int count = 0;
        std::size_t first = 0;
    };

    std::vector<std::string_view> lines;
    std::vector<std::string> words; ///< the first of each line, in lower case
    std::size_t firstCode = 0;      ///< the first line with a word
    Keyword start;
    Keyword begin;
    Keyword end;
    bool plain = true; ///< no line of a block at all
};

Layout layoutOf(const std::string& text)
{
    Layout layout;
    layout.lines = script::linesOf(text);
    layout.firstCode = layout.lines.size();
    for (std::size_t i = 0; i < layout.lines.size(); ++i) {
        layout.words.push_back(script::lowerCase(script::firstTokenOf(layout.lines[i])));
        const std::string& word = layout.words.back();
        if (!word.empty())
            layout.firstCode = std::min(layout.firstCode, i);
        const auto note = [&](const char* keyword, Layout::Keyword& found) {
            if (word != keyword)
                return;
            layout.plain = false;
            if (found.count++ == 0)
                found.first = i;
        };
        note("path_start", layout.start);
        note("path_begin", layout.begin);
        note("path_end", layout.end);
        layout.plain = layout.plain && word != "waypoint";
    }
    return layout;
}

void checkStructure(const Layout& layout, std::vector<ZRFlybyError>& errors)
{
    const auto fail = [&](std::size_t index, const char* message) {
        errors.push_back({static_cast<std::int32_t>(index) + 1, message});
    };
    if (layout.start.count > 1)
        fail(layout.start.first, "Only one 'path_start' is allowed.");
    if (layout.begin.count > 1)
        fail(layout.begin.first, "Only one 'path_begin' is allowed.");
    if (layout.end.count > 1)
        fail(layout.end.first, "Only one 'path_end' is allowed.");
    const bool begins = layout.begin.count > 0;
    const bool ends = layout.end.count > 0;
    if (begins != ends)
        fail(begins ? layout.begin.first : layout.end.first,
             "'path_begin' and 'path_end' must be paired.");
    if (begins && ends && layout.end.first < layout.begin.first)
        fail(layout.end.first, "'path_end' appears before 'path_begin'.");
    if (layout.start.count > 0 && layout.start.first != layout.firstCode)
        fail(layout.firstCode,
             "No code may appear above 'path_start' (it must be the first command).");
}

/// Writes the expanded text and the table of where its lines come from.
class Expansion
{
public:
    Expansion(const Layout& layout, std::vector<ZRFlybyError>& errors)
        : m_layout(layout)
        , m_errors(errors)
    {
    }

    void run()
    {
        for (std::size_t i = 0; i < m_layout.lines.size(); ++i) {
            const std::string& word = m_layout.words[i];
            if (word == "path_start") {
                writePoint(i, 1, &startCommands,
                           [](std::string_view name) { return contains(kStartNames, name); });
            } else if (word == "path_begin") {
                writeBlock();
                i = m_layout.end.first;
            } else if (word == "waypoint") {
                fail(i, "'waypoint' must be inside path_begin/path_end.");
            } else {
                write(std::string(m_layout.lines[i]) + '\n', -1, i);
            }
        }
    }

    std::string text;
    std::vector<ZRFlybySrcRef> refs;

private:
    void writeBlock()
    {
        int number = 1;
        for (std::size_t i = m_layout.begin.first + 1; i < m_layout.end.first; ++i) {
            if (m_layout.words[i].empty())
                continue;
            if (m_layout.words[i] != "waypoint") {
                fail(i, "Only 'waypoint' lines are allowed inside path_begin/path_end.");
                continue;
            }
            writePoint(i, ++number, &waypointCommands,
                       [](std::string_view name) { return contains(kWaypointNames, name); });
        }
    }

    template <class IsName>
    void writePoint(std::size_t index, int number, std::string (*commands)(BlockLine&),
                    const IsName& isName)
    {
        BlockLine line(static_cast<int>(index) + 1, m_errors);
        line.read(script::tokensOf(m_layout.lines[index]), isName);
        write("# Waypoint #" + std::to_string(number) + "\n#\n" + commands(line) + '\n', number,
              index);
    }

    void write(const std::string& piece, int waypoint, std::size_t index)
    {
        text += piece;
        const auto lines = static_cast<std::size_t>(std::count(piece.begin(), piece.end(), '\n'));
        refs.insert(refs.end(), lines, {waypoint, static_cast<std::int32_t>(index) + 1});
    }

    void fail(std::size_t index, const char* message)
    {
        m_errors.push_back({static_cast<std::int32_t>(index) + 1, message});
    }

    const Layout& m_layout;
    std::vector<ZRFlybyError>& m_errors;
};

} // namespace

bool ZRFlybyScript::ExpandGraphicBlock(const std::string& in, std::string& out,
                                       std::vector<ZRFlybyError>& errors,
                                       std::vector<ZRFlybySrcRef>* refs)
{
    const std::size_t before = errors.size();
    const Layout layout = layoutOf(in);
    out = in;
    if (refs)
        refs->clear();
    if (layout.plain) {
        for (std::size_t i = 0; refs && i < layout.lines.size(); ++i)
            refs->push_back({-1, static_cast<std::int32_t>(i) + 1});
        return true;
    }
    checkStructure(layout, errors);
    if (errors.size() != before)
        return false;
    Expansion expansion(layout, errors);
    expansion.run();
    if (errors.size() != before)
        return false;
    out = std::move(expansion.text);
    if (refs)
        *refs = std::move(expansion.refs);
    return true;
}

} // namespace zre
