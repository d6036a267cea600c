#include <gtest/gtest.h>

#include "app/mainwindow/stage_display.h"

TEST(TimeLeft, IsToldOnceItCanBeEstimated)
{
    const struct
    {
        qint64 elapsedMs;
        int done;
        int left;
        const char* text;
    } cases[] = {{2000, 50, 50, ""},
                 {4000, 0, 100, ""},
                 {4000, 100, 0, ""},
                 {4000, 40, 60, "\nAbout 6 s left"},
                 {10000, 10, 89, "\nAbout 89 s left"},
                 {60000, 20, 80, "\nAbout 4 min left"}};
    for (const auto& c : cases)
        EXPECT_EQ(timeLeftText(c.elapsedMs, c.done, c.left), QString(c.text)) << c.elapsedMs;
}
