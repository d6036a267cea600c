#include "engine/flight/flyby_script.h"

#include <cmath>
#include <numbers>

#include <gtest/gtest.h>

namespace {

using zre::FlybyCamera;
using zre::ZRFlybyError;
using zre::ZRFlybyScript;

struct Compiled
{
    std::vector<FlybyCamera> frames;
    std::vector<ZRFlybyError> errors;
    bool ok = false;
};

struct Options
{
    int fps = 24;
    int period = 12;
    double loopAmp = -1.0;
    int viewW = 0;
    int viewH = 0;
};

Compiled compile(const std::string& text, const Options& o)
{
    Compiled result;
    zre::ZRFlybyCompiled compiled = ZRFlybyScript::Compile(text, 6000, 4000, o.fps, result.errors,
                                                           o.period, o.loopAmp, o.viewW, o.viewH);
    result.frames = std::move(compiled.frames);
    result.ok = compiled.ok;
    return result;
}

Compiled compile(const std::string& text)
{
    return compile(text, Options{});
}

TEST(FlybyScript, MessagesAndFrameCounts)
{
    const struct
    {
        std::string text;
        std::size_t frames;
        std::vector<ZRFlybyError> errors;
    } cases[] = {
        {"", 0, {}},
        {"hold 0", 0, {}},
        {"hold -0.4", 0, {}},
        {"hold -1", 0, {{1, "'hold' frames must be >= 0."}}},
        {"hold nan", 0, {}},
        {"hold 2.5", 3, {}},
        {"moveto 1 2 0", 0, {{1, "'moveto' steps must be >= 1."}}},
        {"flyin 1 2 nan 2 5", 0, {{1, "'flyin' steps must be >= 1."}}},
        {"moveto 1 2", 0, {{1, "'moveto' expects 3 to 4 argument(s)."}}},
        {"\nROTATE: 1", 0, {{2, "'rotate' expects 2 argument(s)."}}},
        {"moveto: 1500,1096 2", 2, {}},
        {"update 1", 0, {{1, "'update' takes no arguments."}}},
        {"update # 1", 1, {}},
        {"moveto $v+1 500 40", 0, {{1, "Undefined variable $v"}}},
        {"$v=2\nmoveto $v+1 500 $V*2", 4, {}},
        {"moveto $v + 1 500 40", 0, {{1, "'moveto' expects 3 to 4 argument(s)."}}},
        {"ease bouncy", 0, {{1, "'ease' must be linear, in, out, or inout."}}},
        {"setfps 0", 0, {{1, "'setfps' must be between 1 and 240."}}},
        {"videofps 241", 0, {{1, "'videofps' must be between 1 and 240."}}},
        {"motion", 0, {{1, "'motion' expects 1 to 3 arguments: <amp> [<period>] [<sway>]."}}},
        {"dance 1", 0, {{1, "Unknown command 'dance'."}}},
        {"Stars 5",
         0,
         {{1, "'stars' belongs to a 3D flight path. Add mode=3d to the path_start line to compile "
              "this as one."}}},
        {"$W = 3", 0, {{1, "'$w' is a reserved variable; it cannot be assigned."}}},
        {"$1a = 3", 0, {{1, "Invalid variable name '1a'."}}},
        {"$a b = 3", 0, {{1, "Invalid variable name 'a b'."}}},
        {"$v", 0, {{1, "Assignment has no value to the right of '='."}}},
        {"$=3", 0, {{1, "Invalid variable name ''."}}},
        {"$v = 1/0", 0, {{1, "Division by zero."}}},
        {"write: $undefined", 0, {{1, "Undefined variable $undefined"}}},
        {"write: total $undefined # and more", 0, {}},
        {"writeln $w", 0, {}},
        {"repeat 0\nupdate\nend", 0, {}},
        {"repeat 3\nupdate\nend\nupdate", 4, {}},
        {"repeat 2.5\nupdate\nend", 0, {{1, "'repeat' needs one non-negative integer count."}}},
        {"repeat 2 3\nupdate\nend", 0, {{1, "'repeat' needs one non-negative integer count."}}},
        {"$n=2\nrepeat $n\nupdate\nend",
         0,
         {{2, "'repeat' needs one non-negative integer count."}}},
        {"repeat 2\nupdate\nrepeat 9\nupdate\nend\nend",
         4,
         {{3, "Nested 'repeat' is not supported."}, {6, "'end' without a matching 'repeat'."}}},
        {"update\nrepeat 2\nupdate", 1, {{2, "'repeat' without a matching 'end'."}}},
        {"hold 3\nbad\nhold 4", 7, {{2, "Unknown command 'bad'."}}},
        {"hold 2000000", 1000000, {{1, "Script produced too many frames."}}},
        {"repeat 2000000\nzoom 1\nend", 0, {{2, "Script produced too many frames."}}},
        {"repeat 2000000000\nend\nupdate", 1, {}},
    };
    for (const auto& c : cases) {
        const Compiled compiled = compile(c.text);
        EXPECT_EQ(compiled.frames.size(), c.frames) << c.text;
        EXPECT_EQ(compiled.errors, c.errors) << c.text;
        EXPECT_EQ(compiled.ok, c.errors.empty()) << c.text;
    }
    std::vector<ZRFlybyError> errors;
    EXPECT_FALSE(ZRFlybyScript::Compile("bad", 0, 9, 24, errors, 12, -1.0, 0, 0).ok);
    EXPECT_EQ(errors, (std::vector<ZRFlybyError>{{0, "Internal: invalid source dimensions."}}));
}

TEST(FlybyScript, RoundsOfABlockDoNotPileUpTheirErrors)
{
    EXPECT_EQ(compile("repeat 400\nbad\nend").errors.size(), 400u);
    const Compiled many = compile("repeat 1000000\nbad\nzoom $z\nend\nworse");
    ASSERT_GE(many.errors.size(), ZRFlybyScript::kMostAlike);
    EXPECT_LE(many.errors.size(), ZRFlybyScript::kMostAlike + 3);
    EXPECT_EQ(many.errors[1], (ZRFlybyError{3, "Undefined variable $z"}));
    EXPECT_EQ(many.errors.back().message, "Script produced too many frames.");
    const Compiled late = compile("repeat 5000\nbad\nend\nworse 1");
    EXPECT_EQ(late.errors.back(), (ZRFlybyError{4, "Unknown command 'worse'."}));
    // Long statements end the work as early as many short ones.
    const std::string sum(200000, '+');
    EXPECT_EQ(compile("repeat 1000000\n$a = " + sum + "1\nend").errors.size(), 1u);
}

TEST(FlybyScript, CentresThatFitTheFrameAreKept)
{
    const std::string text = "moveto: 1500 1096 2\nmoveto: 4500 1096 2";
    const Compiled whole = compile(text);
    for (const FlybyCamera& frame : whole.frames)
        EXPECT_EQ(frame.cx, 3000.0); // at zoom 1 the view is the image
    const Compiled window = compile(text, {.viewW = 1000, .viewH = 800});
    ASSERT_EQ(window.frames.size(), 4u);
    EXPECT_EQ(window.frames[1].cx, 1500.0);
    EXPECT_EQ(window.frames[2].cx, 3000.0); // half of an eased move
    EXPECT_EQ(window.frames[3].cx, 4500.0);
    EXPECT_EQ(window.frames[3].line, 2);
    EXPECT_EQ(window.frames[3].waypoint, -1);
    // A pan shows in the next frame only, divided by the zoom and bound to the image.
    const Compiled panned = compile("zoom 4\npanl 400\nupdate\npanb 1e9\nupdate\nreset\nupdate");
    EXPECT_EQ(panned.frames.at(0).cx, 2900.0);
    EXPECT_EQ(panned.frames.at(1).cy, 4000.0 - 500.0);
    EXPECT_EQ(panned.frames.at(2).zoom, 1.0);
}

TEST(FlybyScript, MovesFollowTheirCurves)
{
    const auto zooms = [](const std::string& ease) {
        std::vector<double> found;
        for (const FlybyCamera& frame : compile("zoom 2\nease " + ease + "\nzoomto 32 4").frames)
            found.push_back(std::log2(frame.zoom / 2.0) / 4.0);
        return found;
    };
    const struct
    {
        const char* ease;
        double curve[4];
    } cases[] = {{"linear", {0.25, 0.5, 0.75, 1.0}},
                 {"IN", {0.0625, 0.25, 0.5625, 1.0}},
                 {"out", {0.4375, 0.75, 0.9375, 1.0}},
                 {"inout", {0.125, 0.5, 0.875, 1.0}}};
    for (const auto& c : cases) {
        const std::vector<double> found = zooms(c.ease);
        ASSERT_EQ(found.size(), 4u);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(found[i], c.curve[i], 1e-12) << c.ease << ' ' << i;
    }
    const Compiled flight = compile("ease linear\nzoom 8\nflyin 1000 900 2 100 40 90\nrotate -90 "
                                    "3\nflyto 3000 900 1 -20");
    ASSERT_EQ(flight.frames.size(), 6u);
    EXPECT_EQ(flight.frames[1].zoom, 32.0); // bound
    EXPECT_EQ(flight.frames[0].warp, 0.2);
    EXPECT_EQ(flight.frames[1].roll, 90.0);
    EXPECT_EQ(flight.frames[4].roll, 0.0);
    EXPECT_DOUBLE_EQ(flight.frames[5].warp, -0.2);
    EXPECT_EQ(compile("$x=0\nrepeat 3\n$x = $x + 10\nroll $x\nupdate\nend").frames.at(2).roll,
              30.0);
}

TEST(FlybyScript, AWiggleChangesAtItsZeroCrossingsOnly)
{
    const Compiled compiled =
        compile("period 10\namp 5\nhold 3\nmotion 7 10 45\nhold 20\namp 900\nperiod 1\nhold 6");
    ASSERT_EQ(compiled.frames.size(), 29u);
    const double pi = std::numbers::pi;
    for (std::size_t i = 1; i < compiled.frames.size(); ++i) {
        const FlybyCamera& now = compiled.frames[i];
        const FlybyCamera& last = compiled.frames[i - 1];
        const double step = 2.0 * pi / (now.period >= 2 ? now.period : 12);
        const bool crossing = now.phase < step || (now.phase >= pi && now.phase < pi + step);
        EXPECT_TRUE(crossing || (now.amp == last.amp && now.sway == last.sway)) << i;
    }
    EXPECT_EQ(compiled.frames[0].amp, 5.0);
    EXPECT_EQ(compiled.frames[4].amp, 5.0);
    EXPECT_EQ(compiled.frames[5].amp, 7.0); // half a period of 10
    EXPECT_EQ(compiled.frames[5].sway, 45.0);
    EXPECT_EQ(compiled.frames.back().amp, 20.0);
    EXPECT_EQ(compiled.frames.back().period, -1);
    // A period written for one rate keeps its duration at another.
    const Compiled rates = compile("setfps 30\nvideofps 60\nperiod 30\nhold 61");
    EXPECT_NEAR(std::sin(rates.frames[60].phase / 2.0), 0.0, 1e-9); // a full turn
    EXPECT_NEAR(rates.frames[30].phase, pi, 1e-9);
    EXPECT_EQ(rates.frames[60].fps, 60);
}

TEST(FlybyScript, ALoopClosesItsWiggle)
{
    const std::string text = "period 10\nhold 4";
    EXPECT_EQ(compile(text, {.loopAmp = -1.0}).frames.size(), 4u);
    EXPECT_EQ(compile(text, {.loopAmp = 0.0}).frames.size(), 4u);
    const Compiled closed = compile(text, {.loopAmp = 3.0});
    EXPECT_EQ(closed.frames.size(), 10u); // the phase after the last frame is back at the first's
    EXPECT_EQ(compile(text + "\nzoomto 2 3", {.loopAmp = 3.0}).frames.size(), 7u); // no loop
    EXPECT_EQ(compile("period 10\namp 0\nhold 4", {.loopAmp = 3.0}).frames.size(), 4u);
}

TEST(FlybyScript, ValidateCountsSecondsByEachFramesRate)
{
    std::vector<ZRFlybyError> errors;
    int frames = 0;
    double seconds = 0.0;
    EXPECT_TRUE(ZRFlybyScript::Validate("videofps 10\nhold 20\nvideofps 50\nhold 50", 900, 600, 0,
                                        errors, &frames, &seconds, 0, 0));
    EXPECT_EQ(frames, 70);
    EXPECT_NEAR(seconds, 3.0, 1e-9);
    EXPECT_FALSE(ZRFlybyScript::Validate("hold", 900, 600, 0, errors, nullptr, nullptr, 0, 0));
}

TEST(FlybyScript, TheBuiltInLoopIsClosed)
{
    std::vector<FlybyCamera> loop;
    zre::makeSimpleFlyby(60, 900, 600, loop);
    ASSERT_EQ(loop.size(), 60u);
    EXPECT_EQ(loop[0].cx, 450.0 + 36.0);
    EXPECT_NEAR(loop[30].zoom, 1.7, 1e-12);
    for (std::size_t i = 0; i < 60; ++i) // no jump anywhere, the seam included
        EXPECT_LT(
            std::hypot(loop[i].cx - loop[(i + 1) % 60].cx, loop[i].cy - loop[(i + 1) % 60].cy),
            36.0 * 2.0 * std::numbers::pi / 60.0);
    zre::makeSimpleFlyby(-3, 900, 600, loop);
    EXPECT_EQ(loop.size(), 1u);
}

} // namespace
