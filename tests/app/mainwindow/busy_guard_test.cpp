#include "app/mainwindow/busy_guard.h"

#include <new>
#include <vector>

#include <QGuiApplication>

#include <gtest/gtest.h>

TEST(BusyGuard, NestedWorkRunsAndTheCursorOutlastsIt)
{
    BusyGuard guard;
    bool ranInside = false;
    EXPECT_TRUE(guard.run([&] {
        EXPECT_TRUE(guard.run([&] { ranInside = true; }));
        EXPECT_TRUE(guard.active());
        EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
    }));
    EXPECT_TRUE(ranInside);
    EXPECT_FALSE(guard.active());
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST(BusyGuard, RunningOutOfMemoryInNestedWorkEndsTheWholeAndLeavesNoCursor)
{
    BusyGuard guard;
    bool wentOn = false;
    EXPECT_FALSE(guard.run([&] {
        guard.run([] { throw std::bad_alloc(); });
        wentOn = true;
    }));
    EXPECT_FALSE(guard.run([] { std::vector<float>().reserve(static_cast<std::size_t>(-1)); }));
    EXPECT_FALSE(wentOn);
    EXPECT_FALSE(guard.active());
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}
