// Drawn paths: any text expands without harm, every line written is accounted for, and what was
// written is a plain script of the same flight.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "engine/flight/flyby_script.h"

using zre::ZRFlybyScript;

static void require(bool holds)
{
    if (!holds)
        std::abort();
}

static zre::ZRFlybyCompiled compiled(const std::string& text)
{
    std::vector<zre::ZRFlybyError> errors;
    return ZRFlybyScript::Compile(text, 640, 480, 24, errors, 12, 3.0, 320, 200);
}

/// Bit for bit, but for the places in the text.
static bool isSameView(const zre::FlybyCamera& a, const zre::FlybyCamera& b)
{
    const auto same = [](double x, double y) { return std::memcmp(&x, &y, sizeof x) == 0; };
    return same(a.cx, b.cx) && same(a.cy, b.cy) && same(a.zoom, b.zoom) && same(a.warp, b.warp) &&
           same(a.roll, b.roll) && same(a.sway, b.sway) && same(a.amp, b.amp) &&
           a.period == b.period && same(a.phase, b.phase) && a.fps == b.fps;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto lines = 1 + std::count(text.begin(), text.end(), '\n');
    std::string out;
    std::vector<zre::ZRFlybyError> errors;
    std::vector<zre::ZRFlybySrcRef> refs;
    const bool expands = ZRFlybyScript::ExpandGraphicBlock(text, out, errors, &refs);
    require(expands == errors.empty());
    for (const zre::ZRFlybyError& error : errors)
        require(error.line >= 1 && error.line <= lines && !error.message.empty());
    if (!expands) {
        require(out == text && refs.empty());
        return 0;
    }
    const auto newlines = static_cast<std::size_t>(std::count(out.begin(), out.end(), '\n'));
    require(refs.size() == newlines || (out == text && refs.size() == newlines + 1));
    for (const zre::ZRFlybySrcRef& ref : refs)
        require(ref.line >= 1 && ref.line <= lines && (ref.waypoint == -1 || ref.waypoint >= 1));
    std::string again;
    require(ZRFlybyScript::ExpandGraphicBlock(out, again, errors, nullptr) && again == out);
    const zre::ZRFlybyCompiled first = compiled(text);
    const zre::ZRFlybyCompiled second = compiled(out);
    require(first.ok == second.ok);
    require(std::equal(first.frames.begin(), first.frames.end(), second.frames.begin(),
                       second.frames.end(), isSameView));
    return 0;
}
