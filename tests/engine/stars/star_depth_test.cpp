#include "engine/stars/star_depth.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/support/testkit.h"

using zre::Image;
using zre::Star;
using zre::StarDepthParams;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr double kHuge = 1e300;

Star starAt(double x, double y, float peak = 0.5f)
{
    Star star;
    star.x = x;
    star.y = y;
    star.peak = peak;
    return star;
}

std::vector<Star> rowOfStars(const std::vector<float>& peaks)
{
    std::vector<Star> stars;
    for (const float peak : peaks)
        stars.push_back(starAt(0, 0, peak));
    return stars;
}

std::vector<float> depthsOf(const Image& map, std::vector<Star> stars,
                            const StarDepthParams& params)
{
    zre::assignStarDepths(map, stars, params);
    std::vector<float> depths;
    for (const Star& star : stars)
        depths.push_back(star.depth);
    return depths;
}

int drawn(const std::vector<float>& depths)
{
    return static_cast<int>(
        std::count_if(depths.begin(), depths.end(), [](float d) { return d >= 0.0f; }));
}

StarDepthParams flat(float plane, float floatation, float pop)
{
    StarDepthParams params;
    params.mode = 0;
    params.plane = plane;
    params.floatation = floatation;
    params.pop = pop;
    return params;
}

/// Columns of different depth, so that the depth read tells the pixel read.
Image stairs()
{
    Image map(5, 3, 0);
    for (std::size_t i = 0; i < map.data.size(); ++i)
        map.data[i] = static_cast<float>(i) / 32.0f;
    return map;
}

TEST(StarDepth, StandsBetweenTheSceneAndThePlaneAndIsLiftedTowardOne)
{
    const std::vector<Star> star{starAt(1, 1)};
    const float scene = 6.0f / 32.0f;
    struct Case
    {
        StarDepthParams params;
        float depth;
    };
    for (const Case& c : {Case{flat(0.7f, 1, 0), 0.7f}, Case{flat(0.7f, 0, 0), scene},
                          Case{flat(0.3f, 0.4f, 1), 1.0f}, Case{flat(0.5f, 1, 0.5f), 0.75f},
                          Case{flat(0.5f, 0.5f, 0), 0.5f * (0.5f + scene)},
                          Case{flat(7, 9, -3), 1.0f}, Case{flat(-7, 9, -3), 0.0f}})
        EXPECT_EQ(depthsOf(stairs(), star, c.params).front(), c.depth);
}

TEST(StarDepth, ReadsThePixelNearestToTheStarAndTheEdgeBeyondIt)
{
    struct Case
    {
        double x;
        double y;
        int column;
        int row;
    };
    for (const Case& c : {Case{2, 1, 2, 1}, Case{2.49, 1.49, 2, 1}, Case{2.5, 1.5, 3, 2},
                          Case{-0.7, -0.2, 0, 0}, Case{-3, -kHuge, 0, 0}, Case{4.6, 2.5, 4, 2},
                          Case{kHuge, 99, 4, 2}, Case{double(kNan), 1, 0, 1}}) {
        const float expected = static_cast<float>(c.row * 5 + c.column) / 32.0f;
        std::vector<Star> stars{starAt(c.x, c.y)};
        EXPECT_EQ(depthsOf(stairs(), stars, flat(0, 0, 0)).front(), expected) << c.x << " " << c.y;
        zre::assignStarDepths(stairs(), stars, 0.25);
        EXPECT_FLOAT_EQ(stars.front().depth, expected + 0.25f * (1 - expected));
    }
}

TEST(StarDepth, BrightStarsStandNearerWithinTheRange)
{
    StarDepthParams params = flat(0.5f, 1, 0);
    params.mode = 1;
    params.range = 0.5f;
    EXPECT_EQ(depthsOf(stairs(), rowOfStars({0, 0.25f, 0.5f, 1, -4, 9, kNan}), params),
              (std::vector<float>{0.25f, 0.375f, 0.5f, 0.75f, 0.25f, 0.75f, 0.25f}));
    params.range = 4;
    EXPECT_EQ(depthsOf(stairs(), rowOfStars({0, 1}), params), (std::vector<float>{0, 1}));
}

