#include "engine/flight/interpreter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <utility>

#include "engine/flight/script_text.h"

namespace zre::script {

static constexpr double kLeastZoom = 0.05;
static constexpr double kMostZoom = 32.0;
static constexpr double kMostAmp = 20.0;
static constexpr int kMostPeriod = 600;
static constexpr int kMostFps = 240;
static constexpr double kTwoPi = 2.0 * std::numbers::pi;

/// `value` within the bounds; a NaN becomes the lower one.
static double bound(double value, double low, double high)
{
    return value >= low ? std::min(value, high) : low;
}

/// A command of numbers only.
struct Interpreter::CommandRow
{
    const char* name;
    unsigned least; ///< how many arguments it takes
    unsigned most;
    void (Interpreter::*run)(const Values&);
};

/// Where a moving command leads; what is not given stays.
struct Interpreter::Move
{
    const char* name;
    std::optional<double> x;
    std::optional<double> y;
    std::optional<double> zoom;
    std::optional<double> warp;
    std::optional<double> roll;
};

const Interpreter::CommandRow* Interpreter::findCommand(const std::string& name)
{
    using I = Interpreter;
    static constexpr std::array kCommands{
        CommandRow{"moveto", 3, 4, &I::moveTo},    CommandRow{"flyto", 4, 5, &I::flyTo},
        CommandRow{"flyin", 5, 6, &I::flyIn},      CommandRow{"zoomto", 2, 3, &I::zoomTo},
        CommandRow{"rotate", 2, 2, &I::rotate},    CommandRow{"hold", 1, 1, &I::hold},
        CommandRow{"zoom", 1, 1, &I::setZoom},     CommandRow{"zoomd", 1, 1, &I::addZoom},
        CommandRow{"pan", 2, 2, &I::pan},          CommandRow{"panl", 1, 1, &I::panLeft},
        CommandRow{"panr", 1, 1, &I::panRight},    CommandRow{"pant", 1, 1, &I::panTop},
        CommandRow{"panb", 1, 1, &I::panBottom},   CommandRow{"roll", 1, 1, &I::setRoll},
        CommandRow{"setfps", 1, 1, &I::setFps},    CommandRow{"videofps", 1, 1, &I::setVideoFps},
        CommandRow{"sway", 1, 1, &I::setSway},     CommandRow{"amp", 1, 1, &I::setAmp},
        CommandRow{"period", 1, 1, &I::setPeriod},
    };
    const auto row = std::find_if(kCommands.begin(), kCommands.end(),
                                  [&](const CommandRow& r) { return name == r.name; });
    return row == kCommands.end() ? nullptr : &*row;
}

Interpreter::Interpreter(const Setting& setting, const std::vector<ZRFlybySrcRef>& refs,
                         std::vector<ZRFlybyError>& errors)
    : m_setting(setting)
    , m_refs(refs)
    , m_errors(errors)
    , m_lookup([this](const std::string& name, double& value) { return variable(name, value); })
    , m_pose{setting.srcW / 2.0, setting.srcH / 2.0}
    , m_videoFps(setting.fps > 0 ? setting.fps : 24)
{
}

/// How many statements one counts for: a long one takes the time of many.
static std::size_t costOf(const Cmd& cmd)
{
    constexpr std::size_t kUsualLength = 64;
    std::size_t length = cmd.name.size() + cmd.varName.size() + cmd.text.size();
    for (const std::string_view word : cmd.args)
        length += word.size();
    return 1 + length / kUsualLength;
}

void Interpreter::run(const Program& program)
{
    std::size_t executed = 0;
    for (const Stretch& stretch : program.stretches)
        for (int round = 0; round < stretch.times; ++round)
            for (std::size_t i = stretch.begin; i < stretch.end; ++i) {
                const Cmd& cmd = program.statements[i];
                m_line = cmd.line;
                const auto row = static_cast<std::size_t>(cmd.line) - 1;
                m_source = row < m_refs.size() ? m_refs[row] : ZRFlybySrcRef{-1, cmd.line};
                executed += costOf(cmd);
                if (executed > ZRFlybyScript::kMostStatements)
                    m_ended = !fail("Script produced too many frames.");
                if (!m_ended)
                    execute(cmd);
                if (m_ended)
                    return;
            }
}

bool Interpreter::fail(std::string message)
{
    // Every round of a block tells its errors anew; past so many only another kind is news.
    if (m_errors.size() < ZRFlybyScript::kMostAlike || m_told.emplace(m_line, message).second)
        m_errors.push_back({m_line, std::move(message)});
    return false;
}

void Interpreter::execute(const Cmd& cmd)
{
    if (cmd.isAssign)
        return assign(cmd);
    if (const CommandRow* row = findCommand(cmd.name)) {
        Values values;
        if (argumentsOf(cmd, *row, values))
            (this->*row->run)(values);
    } else if (cmd.name == "update") {
        update(cmd);
    } else if (cmd.name == "reset" || cmd.name == "home") {
        reset();
    } else if (cmd.name == "ease") {
        setEase(cmd);
    } else if (cmd.name == "motion") {
        motion(cmd);
    } else if (cmd.name == "write" || cmd.name == "writeln") {
        checkText(cmd);
    } else if (cmd.name == "scene" || cmd.name == "render" || cmd.name == "stars") {
        fail("'" + cmd.name +
             "' belongs to a 3D flight path. Add mode=3d to the path_start line to compile this "
             "as one.");
    } else {
        fail("Unknown command '" + cmd.name + "'.");
    }
}

bool Interpreter::argumentsOf(const Cmd& cmd, const CommandRow& row, Values& values)
{
    const std::size_t count = cmd.args.size();
    if (count < row.least || count > row.most) {
        std::string wanted = std::to_string(row.least);
        if (row.most != row.least)
            wanted += " to " + std::to_string(row.most);
        return fail("'" + cmd.name + "' expects " + wanted + " argument(s).");
    }
    values.resize(count);
    for (std::size_t i = 0; i < count; ++i)
        if (!evaluate(cmd.args[i], values[i]))
            return false;
    return true;
}

bool Interpreter::evaluate(std::string_view text, double& value)
{
    ZRExpr expression(text, m_lookup);
    value = expression.evaluate();
    return expression.ok() || fail(expression.error());
}

namespace {

struct Reserved
{
    const char* name;
    double (*value)(const Setting& setting, double x, double y, double zoom);
};

} // namespace

static constexpr std::array kReserved{
    Reserved{"w", [](const Setting& s, double, double, double) { return double(s.srcW); }},
    Reserved{"width", [](const Setting& s, double, double, double) { return double(s.srcW); }},
    Reserved{"h", [](const Setting& s, double, double, double) { return double(s.srcH); }},
    Reserved{"height", [](const Setting& s, double, double, double) { return double(s.srcH); }},
    Reserved{"curx", [](const Setting&, double x, double, double) { return x; }},
    Reserved{"cury", [](const Setting&, double, double y, double) { return y; }},
    Reserved{"zoom", [](const Setting&, double, double, double zoom) { return zoom; }},
    Reserved{"centerx", [](const Setting& s, double, double, double) { return s.srcW / 2.0; }},
    Reserved{"centery", [](const Setting& s, double, double, double) { return s.srcH / 2.0; }},
    Reserved{"vw", [](const Setting& s, double, double, double zoom) { return s.srcW / zoom; }},
    Reserved{"vh", [](const Setting& s, double, double, double zoom) { return s.srcH / zoom; }},
};

static const Reserved* findReserved(const std::string& name)
{
    const auto row = std::find_if(kReserved.begin(), kReserved.end(),
                                  [&](const Reserved& r) { return name == r.name; });
    return row == kReserved.end() ? nullptr : &*row;
}

bool Interpreter::variable(const std::string& name, double& value) const
{
    if (const Reserved* reserved = findReserved(name)) {
        value = reserved->value(m_setting, m_pose.x, m_pose.y, m_pose.zoom);
        return true;
    }
    const auto found = m_variables.find(name);
    if (found == m_variables.end())
        return false;
    value = found->second;
    return true;
}

static bool isVariableName(const std::string& name)
{
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || c == '_'; };
    return !name.empty() && isLetter(name.front()) &&
           std::all_of(name.begin(), name.end(),
                       [&](char c) { return isLetter(c) || (c >= '0' && c <= '9'); });
}

