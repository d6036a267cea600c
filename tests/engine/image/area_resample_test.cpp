#include <limits>

#include <gtest/gtest.h>

#include "engine/image/raster.h"
#include "tests/engine/image/naive.h"
#include "tests/support/testkit.h"

using zre::Image;

TEST(AreaResample, SumsEachBlockRowByRow)
{
    struct Size
    {
        int width, height;
    };
    for (const Size& from : {Size{96, 64}, Size{97, 61}, Size{1, 50}, Size{50, 1}, Size{7, 5},
                             Size{240, 12}, Size{1, 1}})
        for (const Size& to : {Size{24, 16}, Size{48, 32}, Size{32, 16}, Size{96, 16}, Size{12, 8},
                               Size{1, 1}, Size{13, 29}, Size{200, 3}, Size{3, 200}, Size{97, 61},
                               Size{60, 3}, Size{40, 4}, Size{30, 2}})
            for (const int model : {0, 1}) {
                const Image src = zrtest::noise(from.width, from.height, model, 41);
                Image dst;
                zre::areaResample(zrtest::ramp(97, 61), to.width, to.height, dst);
                zre::areaResample(src, to.width, to.height, dst); // into what the first one left
                EXPECT_TRUE(
                    zrtest::imagesNear(dst, naive::resampled(src, to.width, to.height), 0.0))
                    << from.width << "x" << from.height << " to " << to.width << "x" << to.height;
            }
}

TEST(AreaResample, GivesTheChannelsOfItsTargetAndTakesAUsedOne)
{
    Image dst = zrtest::noise(9, 9, 1, 42);
    Image grey = zrtest::noise(8, 8, 0, 43);
    grey.colorModel = 5;
    zre::areaResample(grey, 4, 4, dst);
    EXPECT_EQ(dst.channels, 1);
    EXPECT_EQ(dst.colorModel, 0);
    EXPECT_TRUE(zrtest::imagesNear(dst, naive::resampled(grey, 4, 4), 0.0)) << "old sums remain";
    zre::areaResample(grey, 8, 8, dst);
    EXPECT_EQ(dst.colorModel, 5) << "an equal size copies every field";
    EXPECT_EQ(dst.data, grey.data);

    Image inPlace = zrtest::noise(12, 8, 1, 44);
    const Image expected = naive::resampled(inPlace, 4, 4);
    zre::areaResample(inPlace, 4, 4, inPlace);
    EXPECT_TRUE(zrtest::imagesNear(inPlace, expected, 0.0)) << "source and target are one image";
}

TEST(AreaResample, KeepsABadSampleInItsBlock)
{
    Image src = zrtest::noise(64, 64, 0, 45);
    src.data[64 * 33 + 21] = std::numeric_limits<float>::quiet_NaN();
    src.data[64 * 2 + 63] = std::numeric_limits<float>::infinity();
    for (const int side : {16, 21, 32}) {
        Image dst;
        zre::areaResample(src, side, side, dst);
        EXPECT_TRUE(zrtest::imagesNear(dst, naive::resampled(src, side, side), 0.0)) << side;
    }
}

TEST(AreaResample, LeavesTheTargetWhenThereIsNothingToMake)
{
    const Image before = zrtest::noise(5, 4, 0, 46);
    const Image src = zrtest::noise(8, 8, 0, 47);
    Image dst = before;
    zre::areaResample(src, 0, 4, dst);
    zre::areaResample(src, 4, -1, dst);
    zre::areaResample(src, std::numeric_limits<int>::min(), 4, dst);
    zre::areaResample(Image(), 4, 4, dst);
    EXPECT_TRUE(zrtest::imagesNear(dst, before, 0.0));
}
