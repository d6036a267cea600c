#include "app/playback/preview_scale.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace {

TEST(PreviewScale, ZoomsClimbALadderOfDoublings)
{
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::nan("");
    struct Row
    {
        double fraction, zoom, expected;
    };
    const Row rows[] = {{0.25, 1.0, 0.25}, {0.25, 1.5, 0.5},  {0.25, 2.0, 0.5}, {0.25, 2.001, 1.0},
                        {0.25, 5.0, 1.0},  {0.25, 0.3, 0.25}, {0.3, 2.5, 1.0},  {0.3, 1.9, 0.6},
                        {1.0, 7.0, 1.0},   {0.0, 2.0, 1.0},   {-2.0, 2.0, 1.0}, {nan, 2.0, 1.0},
                        {0.25, nan, 0.25}, {0.25, inf, 1.0},  {0.1, 8.0, 0.8},  {0.1, 8.01, 1.0}};
    for (const Row& row : rows)
        EXPECT_DOUBLE_EQ(bucketScaleFor(row.fraction, row.zoom), row.expected)
            << row.fraction << " at " << row.zoom;
}

TEST(PreviewScale, AFlybyHoldsAboutTwiceThePixelsOfTheScreen)
{
    struct Row
    {
        int percent;
        QSize viewport, image;
        double expected;
    };
    const Row rows[] = {
        {0, {600, 1000}, {6000, 4000}, 0.2},  // 400 of 4000 rows are shown
        {0, {3000, 500}, {6000, 4000}, 0.25}, // bound by the height
        {0, {2000, 2000}, {600, 400}, 1.0},   {0, {121, 121}, {20000, 20000}, 0.05},
        {0, {119, 900}, {6000, 4000}, 1.0},   {0, {900, 600}, {0, 0}, 1.0},
        {35, {900, 600}, {6000, 4000}, 0.35},
    };
    for (const Row& row : rows)
        EXPECT_DOUBLE_EQ(flybyPreviewFraction(row.percent, row.viewport, row.image), row.expected);
}

TEST(PreviewScale, MemoryBoundsTheFramesBuiltAhead)
{
    const QSize photograph(6000, 4000);                  // 96 million bytes a frame
    EXPECT_EQ(plannedFrames(30, photograph, 80), 17);    // of 1717 million
    EXPECT_EQ(plannedFrames(30, photograph, 20), 4);     // of 429 million
    EXPECT_EQ(plannedFrames(30, {60000, 60000}, 80), 0); // 14 thousand million bytes each
    EXPECT_EQ(plannedFrames(30, {600, 400}, 20), 30);
    EXPECT_EQ(plannedFrames(0, {600, 400}, 80), 0);
}

TEST(PreviewScale, OnlyALongWaitThatIsCertainIsAnnounced)
{
    EXPECT_TRUE(takesMinutes(10, 250, 5.0)); // 0.5 s a frame, 240 to come
    EXPECT_FALSE(takesMinutes(10, 249, 5.0));
    EXPECT_FALSE(takesMinutes(7, 10000, 100.0));
    EXPECT_FALSE(takesMinutes(8, 10000, 3.9));
    EXPECT_FALSE(takesMinutes(0, 100, 100.0));
}

} // namespace
