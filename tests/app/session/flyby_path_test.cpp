#include "app/session/flyby_path.h"

#include <gtest/gtest.h>

namespace {

TEST(FlybyPath, SaysWhatBecameOfTheScript)
{
    const struct
    {
        const char* script;
        const char* status;
        bool builtIn;
        std::size_t frames;
    } cases[] = {
        {" \n", "Empty - using the built-in flyby.", true, 45},
        {"zoom 2", "Script produced no frames - using the built-in flyby.", true, 45},
        {"hold 3\nfly", "Line 2: Unknown command 'fly'.  (using built-in)", true, 45},
        {"hold\nhold\nhold", "Line 1: 'hold' expects 1 argument(s).  (using built-in) (+2 more)",
         true, 45},
        {"zoomto 2 3", "Compiled: 3 frames.", false, 3},
    };
    zre::ZRParams params;
    params.wiggleFrames = 45;
    for (const auto& c : cases) {
        const FlybyPath path = compileFlyby(c.script, params, 600, 400, {});
        EXPECT_EQ(path.status, c.status);
        EXPECT_EQ(path.builtIn, c.builtIn) << c.script;
        EXPECT_EQ(path.cameras.size(), c.frames) << c.script;
    }
}

TEST(FlybyPath, ALoopIsClosedAsTheUserWishes)
{
    zre::ZRParams params;
    params.wiggleFrames = 20;
    const auto frames = [&](bool ongoing, bool loop) {
        return compileFlyby("hold 5", params, 600, 400, {ongoing, loop}).cameras.size();
    };
    EXPECT_EQ(frames(true, true), 20u); // until the wiggle has come round
    EXPECT_EQ(frames(true, false), 5u);
    EXPECT_EQ(frames(false, true), 5u); // nothing swings
}

} // namespace
