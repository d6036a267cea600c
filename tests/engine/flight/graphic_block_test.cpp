#include <gtest/gtest.h>

#include "engine/flight/flyby_script.h"

namespace {

using zre::ZRFlybyError;
using zre::ZRFlybyScript;
using zre::ZRFlybySrcRef;

const std::string kStart = "path_start x=1 y=2 zoom=1 ease=in\n";

TEST(GraphicBlock, WritesCommandsAndSaysWhereTheyComeFrom)
{
    const std::string text =
        "# title\n"
        "PATH_START version=1 fps=30 x=10.5 y=-10.5 zoom=1.5 ease=InOut hold=7 roll=-3.25 sway=45 "
        "amp=2.5 period=24\n"
        "$v = 1\n"
        "path_begin\n"
        "  waypoint x=1 y=2 move=flyin frames=10 zoom=2 away=50 ease=in hold=0 # comment\n"
        "\n"
        "  waypoint x=100.4 y=-0.7 move=stay frames=1 zoom=32 warp=0 ease=out hold=3 roll=12 "
        "sway_before=1 amp_after=0.125 period_before=9.6 fps_after=59.9\n"
        "path_end ignored\n"
        "update";
    const std::string expected = "# title\n"
                                 "# Waypoint #1\n#\n"
                                 "videofps: 30\nsway: 45\namp: 2.5\nperiod: 24\nroll: -3.25\n"
                                 "ease: inout\nzoom: 1.500\nmoveto: 11 -10 1\nhold: 7\n\n"
                                 "$v = 1\n"
                                 "# Waypoint #2\n#\n"
                                 "ease: in\nflyin: 1 2 10 2.000 50\n\n"
                                 "# Waypoint #3\n#\n"
                                 "sway: 1\nperiod: 10\nease: out\nroll: 12\nhold: 1\nsetfps: 60\n"
                                 "amp: 0.125\nhold: 3\n\n"
                                 "update\n";
    std::string out;
    std::vector<ZRFlybyError> errors;
    std::vector<ZRFlybySrcRef> refs;
    ASSERT_TRUE(ZRFlybyScript::ExpandGraphicBlock(text, out, errors, &refs));
    EXPECT_EQ(out, expected);
    std::vector<ZRFlybySrcRef> wanted{{-1, 1}};
    wanted.insert(wanted.end(), 12, {1, 2});
    wanted.push_back({-1, 3});
    wanted.insert(wanted.end(), 5, {2, 5});
    wanted.insert(wanted.end(), 11, {3, 7});
    wanted.push_back({-1, 9});
    EXPECT_EQ(refs, wanted);

    const std::vector<zre::FlybyCamera> frames =
        ZRFlybyScript::Compile(text, 6000, 4000, 24, errors, 12, -1.0, 0, 0).frames;
    EXPECT_TRUE(errors.empty());
    ASSERT_EQ(frames.size(), 1u + 7u + 10u + 1u + 3u + 1u);
    EXPECT_EQ(frames[8].waypoint, 2);
    EXPECT_EQ(frames[8].line, 5);
    EXPECT_EQ(frames.back().waypoint, -1);
    EXPECT_EQ(frames.back().line, 9);
}

TEST(GraphicBlock, EveryMoveHasItsForm)
{
    const struct
    {
        const char* move;
        const char* command;
    } cases[] = {{"moveto", "moveto: 3 4 5 9\n"},
                 {"flyto", "flyto: 3 4 5 60 9\n"},
                 {"flyin", "flyin: 3 4 5 2.000 60 9\n"},
                 {"zoomto", "zoomto: 2.000 5 9\n"},
                 {"stay", "roll: 9\nhold: 5\n"}};
    for (const auto& c : cases) {
        std::string out;
        std::vector<ZRFlybyError> errors;
        const std::string line = std::string("waypoint x=3 y=4 frames=5 zoom=2 warp=60 ease=in "
                                             "hold=0 roll=9 move=") +
                                 c.move;
        ASSERT_TRUE(ZRFlybyScript::ExpandGraphicBlock("path_begin\n" + line + "\npath_end", out,
                                                      errors, nullptr));
        EXPECT_EQ(out, "# Waypoint #2\n#\nease: in\n" + std::string(c.command) + '\n');
    }
}

TEST(GraphicBlock, Errors)
{
    const std::string good = "waypoint x=1 y=2 move=moveto frames=9 zoom=1 warp=0 ease=in hold=0\n";
    const auto block = [](const std::string& inner) {
        return "path_begin\n" + inner + "path_end\n";
    };
    const struct
    {
        std::string text;
        std::vector<ZRFlybyError> errors;
    } cases[] = {
        {"moveto 1 2 3", {}},
        {"# path_start", {}},
        {kStart, {}},
        {kStart + block(""), {}},
        {"# c\n\n" + kStart, {}},
        {"$v = 1\n" + kStart,
         {{1, "No code may appear above 'path_start' (it must be the first command)."}}},
        {kStart + kStart, {{1, "Only one 'path_start' is allowed."}}},
        {block("") + block(""),
         {{1, "Only one 'path_begin' is allowed."}, {2, "Only one 'path_end' is allowed."}}},
        {"path_begin\n", {{1, "'path_begin' and 'path_end' must be paired."}}},
        {"\npath_end\n", {{2, "'path_begin' and 'path_end' must be paired."}}},
        {"path_end\npath_begin\n", {{1, "'path_end' appears before 'path_begin'."}}},
        {block(good) + good, {{4, "'waypoint' must be inside path_begin/path_end."}}},
        {block("hold 3\n"), {{2, "Only 'waypoint' lines are allowed inside path_begin/path_end."}}},
        {"path_start",
         {{1, "Missing 'x'."},
          {1, "Missing 'y'."},
          {1, "Missing 'zoom'."},
          {1, "Missing 'ease'."}}},
        {"path_start x=1 y=2 zoom=2*1.1 ease=soft fps=241 period=1.5 hold=x roll=1x =3 pos 0.5",
         {{1, "'=3' is not a name=value parameter."},
          {1, "'pos' is not a name=value parameter."},
          {1, "'0.5' is not a name=value parameter."},
          {1, "'fps' must be 1 to 240."},
          {1, "'zoom' must be a number."},
          {1, "'ease' must be linear, in, out, or inout."},
          {1, "'roll' must be a number."},
          {1, "'period' must be a whole number."},
          {1, "'hold' must be a whole number."}}},
        {"path_start x=1 y=2 zoom=33 ease=in hold=-4", {{1, "'zoom' must be 0.05 to 32."}}},
        {block("waypoint move=jump turn=1\n"),
         {{2, "Unknown parameter 'turn'."},
          {2, "Missing 'x'."},
          {2, "Missing 'y'."},
          {2, "'move' must be moveto, flyto, flyin, zoomto, or stay."},
          {2, "Missing 'frames'."},
          {2, "Missing 'zoom'."},
          {2, "Missing 'warp'."},
          {2, "Missing 'ease'."},
          {2, "Missing 'hold'."}}},
        {block("waypoint x=1 y=2 move=stay frames=0 zoom=0.04 away=100.5 ease=in hold=-1 odd=1\n"),
         {{2, "Unknown parameter 'odd'."},
          {2, "'frames' must be >= 1."},
          {2, "'zoom' must be 0.05 to 32."},
          {2, "'away' must be 0 to 100."},
          {2, "'hold' must be >= 0."}}},
        {block("waypoint x=1 y=2 move=stay frames=9 zoom=1 away=z ease=in hold=0\n"),
         {{2, "'warp' must be a number."}}},
    };
    for (const auto& c : cases) {
        std::string out;
        std::vector<ZRFlybyError> errors;
        std::vector<ZRFlybySrcRef> refs;
        EXPECT_EQ(ZRFlybyScript::ExpandGraphicBlock(c.text, out, errors, &refs), c.errors.empty());
        EXPECT_EQ(errors, c.errors) << c.text;
        if (!c.errors.empty()) {
            EXPECT_EQ(out, c.text);
            EXPECT_TRUE(refs.empty());
        }
    }
}

} // namespace
