#include "engine/flight/flyby_script.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "engine/flight/interpreter.h"
#include "engine/flight/statements.h"

namespace zre {

ZRFlybyCompiled ZRFlybyScript::Compile(const std::string& text, int srcW, int srcH, int fps,
                                       std::vector<ZRFlybyError>& errors, int defaultPeriod,
                                       double loopAmp, int viewW, int viewH)
{
    errors.clear();
    ZRFlybyCompiled compiled;
    if (srcW <= 0 || srcH <= 0) {
        errors.push_back({0, "Internal: invalid source dimensions."});
        return compiled;
    }
    std::string expanded;
    std::vector<ZRFlybySrcRef> refs;
    if (!ExpandGraphicBlock(text, expanded, errors, &refs))
        return compiled;
    const script::Setting setting{srcW, srcH, fps, defaultPeriod, loopAmp, viewW, viewH};
    script::Interpreter interpreter(setting, refs, errors);
    interpreter.run(script::parseProgram(expanded, errors));
    interpreter.closeLoop();
    compiled.frames = std::move(interpreter.frames());
    compiled.ok = errors.empty();
    return compiled;
}

bool ZRFlybyScript::Validate(const std::string& text, int srcW, int srcH, int fps,
                             std::vector<ZRFlybyError>& errors, int* frameCount, double* seconds,
                             int viewW, int viewH)
{
    constexpr int kPeriod = 12;
    constexpr double kNoLoop = -1.0;
    const ZRFlybyCompiled compiled =
        Compile(text, srcW, srcH, fps, errors, kPeriod, kNoLoop, viewW, viewH);
    if (frameCount)
        *frameCount = static_cast<int>(compiled.frames.size());
    if (seconds) {
        *seconds = 0.0;
        for (const FlybyCamera& frame : compiled.frames)
            *seconds += 1.0 / (frame.fps < 1 ? 24 : frame.fps);
    }
    return compiled.ok;
}

void makeSimpleFlyby(int frames, int w, int h, std::vector<FlybyCamera>& out)
{
    const int count = std::max(frames, 1);
    const double radius = 0.06 * std::min(w, h);
    out.clear();
    out.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / count;
        const double push = 0.5 - 0.5 * std::cos(angle);
        FlybyCamera camera;
        camera.cx = w / 2.0 + radius * std::cos(angle);
        camera.cy = h / 2.0 + radius * std::sin(angle);
        camera.zoom = 1.0 + 0.7 * push;
        camera.warp = 0.1 * push;
        camera.phase = 3.0 * angle;
        out.push_back(camera);
    }
}

} // namespace zre
