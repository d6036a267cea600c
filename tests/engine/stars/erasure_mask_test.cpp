#include "engine/stars/erasure_mask.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

using zre::ErasureMask;
using zre::Star;
using zre::StarErasure;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::vector<StarErasure> scattered(int count, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(0.0, 40.0);
    std::uniform_real_distribution<double> size(0.0, 6.0);
    std::vector<StarErasure> erasures;
    for (int i = 0; i < count; ++i)
        erasures.push_back({place(random), place(random), size(random), i % 4 ? size(random) : 0.0,
                            static_cast<int>(random() % 3)});
    return erasures;
}

double fall(const StarErasure& e, double x, double y)
{
    const double beyond = std::hypot(x - e.x, y - e.y) - e.radius;
    if (beyond <= 0.0 || e.feather == 0.0)
        return beyond <= 0.0 ? 1.0 : 0.0;
    const double t = std::clamp(1.0 - beyond / e.feather, 0.0, 1.0);
    return 3.0 * t * t - 2.0 * t * t * t;
}

Star square(int side)
{
    Star star;
    star.boxX = 10;
    star.boxY = 20;
    star.boxW = star.boxH = side;
    star.channels = 3;
    star.depth = 0.5f;
    star.alpha.assign(static_cast<std::size_t>(side) * side, 0.5f);
    star.sprite.assign(star.alpha.size() * 3, 0.8f);
    return star;
}

} // namespace

TEST(ErasureMask, CoverageIsTheMaximumOverTheDiscsOfItsKind)
{
    const auto erasures = scattered(60, 3);
    ErasureMask mask(erasures);
    mask.select(-100.0, -100.0, 300.0, 300.0);
    for (double y = -3.0; y < 45.0; y += 0.75)
        for (double x = -3.0; x < 45.0; x += 0.75) {
            double expected[3] = {};
            bool inside = false;
            for (const StarErasure& e : erasures) {
                double& kind = expected[e.mode];
                kind = std::max(kind, fall(e, x, y));
                inside |= std::hypot(x - e.x, y - e.y) <= e.radius;
            }
            double remove = 9.0;
            double keepBack = 9.0;
            double blend = 9.0;
            mask.coverageAt(x, y, remove, keepBack, &blend);
            ASSERT_NEAR(remove, std::max(expected[0], expected[1]), 1e-9) << x << ' ' << y;
            ASSERT_NEAR(keepBack, expected[1], 1e-9) << x << ' ' << y;
            ASSERT_NEAR(blend, expected[2], 1e-9) << x << ' ' << y;
            ASSERT_EQ(mask.covers(x, y), inside) << x << ' ' << y;
        }
}

TEST(ErasureMask, SelectsWhatCanReachTheBoxAndForgetsTheLastSelection)
{
    const auto erasures = scattered(200, 5);
    ErasureMask mask(erasures);
    for (int i = 0; i < 20; ++i) {
        const double left = 2.0 * i;
        mask.select(left, 11.0, 3.0, 5.0);
        std::vector<std::size_t> expected;
        bool blends = false;
        for (std::size_t k = 0; k < erasures.size(); ++k) {
            const StarErasure& e = erasures[k];
            const double reach = e.radius + e.feather;
            const double dx = std::max({left - e.x, 0.0, e.x - (left + 3.0)});
            const double dy = std::max({11.0 - e.y, 0.0, e.y - 16.0});
            if (std::max(dx, dy) <= reach) {
                expected.push_back(k);
                blends |= e.mode == 2;
            }
        }
        EXPECT_EQ(mask.selected(), expected);
        EXPECT_EQ(mask.hasBlend(), blends);
    }
    const std::vector<StarErasure> touching{{10.0, 5.0, 2.0, 1.0, 0}};
    ErasureMask edge(touching);
    edge.select(13.0, 0.0, 4.0, 4.0);
    EXPECT_EQ(edge.selected().size(), 1u) << "the edges of box and square count";
    edge.select(13.001, 0.0, 4.0, 4.0);
    EXPECT_TRUE(edge.empty());
}

