// Flyby scripts: any text compiles without harm and to frames that can be drawn.

#include <cstdint>
#include <cstdlib>
#include <string>

#include "engine/flight/flyby_script.h"

static void require(bool holds)
{
    if (!holds)
        std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::vector<zre::ZRFlybyError> errors;
    const zre::ZRFlybyCompiled compiled =
        zre::ZRFlybyScript::Compile(text, 640, 480, 24, errors, 12, 3.0, 320, 200);
    require(compiled.ok == errors.empty());
    require(compiled.frames.size() <= zre::ZRFlybyScript::kMostFrames);
    for (const zre::FlybyCamera& frame : compiled.frames) {
        require(frame.cx >= 0.0 && frame.cx <= 640.0 && frame.cy >= 0.0 && frame.cy <= 480.0);
        require(frame.zoom > 0.0 && frame.fps >= 1 && frame.phase >= 0.0);
    }
    return 0;
}
