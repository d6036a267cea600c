// Flyby scripts: any text compiles without harm, every line written by an expansion is accounted
// for, an expanded text is plain, and coordinates scaled by one settle at once.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "engine/flight/flyby_script.h"

static void require(bool holds)
{
    if (!holds)
        std::abort();
}

static void checkExpansion(const std::string& text)
{
    std::string out;
    std::vector<zre::ZRFlybyError> errors;
    std::vector<zre::ZRFlybySrcRef> refs;
    if (!zre::ZRFlybyScript::ExpandGraphicBlock(text, out, errors, &refs)) {
        require(!errors.empty() && out == text && refs.empty());
        return;
    }
    const auto newlines = static_cast<std::size_t>(std::count(out.begin(), out.end(), '\n'));
    require(refs.size() == (out == text ? newlines + 1 : newlines) || refs.size() == newlines);
    std::string again;
    require(zre::ZRFlybyScript::ExpandGraphicBlock(out, again, errors, nullptr) && again == out);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    checkExpansion(text);
    std::vector<zre::ZRFlybyError> errors;
    const zre::ZRFlybyCompiled compiled =
        zre::ZRFlybyScript::Compile(text, 640, 480, 24, errors, 12, 3.0, 320, 200);
    require(compiled.ok == errors.empty());
    require(compiled.frames.size() <= zre::ZRFlybyScript::kMostFrames);
    for (const zre::FlybyCamera& frame : compiled.frames) {
        require(frame.cx >= 0.0 && frame.cx <= 640.0 && frame.cy >= 0.0 && frame.cy <= 480.0);
        require(frame.zoom > 0.0 && frame.fps >= 1 && frame.phase >= 0.0);
    }
    const std::string once = zre::scaleFlybyScriptCoords(text, 1.0, 1.0);
    require(zre::scaleFlybyScriptCoords(once, 1.0, 1.0) == once);
    return 0;
}