TEST(ErasureMask, HostileNumbersNeitherCrashNorLeaveTheRange)
{
    const std::vector<StarErasure> erasures{
        {1e308, -1e308, 1e308, 1e308, 0}, {5.0, 5.0, kNaN, 1.0, 1},
        {5.0, 5.0, 3.0, -7.0, 0},         {kNaN, 5.0, 3.0, 1.0, 2},
        {5.0, 5.0, kInfinity, 1.0, 1},    {5.0, 5.0, 1.0, kInfinity, 2},
        {5.0, 5.0, -3.0, 1.0, 99},        {kInfinity, 0.0, kInfinity, kInfinity, 0}};
    ErasureMask mask(erasures);
    for (const double at : {0.0, 5.0, -1e300, 1e300, kNaN, kInfinity}) {
        mask.select(at, at, 10.0, 10.0);
        mask.covers(at, at);
        double remove = -1.0;
        double keepBack = -1.0;
        double blend = -1.0;
        mask.coverageAt(at, at, remove, keepBack, &blend);
        for (const double coverage : {remove, keepBack, blend})
            EXPECT_TRUE(coverage >= 0.0 && coverage <= 1.0) << at << ' ' << coverage;
        Star star = square(6);
        zre::applyErasureToSprite(star, mask);
        for (const float alpha : star.alpha)
            EXPECT_TRUE(alpha >= 0.0f && alpha <= 0.5f);
    }
    const std::vector<StarErasure> hardEdge{{5.0, 5.0, 3.0, -7.0, 0}, {20.0, 5.0, -3.0, 1.0, 0}};
    ErasureMask hard(hardEdge);
    hard.select(3.0, 3.0, 30.0, 3.0);
    EXPECT_FALSE(hard.covers(20.0, 5.0)) << "a negative radius covers nothing";
}

TEST(ApplyErasure, TakesLightAndCoverageAndKeepsTheRest)
{
    const std::vector<StarErasure> erasures{{10.0, 20.0, 2.0, 0.0, 0}, {15.0, 25.0, 3.0, 0.0, 2}};
    ErasureMask mask(erasures);
    mask.select(10.0, 20.0, 6.0, 6.0);
    Star star = square(6);
    zre::applyErasureToSprite(star, mask);
    EXPECT_FALSE(star.erased);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 6; ++x) {
            const std::size_t at = static_cast<std::size_t>(6 * y + x);
            const bool gone = x * x + y * y <= 4;
            EXPECT_EQ(star.alpha[at], gone ? 0.0f : 0.5f) << x << ' ' << y;
            EXPECT_EQ(star.sprite[3 * at + 2], gone ? 0.0f : 0.8f) << x << ' ' << y;
        }
}

TEST(ApplyErasure, ErasesAStarOnlyWhenNothingOfItIsLeft)
{
    struct Case
    {
        double radius;
        int mode;
        bool erased;
    };
    for (const Case& c :
         {Case{20.0, 0, true}, Case{20.0, 1, true}, Case{20.0, 2, false}, Case{4.0, 0, false}}) {
        const std::vector<StarErasure> erasures{{12.0, 22.0, c.radius, 1.0, c.mode}};
        ErasureMask mask(erasures);
        mask.select(10.0, 20.0, 9.0, 9.0);
        Star star = square(9);
        zre::applyErasureToSprite(star, mask);
        EXPECT_EQ(star.erased, c.erased) << c.radius << ' ' << c.mode;
        EXPECT_EQ(star.depth, c.erased ? -1.0f : 0.5f);
        EXPECT_EQ(star.alpha.empty(), c.erased);
        EXPECT_EQ(star.sprite.empty(), c.erased);
        EXPECT_EQ(star.boxW, 9);
    }
}
