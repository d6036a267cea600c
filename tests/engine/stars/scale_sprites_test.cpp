#include <cmath>
#include <limits>
#include <numeric>

#include <gtest/gtest.h>

#include "engine/stars/star_sprites.h"
#include "tests/support/testkit.h"

using zre::Star;
using zrtest::noise;

namespace {

Star randomStar(int boxW, int boxH, int channels)
{
    Star star;
    star.x = 40.25;
    star.y = 31.5;
    star.depth = 0.75f;
    star.peak = 0.5f;
    star.distancePc = 12;
    star.boxX = 33;
    star.boxY = 22;
    star.boxW = boxW;
    star.boxH = boxH;
    star.channels = channels;
    star.sprite = noise(boxW * channels, boxH, 0, 1).data;
    star.alpha = noise(boxW, boxH, 0, 2).data;
    return star;
}

Star scaled(const Star& star, double scaleX, double scaleY)
{
    std::vector<Star> out;
    zre::scaleStarSprites({star}, scaleX, scaleY, out);
    return out.at(0);
}

double mean(const std::vector<float>& v)
{
    return std::accumulate(v.begin(), v.end(), 0.0) / static_cast<double>(v.size());
}

TEST(ScaleSprites, AtTheirOwnSizeTheyStayBitForBit)
{
    for (int side = 1; side < 100; ++side) { // sides such as 49, whose inverse is not exact
        const Star star = randomStar(side, 3, 3);
        const Star same = scaled(star, 1, 1);
        EXPECT_EQ(same.sprite, star.sprite) << side;
        EXPECT_EQ(same.alpha, star.alpha) << side;
        EXPECT_EQ(same.boxW, side);
    }
}

TEST(ScaleSprites, PlaceBoxAndRestFollow)
{
    const Star star = randomStar(12, 9, 3);
    const Star half = scaled(star, 0.5, 0.25);
    EXPECT_EQ(half.x, 20.125);
    EXPECT_EQ(half.y, 7.875);
    EXPECT_EQ(half.boxX, 17); // 16.5 goes away from zero
    EXPECT_EQ(half.boxY, 6);
    EXPECT_EQ(half.boxW, 6);
    EXPECT_EQ(half.boxH, 2);
    EXPECT_EQ(half.depth, star.depth);
    EXPECT_EQ(half.peak, star.peak);
    EXPECT_EQ(half.distancePc, star.distancePc);
    EXPECT_EQ(half.channels, 3);
    EXPECT_EQ(scaled(star, 0.01, 0.01).sprite.size(), 3u);
}

TEST(ScaleSprites, WholeRatiosKeepTheFluxPerAreaAndEnlargingRepeats)
{
    const Star star = randomStar(24, 16, 3);
    for (const int by : {2, 4, 8}) {
        const Star small = scaled(star, 1.0 / by, 1.0 / by);
        EXPECT_NEAR(mean(small.sprite), mean(star.sprite), 1e-6);
        EXPECT_NEAR(mean(small.alpha), mean(star.alpha), 1e-6);
    }
    const Star large = scaled(star, 3, 2);
    for (int j = 0; j < 32; ++j)
        for (int i = 0; i < 72; ++i)
            EXPECT_EQ(large.alpha[static_cast<std::size_t>(j * 72 + i)],
                      star.alpha[static_cast<std::size_t>(j / 2 * 24 + i / 3)]);
}

TEST(ScaleSprites, UnevenRatiosAverageEveryPixelTouched)
{
    Star star = randomStar(5, 1, 1);
    star.sprite = {1, 2, 4, 8, 16};
    // Thirds of five pixels: 0 to 1.67, 1.67 to 3.33, 3.33 to 5.
    EXPECT_EQ(scaled(star, 0.6, 1).sprite, (std::vector<float>{1.5f, 14.0f / 3, 12}));
}

TEST(ScaleSprites, AQuarterSizeStarKeepsItsRadiusInTheFrame)
{
    Star star = randomStar(64, 64, 1);
    const auto radius = [](const Star& s) {
        double flux = 0;
        double moment = 0;
        for (int j = 0; j < s.boxH; ++j)
            for (int i = 0; i < s.boxW; ++i) {
                const double v = double(s.sprite[static_cast<std::size_t>(j * s.boxW + i)]);
                flux += v;
                moment +=
                    v * (std::pow(i + 0.5 - s.boxW * 0.5, 2) + std::pow(j + 0.5 - s.boxH * 0.5, 2));
            }
        return std::sqrt(moment / flux);
    };
    for (int j = 0; j < 64; ++j)
        for (int i = 0; i < 64; ++i)
            star.sprite[static_cast<std::size_t>(j * 64 + i)] = static_cast<float>(
                std::exp(-(std::pow(i - 31.5, 2) + std::pow(j - 31.5, 2)) / 200));
    EXPECT_NEAR(radius(scaled(star, 0.25, 0.25)), radius(star) / 4, radius(star) / 4 * 0.02);
}

TEST(ScaleSprites, BadScalesGiveNoneAndBadRecordsNoSprite)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const int huge = std::numeric_limits<int>::max();
    std::vector<Star> stars{randomStar(4, 4, 3)};
    for (const double bad : {0.0, -1.0, nan}) {
        std::vector<Star> out = stars;
        zre::scaleStarSprites(stars, bad, 1, out);
        EXPECT_TRUE(out.empty());
        out = stars;
        zre::scaleStarSprites(stars, 1, bad, out);
        EXPECT_TRUE(out.empty());
    }
    Star torn = stars[0];
    torn.sprite.pop_back();
    Star boxless = stars[0];
    boxless.boxW = 0;
    Star vast = stars[0];
    vast.boxX = vast.boxY = vast.boxW = vast.boxH = huge;
    for (const Star& star : {scaled(torn, 0.5, 0.5), scaled(boxless, 0.5, 0.5), scaled(vast, 7, 7),
                             scaled(stars[0], 1e300, 1e300)}) {
        EXPECT_EQ(star.boxW, 0);
        EXPECT_EQ(star.boxH, 0);
        EXPECT_TRUE(star.sprite.empty());
        EXPECT_TRUE(star.alpha.empty());
    }
    Star uncovered = stars[0];
    uncovered.alpha.pop_back();
    EXPECT_EQ(scaled(uncovered, 0.5, 0.5).sprite.size(), 12u);
    EXPECT_TRUE(scaled(uncovered, 0.5, 0.5).alpha.empty());
    Star channelless = randomStar(4, 4, 1);
    channelless.channels = 0;
    EXPECT_EQ(scaled(channelless, 0.5, 0.5).sprite, scaled(randomStar(4, 4, 1), 0.5, 0.5).sprite);
    zre::scaleStarSprites(stars, 0.5, 0.5, stars); // onto itself
    EXPECT_EQ(stars.at(0).boxW, 2);
}

} // namespace
