#include "app/panel/param_history.h"

#include <gtest/gtest.h>

#include "tests/app/panel/random_params.h"

namespace {

struct History : testing::Test
{
    zre::ZRParams now;
    ParamHistory history{[this](const zre::ZRParams& params) { now = params; }};

    void change(const zre::ZRParams& next, int gesture)
    {
        const zre::ZRParams before = std::exchange(now, next);
        history.record(before, now, "change", gesture);
    }
    void parallax(float value, int gesture)
    {
        zre::ZRParams next = now;
        next.parallaxAmount = value;
        change(next, gesture);
    }
};

} // namespace

TEST_F(History, FiftyRandomStepsComeBackBitForBitBothWays)
{
    std::mt19937 random(8);
    std::vector<zre::ZRParams> states{now};
    for (int step = 1; step <= 50; ++step) {
        zre::ZRParams next = randomParams(random);
        next.colorDepthEntries = std::to_string(random());
        next.starErasures.resize(random() % 4, {1.5, 2.5, double(step), 0.5, 1});
        change(next, step);
        states.push_back(now);
    }
    ASSERT_EQ(history.stack().count(), 50);
    for (std::size_t i = 50; i > 0; --i) {
        history.stack().undo();
        ASSERT_TRUE(now == states[i - 1]) << i;
    }
    for (std::size_t i = 1; i <= 50; ++i) {
        history.stack().redo();
        ASSERT_TRUE(now == states[i]) << i;
    }
}

TEST_F(History, AGestureIsOneStepAndTwoAreTwo)
{
    for (int i = 1; i <= 5; ++i)
        parallax(20.0f + static_cast<float>(i), 1);
    for (int i = 1; i <= 5; ++i)
        parallax(40.0f + static_cast<float>(i), 2);
    EXPECT_EQ(history.stack().count(), 2);
    history.stack().undo();
    EXPECT_EQ(now.parallaxAmount, 25.0f);
    history.stack().undo();
    EXPECT_EQ(now.parallaxAmount, 20.0f);
    history.stack().redo();
    history.stack().redo();
    EXPECT_EQ(now.parallaxAmount, 45.0f);
}

TEST_F(History, AGestureThatEndsWhereItBeganLeavesNoStep)
{
    parallax(30.0f, 1);
    parallax(50.0f, 2);
    parallax(60.0f, 2);
    parallax(30.0f, 2);
    EXPECT_EQ(history.stack().count(), 1);
    history.stack().undo();
    EXPECT_EQ(now.parallaxAmount, 20.0f);
    parallax(20.0f, 3);
    EXPECT_EQ(history.stack().count(), 1) << "no change, no step: what was undone can be redone";
}

TEST_F(History, StepsOfTheirOwnNeverJoin)
{
    parallax(30.0f, ParamHistory::kOwnStep);
    parallax(40.0f, ParamHistory::kOwnStep);
    EXPECT_EQ(history.stack().count(), 2);
}
