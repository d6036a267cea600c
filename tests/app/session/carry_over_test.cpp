#include "app/session/carry_over.h"

#include <climits>

#include "app/session/session.h"
#include "tests/support/testkit.h"

namespace {

Session withMap(int width, int height)
{
    Session session;
    session.installSource("a.png", zrtest::noise(width, height, 1, 1), {}, {});
    session.installExternalDepth("map.png", zrtest::noise(width, height, 0, 2));
    return session;
}

} // namespace

TEST(CarryOver, ProportionsAreTheSameWithinOnePercentOfTheOldOnes)
{
    struct Case
    {
        QSize from, to;
        bool same;
    };
    const Case cases[] = {
        {{600, 400}, {1200, 800}, true},    {{600, 400}, {300, 200}, true},
        {{1000, 1000}, {1009, 1000}, true}, {{1000, 1000}, {1011, 1000}, false},
        {{1000, 1000}, {991, 1000}, true},  {{1000, 1000}, {989, 1000}, false},
        {{600, 400}, {612, 400}, false},    {{600, 400}, {400, 600}, false},
        {{0, 400}, {600, 400}, false},      {{600, 400}, {600, 0}, false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(sameProportions(c.from, c.to), c.same)
            << c.from.width() << " to " << c.to.width();
}

TEST(CarryOver, AtTwiceTheSizeTheMapDoublesAndTheFrameFollows)
{
    Session session = withMap(6, 4);
    session.params.flybyFrameW = 301;
    session.params.flybyFrameH = 20;
    session.params.starErasures = {{1.5, 2.0, 3.0, 0.5, 1}};
    const zre::Image map = session.externalDepth;
    const int generation = session.generation;
    rescaleSession(session, {6, 4}, {600, 400});
    EXPECT_EQ(session.params.flybyFrameW, 600); // bound to the new size
    EXPECT_EQ(session.params.flybyFrameH, 400);
    ASSERT_EQ(session.externalDepth.width, 600);
    ASSERT_EQ(session.externalDepth.height, 400);
    for (int y = 0; y < 400; ++y)
        for (int x = 0; x < 600; ++x)
            ASSERT_EQ(session.externalDepth.plane(0)[y * 600 + x],
                      map.plane(0)[y / 100 * 6 + x / 100]);
    EXPECT_GT(session.generation, generation);
    EXPECT_EQ(session.depthMapPath, "map.png");
    const std::vector<zre::StarErasure> moved{{150.0, 200.0, 3.0, 0.5, 1}};
    EXPECT_EQ(session.params.starErasures, moved);
    session.flybyScript = "moveto 10 20 5";
    startFresh(session);
    EXPECT_EQ(session.flybyScript, "moveto 10 20 5") << "the user is asked about it";
    EXPECT_FALSE(session.externalDepth.usable());
    EXPECT_TRUE(session.params.starErasures.empty());

    session.flybyScriptSize = {600, 400};
    EXPECT_TRUE(flybyPathMisfits(session, {60, 40}));
    session.flybyScript = "path_start mode=3d x=10 y=20";
    EXPECT_FALSE(flybyPathMisfits(session, {60, 40})) << "not of pixels";
    rescaleSession(session, {600, 400}, {60, 40});
    EXPECT_EQ(session.flybyScript, "path_start mode=3d x=10 y=20");
}

TEST(CarryOver, FrameSidesRoundToTheNearestAndKeepTheirLimits)
{
    struct Case
    {
        int before, oldSide, newSide, after;
    };
    const Case cases[] = {{1920, 4000, 8000, 3840}, {101, 400, 200, 51}, {20, 400, 100, 16},
                          {0, 400, 800, 0},         {-5, 400, 800, -5},  {INT_MAX, 1, 9000, 9000}};
    for (const Case& c : cases) {
        Session session;
        session.params.flybyFrameW = session.params.flybyFrameH = c.before;
        rescaleSession(session, {c.oldSide, c.oldSide}, {c.newSide, c.newSide});
        EXPECT_EQ(session.params.flybyFrameW, c.after);
        EXPECT_EQ(session.params.flybyFrameH, c.after);
    }
}

TEST(CarryOver, SizesThatAreNoneChangeNothing)
{
    for (const QSize none : {QSize(0, 4), QSize(6, 0), QSize(-6, 4)}) {
        Session session = withMap(6, 4);
        session.params.flybyFrameW = 100;
        rescaleSession(session, {6, 4}, none);
        rescaleSession(session, none, {12, 8});
        EXPECT_EQ(session.params.flybyFrameW, 100);
        EXPECT_EQ(session.externalDepth.width, 6);
    }
}
