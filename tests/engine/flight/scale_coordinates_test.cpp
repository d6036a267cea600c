#include <gtest/gtest.h>

#include "engine/flight/flyby_script.h"

namespace {

TEST(ScaleCoordinates, LiteralsFollowAndNothingElseChanges)
{
    const struct
    {
        std::string before;
        std::string after;
    } lines[] = {
        {"path_start x=100 y=50 zoom=1.5", "path_start x=200 y=150 zoom=1.5"},
        {"waypoint x=200 y=75 zoom=2*1.1", "waypoint x=400 y=225 zoom=2*1.1"},
        {"moveto 300 150 40", "moveto 600 450 40"},
        {"\tMOVETO:  300 ,150, 40 # 300 150\r", "\tMOVETO:  600 ,450, 40 # 300 150\r"},
        {"panl 20", "panl 40"},
        {"pant 30", "pant 90"},
        {"flyto 400.5 200 60 15", "flyto 801 600 60 15"},
        {"pan 10 20", "pan 20 60"},
        {"# comment x=999 y=999", "# comment x=999 y=999"},
        {"writeln \"x=1 y=2\"", "writeln \"x=1 y=2\""},
        {"$v = 100", "$v = 100"},
        {"moveto $v 250 40", "moveto $v 750 40"},
        {"moveto 1+1 2*3 4", "moveto 1+1 2*3 4"},
        {"moveto 7", "moveto 14"},
        {"moveto nan 1e300 4", "moveto nan 1e300 4"},
        {"waypoint x= x=-10.3 X=5", "waypoint x= x=-21 X=10"},
        {"", ""},
    };
    std::string before;
    std::string after;
    for (const auto& line : lines) {
        before += line.before + '\n';
        after += line.after + '\n';
    }
    EXPECT_EQ(zre::scaleFlybyScriptCoords(before, 2.0, 3.0), after);
    EXPECT_EQ(zre::scaleFlybyScriptCoords("moveto 2.5 3 4.5", 1.0, 1.0), "moveto 3 3 4.5");
}

} // namespace
