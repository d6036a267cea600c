#include "engine/flight/flight3d_path.h"

#include <gtest/gtest.h>

TEST(IsFlight3DScript, TheFirstPathStartDecides)
{
    struct Case
    {
        const char* text;
        bool expected;
    };
    const Case cases[] = {
        {"", false},
        {"moveto: 1 2 3", false},
        {"path_start mode=3d", true},
        {"# head\n\n \tpath_start version=1 mode=3d fps=30\r\n", true},
        {"path_start x=1\npath_start mode=3d", false},
        {"path_start mode=3d\npath_start x=1", true},
        {"path_start x=1 # mode=3d", false},
        {"# path_start mode=3d\nhold 3", false},
        {"hold 3\npath_start mode=3d", true},
        {"PATH_START mode=3d", false},
        {"path_start mode=2d", false},
        {"waypoint mode=3d", false},
    };
    for (const Case& each : cases)
        EXPECT_EQ(zre::isFlight3DScript(each.text), each.expected) << each.text;
}
