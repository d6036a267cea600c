#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/flight/flyby_camera.h"

namespace zre {

/// What is wrong with a script; line 0 for what belongs to no line.
struct ZRFlybyError
{
    std::int32_t line = 0;
    std::string message;

    bool operator==(const ZRFlybyError&) const = default;
};

/// Where a line of an expanded script comes from.
struct ZRFlybySrcRef
{
    std::int32_t waypoint = -1; ///< from 1, the start being the first; -1 outside a block
    std::int32_t line = 0;      ///< source line, from 1

    bool operator==(const ZRFlybySrcRef&) const = default;
};

struct ZRFlybyCompiled
{
    std::vector<FlybyCamera> frames;
    bool ok = false; ///< no error was found
};

/// The language of two-dimensional flybys: one command a line, one camera a frame.
///
/// Compiling is a pure function of its arguments. Errors are data: they are collected, the bad
/// statement is skipped, and the rest goes on. The programs run under the numeric locale "C", but
/// nothing here depends on it.
struct ZRFlybyScript
{
    /// Frames or statements beyond which a compile ends; one of more than 64 characters
    /// counts for several.
    static constexpr std::size_t kMostFrames = 1000000;
    static constexpr std::size_t kMostStatements = 1000000;
    /// Errors beyond which one that its line has shown before is not collected again.
    static constexpr std::size_t kMostAlike = 1000;

    /// Compiles a script for a source of `srcW` by `srcH` pixels.
    ///
    /// Units:   `fps` (24 if not positive) is the output rate until the script sets one;
    ///          `defaultPeriod` the wiggle period in frames where the script sets none; `loopAmp`
    ///          the amplitude of frames that inherit theirs, for closing the wiggle of a loop, or
    ///          negative for no closing; `viewW` and `viewH` the frame in source pixels, the whole
    ///          image where not positive or too large.
    /// Errors:  `errors` is cleared first and holds all found. Frames stay beside errors.
    static ZRFlybyCompiled Compile(const std::string& text, int srcW, int srcH, int fps,
                                   std::vector<ZRFlybyError>& errors, int defaultPeriod,
                                   double loopAmp, int viewW, int viewH);

    /// Compiles for the errors alone; `frameCount` and `seconds` may be null.
    static bool Validate(const std::string& text, int srcW, int srcH, int fps,
                         std::vector<ZRFlybyError>& errors, int* frameCount, double* seconds,
                         int viewW, int viewH);

    /// Rewrites the lines of a drawn path as commands; a text without any stays as it is.
    ///
    /// `refs` (may be null) gets one entry a line written. Errors: appended with their source
    /// lines; then the result is false and `out` the text as it came.
    static bool ExpandGraphicBlock(const std::string& in, std::string& out,
                                   std::vector<ZRFlybyError>& errors,
                                   std::vector<ZRFlybySrcRef>* refs);
};

/// The push-in loop that stands in for an empty or failed script, `frames` (at least 1) long.
void makeSimpleFlyby(int frames, int w, int h, std::vector<FlybyCamera>& out);

/// Rewrites the literal coordinates of a script for an image `sx` and `sy` times as large;
/// expressions, variables, comments and layout stay. Results are whole numbers.
std::string scaleFlybyScriptCoords(const std::string& text, double sx, double sy);

} // namespace zre
