#include "app/export/frame_farm.h"

#include <atomic>
#include <chrono>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

QImage numbered(int frame)
{
    QImage picture(2, 1, QImage::Format_RGB32);
    picture.fill(static_cast<uint>(frame));
    return picture;
}

TEST(FrameFarm, FramesComeInOrderAndNoMoreThanTheWindowStands)
{
    constexpr int kCount = 200;
    constexpr int kWindow = 5;
    std::atomic<int> begun = 0;
    std::atomic<int> taken = 0;
    std::atomic<int> most = 0;
    FrameFarm farm({kCount, 4, kWindow}, [&](int frame) {
        const int ahead = ++begun - taken;
        for (int seen = most; ahead > seen && !most.compare_exchange_weak(seen, ahead);)
            ;
        return numbered(frame);
    });
    for (int i = 0; i < kCount; ++i) {
        while (!farm.waitForNext(1000))
            ASSERT_FALSE(farm.failed());
        EXPECT_EQ(farm.takeNext().pixel(1, 0) & 0xffffffu, static_cast<uint>(i));
        ++taken;
    }
    EXPECT_FALSE(farm.waitForNext(1000)); // there is no further one, and no waiting for it
    EXPECT_EQ(begun, kCount);
    EXPECT_EQ(farm.done(), kCount);
    EXPECT_LE(most, kWindow + 1); // the counter of the test lags by the frame just taken
}

TEST(FrameFarm, WhatARenderThrowsOrLeavesOutIsTheError)
{
    const struct
    {
        FrameFarm::Render render;
        QString error;
    } cases[] = {
        {[](int frame) {
             return frame == 3 ? throw std::runtime_error("no star") : numbered(frame);
         },
         "no star"},
        {[](int frame) { return frame == 3 ? throw std::bad_alloc() : numbered(frame); },
         "Out of memory."},
        {[](int frame) { return frame == 3 ? QImage() : numbered(frame); },
         "Frame 4 could not be rendered."},
    };
    for (const auto& c : cases) {
        FrameFarm farm({100, 3, 2}, c.render);
        int count = 0;
        while (farm.waitForNext(2000)) {
            farm.takeNext();
            ++count;
        }
        EXPECT_TRUE(farm.failed());
        EXPECT_EQ(farm.error(), c.error);
        EXPECT_LE(count, 3);
    }
}

TEST(FrameFarm, FailedFramesCanBeSkipped)
{
    FrameFarm farm({30, 3, 30, true}, [](int frame) {
        return frame % 3 == 0   ? QImage()
               : frame % 3 == 1 ? throw std::bad_alloc()
                                : numbered(frame);
    });
    for (int frame = 0; frame < 30; ++frame) {
        ASSERT_TRUE(farm.waitForNext(2000));
        EXPECT_EQ(farm.takeNext(), frame % 3 == 2 ? numbered(frame) : QImage()) << frame;
    }
    EXPECT_FALSE(farm.failed());
    EXPECT_EQ(farm.done(), 30);
}

TEST(FrameFarm, StopsWhileFullWhileBusyAndWhileEmpty)
{
    for (const int count : {0, 1, 50}) {
        std::atomic<int> begun = 0;
        FrameFarm farm({count, 3, 2}, [&](int frame) {
            ++begun;
            return numbered(frame);
        });
        farm.waitForNext(count > 0 ? 2000 : 0);
        farm.stop();
        farm.stop();
        EXPECT_LE(begun, 5);
    }
    EXPECT_EQ(FrameFarm::threadsFor(1), 1);
    EXPECT_EQ(FrameFarm::threadsFor(-5), 1);
    EXPECT_GE(FrameFarm::threadsFor(1000), 1);
}

} // namespace
