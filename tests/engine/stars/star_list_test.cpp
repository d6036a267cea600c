#include "engine/stars/star_list.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "engine/stars/residual_stats.h"

using zre::Star;

namespace {

std::vector<Star> starsOf(const std::vector<float>& peaks)
{
    std::vector<Star> stars(peaks.size());
    for (std::size_t i = 0; i < peaks.size(); ++i) {
        stars[i].peak = peaks[i];
        stars[i].x = static_cast<double>(i);
    }
    return stars;
}

std::vector<int> places(const std::vector<Star>& stars)
{
    std::vector<int> xs;
    for (const Star& star : stars)
        xs.push_back(static_cast<int>(star.x));
    return xs;
}

} // namespace

TEST(CapStars, KeepsTheBrightestInTheirOrderWithTies)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    struct Case
    {
        std::vector<float> peaks;
        int cap;
        std::vector<int> kept;
    };
    const std::vector<Case> cases{{{5, 1, 4, 2, 3}, 2, {0, 2}},
                                  {{3, 3, 1, 3, 9}, 2, {0, 1, 3, 4}},
                                  {{5, 1, 4}, 0, {0, 1, 2}},
                                  {{5, 1, 4}, -7, {0, 1, 2}},
                                  {{5, 1, 4}, 3, {0, 1, 2}},
                                  {{nan, 1, nan, 4}, 1, {3}},
                                  {{}, 1, {}}};
    for (const Case& c : cases) {
        std::vector<Star> stars = starsOf(c.peaks);
        zre::capStarsByBrightness(stars, c.cap);
        EXPECT_EQ(places(stars), c.kept) << c.cap;
    }
}

TEST(SpliceStars, EachFreshStarTakesTheNearestPlaceAndKeepsItsDepth)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<double> place(0.0, 30.0);
    std::uniform_real_distribution<double> step(-0.6, 0.6);
    std::vector<Star> stars(400);
    for (std::size_t i = 0; i < stars.size(); ++i) {
        stars[i].x = place(random);
        stars[i].y = place(random);
        stars[i].depth = 0.1f + 0.001f * static_cast<float>(i);
        stars[i].distancePc = static_cast<float>(i);
    }
    std::vector<Star> fresh;
    for (std::size_t i = 0; i < stars.size(); i += 7) {
        Star star;
        star.x = stars[i].x + step(random);
        star.y = stars[i].y + step(random);
        star.peak = 1.0f + static_cast<float>(i);
        star.alpha = {0.25f};
        star.erased = true;
        fresh.push_back(star);
    }
    std::vector<Star> expected = stars;
    std::size_t replaced = 0;
    for (const Star& star : fresh) {
        std::size_t best = 0;
        const auto distance = [&](const Star& other) {
            return std::hypot(star.x - other.x, star.y - other.y);
        };
        for (std::size_t i = 1; i < stars.size(); ++i)
            if (distance(stars[i]) < distance(stars[best]))
                best = i;
        if (distance(stars[best]) >= 0.5)
            continue;
        replaced += expected[best].peak == 0.0f;
        const Star old = expected[best];
        expected[best] = star;
        expected[best].depth = old.depth;
        expected[best].distancePc = old.distancePc;
    }
    ASSERT_GT(replaced, 20u);
    ASSERT_LT(replaced, fresh.size());
    EXPECT_EQ(zre::spliceStarsByCentroid(stars, fresh), replaced);
    EXPECT_TRUE(stars == expected);
}

TEST(SpliceStars, PlacesThatAreNoNumbersMatchNothing)
{
    std::vector<Star> stars = starsOf({1, 1, 1});
    stars[0].y = stars[1].x = std::numeric_limits<double>::quiet_NaN();
    std::vector<Star> fresh = stars;
    fresh[2].x = std::numeric_limits<double>::infinity();
    EXPECT_EQ(zre::spliceStarsByCentroid(stars, fresh), 0u);
    EXPECT_EQ(zre::spliceStarsByCentroid(stars, {}), 0u);
}

TEST(ResidualStats, QuantilesOfTheBinsWhateverTheStars)
{
    struct Case
    {
        std::vector<float> values;
        double median;
        double sigma;
    };
    std::vector<float> ramp(10240);
    for (std::size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = static_cast<float>(i) / static_cast<float>(ramp.size());
    std::vector<float> starry(1000, 0.25f);
    std::fill_n(starry.begin(), 150, 30.0f);
    const double bin = 1.0 / 1024.0;
    const std::vector<Case> cases{{{}, 0.5 * bin, 1e-5},
                                  {{0.7f}, 0.5 * bin, 1e-5},
                                  {{0.7f, 0.7f}, (716 + 0.5) * bin, 1e-5},
                                  {ramp, (511 + 0.5) * bin, (861 - 511) * bin},
                                  {starry, (256 + 0.5) * bin, 1e-5},
                                  {std::vector<float>(9, -4.0f), 0.5 * bin, 1e-5},
                                  {std::vector<float>(9, 4.0f), 1023.5 * bin, 1e-5}};
    for (const Case& c : cases) {
        double median = -1.0;
        double sigma = -1.0;
        zre::residualStats(c.values, median, sigma);
        EXPECT_DOUBLE_EQ(median, c.median) << c.values.size();
        EXPECT_DOUBLE_EQ(sigma, c.sigma) << c.values.size();
    }
}