TEST(StarDepth, ScatteringDependsOnThePlaceInTheListAloneAndCoversTheRangeEvenly)
{
    StarDepthParams params = flat(0.5f, 1, 0);
    params.mode = 2;
    params.range = 1;
    std::vector<Star> stars(1000);
    const std::vector<float> depths = depthsOf(stairs(), stars, params);
    EXPECT_EQ(depths[0], 0.0f);
    EXPECT_FLOAT_EQ(depths[1], 0x3779 / 65535.0f); // bits 8 to 23 of 0x9E3779B1
    for (int i = 0; i < 1000; i += 3)
        stars[static_cast<std::size_t>(i)].erased = true;
    const std::vector<float> thinned = depthsOf(stairs(), stars, params);
    std::vector<int> tenths(10);
    for (std::size_t i = 0; i < depths.size(); ++i) {
        EXPECT_EQ(thinned[i], i % 3 == 0 ? -1.0f : depths[i]);
        ++tenths[std::min<std::size_t>(9, static_cast<std::size_t>(depths[i] * 10))];
    }
    for (const int count : tenths)
        EXPECT_NEAR(count, 100, 35);
}

TEST(StarDepth, OnlyTheBrightestAreDrawnAndTiesAtTheCutAll)
{
    StarDepthParams params = flat(0.5f, 1, 0);
    const std::vector<Star> ten =
        rowOfStars({0.1f, 0.2f, 0.9f, 0.4f, 0.5f, 0.6f, 0.7f, 0.3f, 0.8f, 0.05f});
    for (const int most : {0, -5, 10, 11})
        EXPECT_EQ(drawn(depthsOf(stairs(), ten, (params.maxRendered = most, params))), 10);
    params.maxRendered = 1;
    const std::vector<float> one = depthsOf(stairs(), ten, params);
    EXPECT_EQ(drawn(one), 1);
    EXPECT_EQ(one[2], 0.5f);
    EXPECT_EQ(std::count(one.begin(), one.end(), -1.0f), 9);
    EXPECT_EQ(drawn(depthsOf(stairs(), rowOfStars({3, 5, 5, 5, 1, kNan}), params)), 3);

    std::vector<Star> mostlyErased = ten;
    for (std::size_t i = 0; i < 8; ++i)
        mostlyErased[i].erased = true;
    params.maxRendered = 2; // as many as are left
    EXPECT_EQ(drawn(depthsOf(stairs(), mostlyErased, params)), 2);
    params.maxRendered = 1;
    EXPECT_EQ(depthsOf(stairs(), mostlyErased, params)[8], 0.5f);
}

TEST(StarDepth, WildNumbersGiveDepthsInRangeAndAnEmptyMapNone)
{
    for (const float wild : {kNan, std::numeric_limits<float>::infinity(), -1e30f})
        for (int mode = -1; mode < 5; ++mode) {
            StarDepthParams params{mode, wild, wild, wild, wild, 1};
            Image map = stairs();
            map.data[0] = wild;
            for (const float depth : depthsOf(map, rowOfStars({wild, 1, 1}), params))
                EXPECT_TRUE(depth == -1.0f || (depth >= 0.0f && depth <= 1.0f)) << depth;
        }
    EXPECT_EQ(depthsOf(Image(), rowOfStars({1}), {}).front(), 0.5f);
    Image noChannel = stairs();
    noChannel.channels = 0;
    EXPECT_EQ(depthsOf(noChannel, rowOfStars({1}), {}).front(), 0.5f);
}

TEST(StarDepth, TheShortFormLiftsFromTheSceneAndHidesErasedStars)
{
    std::vector<Star> stars(2, starAt(2, 2));
    stars[1].erased = true;
    struct Case
    {
        double lift;
        float depth;
    };
    for (const Case& c : {Case{0, 0.375f}, Case{0.5, 0.6875f}, Case{1, 1}, Case{7, 1},
                          Case{-7, 0.375f}, Case{double(kNan), 0.375f}}) {
        zre::assignStarDepths(stairs(), stars, c.lift);
        EXPECT_EQ(stars[0].depth, c.depth);
        EXPECT_EQ(stars[1].depth, -1.0f);
    }
}

} // namespace