void Interpreter::assign(const Cmd& cmd)
{
    if (cmd.varName.empty() || cmd.varName.front() != '$') {
        fail("Malformed assignment (expected $name = value).");
        return;
    }
    const std::string name = lowerCase(cmd.varName.substr(1));
    if (!isVariableName(name)) {
        fail("Invalid variable name '" + name + "'.");
        return;
    }
    if (findReserved(name)) {
        fail("'$" + name + "' is a reserved variable; it cannot be assigned.");
        return;
    }
    if (cmd.text.empty()) {
        fail("Assignment has no value to the right of '='.");
        return;
    }
    double value = 0.0;
    if (evaluate(cmd.text, value))
        m_variables[name] = value;
}

void Interpreter::checkText(const Cmd& cmd)
{
    const std::string_view word = trimmed(cmd.text);
    double value = 0.0;
    if (!word.empty() && word.front() == '$' && word.find_first_of(" \t") == std::string_view::npos)
        evaluate(word, value);
}

void Interpreter::update(const Cmd& cmd)
{
    if (!cmd.args.empty())
        fail("'update' takes no arguments.");
    else
        emitFrame();
}

void Interpreter::reset()
{
    m_pose = Pose{m_setting.srcW / 2.0, m_setting.srcH / 2.0};
    clampPosition();
}

