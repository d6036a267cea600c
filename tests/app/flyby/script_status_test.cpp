#include "app/flyby/script_status.h"

#include <gtest/gtest.h>

TEST(ScriptStatus, SaysWhatTheCompilerFinds)
{
    constexpr ScriptContext kNone{0, 0, 24};
    constexpr ScriptContext kImage{640, 480, 24};
    const QString empty = "Empty - the built-in push-in loop will play.";
    const QString inSpace = "3D flight - not available in this version.";
    struct Case
    {
        const char* script;
        ScriptContext context;
        QString text;
        std::vector<int> lines;
    };
    const Case cases[] = {
        {"", kNone, empty, {}},
        {" \n\t\r\n", kImage, empty, {}},
        {"path_start mode=3d", kNone, inSpace, {}},
        {"path_start mode=3d\nnonsense", kImage, inSpace, {}},
        {"hold 12", kNone, "Open an image to validate against its size.", {}},
        {"nonsense", {640, 0, 24}, "Open an image to validate against its size.", {}},
        {"hold 12", kImage, "Valid: 12 frames (~0.5 s).", {}},
        {"hold 12", {640, 480, 8}, "Valid: 12 frames (~1.5 s).", {}},
        {"# nothing\nhold 0", kImage, "Script produced no frames.", {}},
        {"hold 2\nfly", kImage, "Line 2: Unknown command 'fly'.", {2}},
        {"fly\nhold\nend",
         kImage,
         "Line 3: 'end' without a matching 'repeat'. (+2 more)",
         {3, 1, 2}},
        // The line that the compiler names is of the expanded script, the mark is at its source.
        {"path_start x=1 y=1 zoom=1 ease=in\nfly", kImage, "Line 7: Unknown command 'fly'.", {2}},
        {"path_start x=1 y=1 zoom=1 ease=in\nwaypoint x=1",
         kImage,
         "Line 2: 'waypoint' must be inside path_begin/path_end.",
         {2}},
    };
    for (const Case& each : cases) {
        const ScriptStatus status = scriptStatus(each.script, each.context);
        EXPECT_EQ(status.text, each.text) << each.script;
        std::vector<int> lines;
        for (const ScriptStatus::Complaint& complaint : status.complaints)
            lines.push_back(complaint.line);
        EXPECT_EQ(lines, each.lines) << each.script;
    }
}