void Interpreter::setEase(const Cmd& cmd)
{
    static constexpr std::array kWords{"linear", "in", "out", "inout"};
    if (cmd.args.size() != 1) {
        fail("'ease' expects 1 argument(s).");
        return;
    }
    const auto word = std::find(kWords.begin(), kWords.end(), lowerCase(cmd.args.front()));
    if (word == kWords.end())
        fail("'ease' must be linear, in, out, or inout.");
    else
        m_ease = static_cast<Ease>(word - kWords.begin());
}

void Interpreter::motion(const Cmd& cmd)
{
    if (cmd.args.empty() || cmd.args.size() > 3) {
        fail("'motion' expects 1 to 3 arguments: <amp> [<period>] [<sway>].");
        return;
    }
    Values values(cmd.args.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        if (!evaluate(cmd.args[i], values[i]))
            return;
    setAmp({values[0]});
    if (values.size() > 1)
        setPeriod({values[1]});
    if (values.size() > 2)
        setSway({values[2]});
}

static std::optional<double> given(const std::vector<double>& values, std::size_t index)
{
    return index < values.size() ? std::optional(values[index]) : std::nullopt;
}

void Interpreter::moveTo(const Values& v)
{
    step({"moveto", v[0], v[1], {}, {}, given(v, 3)}, v[2]);
}

void Interpreter::flyTo(const Values& v)
{
    step({"flyto", v[0], v[1], {}, v[3] / 100.0, given(v, 4)}, v[2]);
}

void Interpreter::flyIn(const Values& v)
{
    const std::size_t frames = m_frames.size();
    const double zoom = bound(v[3], kLeastZoom, kMostZoom);
    step({"flyin", v[0], v[1], zoom, v[4] / 100.0, given(v, 5)}, v[2]);
    if (m_frames.size() > frames) { // the next command starts from the target itself
        m_pose.x = v[0];
        m_pose.y = v[1];
    }
}

void Interpreter::zoomTo(const Values& v)
{
    step({"zoomto", {}, {}, bound(v[0], kLeastZoom, kMostZoom), {}, given(v, 2)}, v[1]);
}

void Interpreter::rotate(const Values& v)
{
    step({"rotate", {}, {}, {}, {}, m_pose.roll + v[0]}, v[1]);
}

void Interpreter::step(const Move& move, double frames)
{
    const int count = rounded(frames);
    if (count < 1) {
        fail(std::string("'") + move.name + "' steps must be >= 1.");
        return;
    }
    const Pose start = m_pose;
    const auto between = [](double from, const std::optional<double>& to, double e, double& out) {
        if (to)
            out = from + (*to - from) * e;
    };
    for (int i = 1; i <= count; ++i) {
        const double e = eased(static_cast<double>(i) / count);
        between(start.x, move.x, e, m_pose.x);
        between(start.y, move.y, e, m_pose.y);
        between(start.warp, move.warp, e, m_pose.warp);
        between(start.roll, move.roll, e, m_pose.roll);
        if (move.zoom)
            m_pose.zoom = start.zoom * std::pow(*move.zoom / start.zoom, e);
        if (!emitFrame())
            return;
    }
    m_pose.zoom = move.zoom.value_or(m_pose.zoom);
    m_pose.warp = move.warp.value_or(m_pose.warp);
    m_pose.roll = move.roll.value_or(m_pose.roll);
}

void Interpreter::hold(const Values& v)
{
    const int count = rounded(v[0]);
    if (count < 0)
        fail("'hold' frames must be >= 0.");
    for (int i = 0; i < count && emitFrame(); ++i)
        ;
}

void Interpreter::setZoom(const Values& v)
{
    m_pose.zoom = bound(v[0], kLeastZoom, kMostZoom);
    clampPosition();
}

void Interpreter::addZoom(const Values& v)
{
    setZoom({m_pose.zoom + v[0]});
}

void Interpreter::shift(double dx, double dy)
{
    m_pose.x += dx / m_pose.zoom;
    m_pose.y += dy / m_pose.zoom;
    clampPosition();
}

void Interpreter::pan(const Values& v)
{
    shift(v[0], v[1]);
}

void Interpreter::panLeft(const Values& v)
{
    shift(-v[0], 0.0);
}

void Interpreter::panRight(const Values& v)
{
    shift(v[0], 0.0);
}

void Interpreter::panTop(const Values& v)
{
    shift(0.0, -v[0]);
}

void Interpreter::panBottom(const Values& v)
{
    shift(0.0, v[0]);
}

void Interpreter::setRoll(const Values& v)
{
    m_pose.roll = v[0];
}

void Interpreter::setFps(const Values& v)
{
    const int fps = rounded(v[0]);
    if (fps < 1 || fps > kMostFps)
        fail("'setfps' must be between 1 and 240.");
    else
        m_setFps = fps;
}

void Interpreter::setVideoFps(const Values& v)
{
    const int fps = rounded(v[0]);
    if (fps < 1 || fps > kMostFps)
        fail("'videofps' must be between 1 and 240.");
    else
        m_videoFps = fps;
}

void Interpreter::setSway(const Values& v)
{
    m_requested.sway = v[0];
}

void Interpreter::setAmp(const Values& v)
{
    m_requested.amp = v[0] >= 0.0 ? std::min(v[0], kMostAmp) : -1.0;
}

void Interpreter::setPeriod(const Values& v)
{
    const int period = rounded(v[0]);
    m_requested.period = period < 2 ? -1 : std::min(period, kMostPeriod);
}

double Interpreter::eased(double t) const
{
    t = bound(t, 0.0, 1.0);
    switch (m_ease) {
    case Ease::Linear:
        return t;
    case Ease::In:
        return t * t;
    case Ease::Out:
        return t * (2.0 - t);
    case Ease::InOut:
        break;
    }
    return t < 0.5 ? 2.0 * t * t : 1.0 - 2.0 * (1.0 - t) * (1.0 - t);
}

static double clampedCentre(double centre, int view, int size, double zoom)
{
    const double extent = view > 0 && view <= size ? view : size;
    const double half = extent / zoom / 2.0;
    return half >= size / 2.0 ? size / 2.0 : bound(centre, half, size - half);
}

void Interpreter::clampPosition()
{
    m_pose.x = clampedCentre(m_pose.x, m_setting.viewW, m_setting.srcW, m_pose.zoom);
    m_pose.y = clampedCentre(m_pose.y, m_setting.viewH, m_setting.srcH, m_pose.zoom);
}

double Interpreter::periodInUse() const
{
    double period = m_active.period >= 2 ? m_active.period : std::max(2, m_setting.defaultPeriod);
    if (m_setFps >= 1)
        period *= static_cast<double>(m_videoFps) / m_setFps;
    return std::max(period, 2.0);
}

/// False when the script has become too long.
bool Interpreter::emitFrame()
{
    if (m_frames.size() >= ZRFlybyScript::kMostFrames) {
        m_ended = true;
        return fail("Script produced too many frames.");
    }
    clampPosition();
    m_active.period = m_requested.period;
    const double step = kTwoPi / periodInUse();
    // A swing under way is finished first, so that the wiggle never jumps.
    const bool crossing =
        step > m_phase || (m_phase >= std::numbers::pi && std::numbers::pi + step > m_phase);
    if (crossing) {
        m_active.sway = m_requested.sway;
        m_active.amp = m_requested.amp;
    }
    m_frames.push_back({m_pose.x, m_pose.y, m_pose.zoom, m_pose.warp, m_pose.roll, m_active.sway,
                        m_active.amp, m_active.period, m_phase, m_videoFps, m_source.waypoint,
                        m_source.line});
    m_phase += step;
    if (m_phase >= kTwoPi)
        m_phase -= kTwoPi;
    return true;
}

static bool isLoop(const FlybyCamera& first, const FlybyCamera& last)
{
    return std::abs(last.cx - first.cx) < 1.0 && std::abs(last.cy - first.cy) < 1.0 &&
           std::abs(last.zoom - first.zoom) < 0.01 && std::abs(last.warp - first.warp) < 0.01 &&
           std::abs(last.roll - first.roll) < 0.1;
}

void Interpreter::closeLoop()
{
    if (m_ended || m_setting.loopAmp < 0.0 || m_frames.size() < 2 ||
        !isLoop(m_frames.front(), m_frames.back()))
        return;
    if (const double amp = m_active.amp >= 0.0 ? m_active.amp : m_setting.loopAmp; !(amp > 0.0))
        return;
    const double period = periodInUse();
    const int most = period > 2.0 ? saturated(period) + 1 : 3;
    for (int count = 0; count <= most; ++count) {
        const double step = period > 2.0 ? kTwoPi / period : std::numbers::pi;
        if (step > m_phase || !emitFrame())
            return;
    }
}

} // namespace zre::script
