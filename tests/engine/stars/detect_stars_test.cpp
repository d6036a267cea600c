#include "engine/stars/detect_stars.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "engine/demo/demo_scene.h"
#include "tests/engine/stars/naive_detect.h"
#include "tests/engine/stars/star_quality.h"
#include "tests/support/testkit.h"

using zre::Image;
using zre::Star;
using zre::StarDetectParams;
using zre::StarErasure;

namespace {

struct Planted
{
    double x, y;
    float peak;
    double sigma;
};

void add(Image& image, const Planted& star)
{
    for (int c = 0; c < image.channels; ++c)
        for (int y = 0; y < image.height; ++y)
            for (int x = 0; x < image.width; ++x) {
                const double r2 = (x - star.x) * (x - star.x) + (y - star.y) * (y - star.y);
                image.plane(c)[y * image.width + x] += static_cast<float>(
                    star.peak * (1.0 - 0.2 * c) * std::exp(-0.5 * r2 / (star.sigma * star.sigma)));
            }
}

/// A sky of a little noise with stars on a jittered grid, the brightness scattered over it.
struct Plate
{
    Image image = zrtest::noise(320, 240, 1, 5);
    std::vector<Planted> truth;
    std::vector<Star> stars; ///< as found in it
    Image starless;

    Plate()
    {
        for (float& value : image.data)
            value = 0.1f + 0.01f * value;
        std::mt19937 random(9);
        std::uniform_real_distribution<double> jitter(-4.0, 4.0);
        for (int y = 20; y < 230; y += 40)
            for (int x = 20; x < 310; x += 40)
                truth.push_back({x + jitter(random), y + jitter(random),
                                 0.3f + 0.01f * static_cast<float>((truth.size() * 29) % 48), 1.6});
        for (const Planted& star : truth)
            add(image, star);
        zre::detectStars(image, stars, starless, {}, nullptr);
    }
};

const Star* nearest(const std::vector<Star>& stars, double x, double y, double within)
{
    for (const Star& star : stars)
        if (std::hypot(star.x - x, star.y - y) <= within)
            return &star;
    return nullptr;
}

/// Noise with stars of all sizes, some on the border, and where asked pixels that are no numbers.
Image randomField(std::mt19937& random, bool hostile)
{
    const int sizes[][2] = {{90, 70}, {37, 120}, {9, 64}, {65, 3}, {2, 9}, {1, 1}, {128, 33}};
    const auto& [w, h] = sizes[random() % std::size(sizes)];
    Image image = zrtest::noise(w, h, random() % 3 ? 1 : 0, random());
    const auto uniform = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    const float grain = static_cast<float>(uniform(0.0, 0.1));
    for (float& value : image.data)
        value = 0.1f + grain * value;
    for (int i = w * h / 150; i >= 0; --i)
        add(image, {uniform(-2.0, w + 2.0), uniform(-2.0, h + 2.0),
                    static_cast<float>(uniform(0.0, 1.5)), uniform(0.4, 4.0)});
    if (random() % 2)
        for (float& value : image.data)
            value = std::min(value, 0.7f);
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kBad[] = {std::numeric_limits<float>::quiet_NaN(), kInfinity, -kInfinity, 1e38f,
                              -1e38f};
    if (hostile)
        for (int i = 0; i < 2; ++i)
            image.data[random() % image.data.size()] = kBad[random() % std::size(kBad)];
    return image;
}

std::vector<StarErasure> randomErasures(std::mt19937& random, const Image& image)
{
    const double kNaN = std::numeric_limits<double>::quiet_NaN();
    std::vector<StarErasure> erasures{{1e300, 1e300, 3.0, 1.0, 0},
                                      {5.0, 5.0, kNaN, 1.0, 1},
                                      {-1e18, 5.0, 2e18, 0.0, 2},
                                      {9.0, 9.0, 4.0, -3.0, 0}};
    for (int i = 0; i < 12; ++i)
        erasures.push_back({static_cast<double>(random() % unsigned(image.width)),
                            static_cast<double>(random() % unsigned(image.height)),
                            static_cast<double>(random() % 9), static_cast<double>(random() % 4),
                            static_cast<int>(random() % 3)});
    return erasures;
}

} // namespace

TEST(DetectStars, AgreesWithThePlainFormOnRandomFields)
{
    std::mt19937 random(77);
    std::size_t found = 0;
    std::size_t erased = 0;
    for (int round = 0; round < 200; ++round) {
        const Image image = randomField(random, round % 3 == 2);
        StarDetectParams params;
        params.backgroundScale = 1.0f + static_cast<float>(random() % 12);
        params.thresholdSigma = 1.0f + static_cast<float>(random() % 7);
        params.minPeak = round % 2 ? 0.1f : 0.0f;
        params.maxRadius = 1 + static_cast<int>(random() % 14);
        params.softEdges = round % 5 != 0;
        params.edgeGlow = 0.5f * static_cast<float>(random() % 5);
        params.maxStars = round % 4 ? 2000000 : 5;
        std::vector<StarErasure> erasures;
        if (round % 3)
            erasures = randomErasures(random, image);
        std::vector<Star> expected;
        Image expectedStarless;
        naive::detectStars(image, expected, expectedStarless, params, erasures);
        std::vector<Star> stars(3);
        Image starless(5, 5, 1);
        zre::detectStars(image, stars, starless, params, erasures.empty() ? nullptr : &erasures);
        ASSERT_TRUE(stars == expected) << "round " << round;
        ASSERT_TRUE(zrtest::imagesNear(starless, expectedStarless, 0.0)) << "round " << round;
        found += stars.size();
        erased += static_cast<std::size_t>(
            std::count_if(stars.begin(), stars.end(), [](const Star& s) { return s.erased; }));
    }
    EXPECT_GT(found, 400u);
    EXPECT_GT(erased, 5u);
}

TEST(DetectStars, FindsEveryPlantedStarInRasterOrder)
{
    const Plate plate;
    EXPECT_EQ(plate.stars.size(), plate.truth.size());
    for (const Planted& star : plate.truth) {
        const Star* found = nearest(plate.stars, star.x, star.y, 0.1);
        ASSERT_TRUE(found) << star.x << ' ' << star.y;
        EXPECT_EQ(found->depth, 0.5f);
        EXPECT_NEAR(found->peak, star.peak, 0.2f * star.peak);
    }
    for (std::size_t i = 1; i < plate.stars.size(); ++i)
        EXPECT_GT(plate.stars[i].y, plate.stars[i - 1].y - 1.0) << i;
}

TEST(DetectStars, TheCapKeepsTheBrightestQuarterAllOverTheFrame)
{
    const Plate plate;
    StarDetectParams params;
    params.maxStars = static_cast<int>(plate.stars.size() / 4);
    std::vector<Star> kept;
    Image starless;
    zre::detectStars(plate.image, kept, starless, params, nullptr);
    ASSERT_EQ(kept.size(), plate.stars.size() / 4);
    EXPECT_TRUE(zrtest::imagesNear(starless, plate.starless, 0.0));
    float faintest = 9.0f;
    int quadrants[2][2] = {};
    for (const Star& star : kept) {
        faintest = std::min(faintest, star.peak);
        ++quadrants[star.y > 120.0][star.x > 160.0];
    }
    for (const Star& star : plate.stars)
        if (!nearest(kept, star.x, star.y, 0.0)) {
            EXPECT_LT(star.peak, faintest);
        }
    for (const auto& row : quadrants)
        for (const int count : row)
            EXPECT_GT(count, 0);
}

TEST(DetectStars, NearlyAllLightThatLeavesTheBaseStandsInTheSprites)
{
    // Not all: base and sprite fade out along different curves at a star's rim.
    const Plate plate;
    double taken = 0.0;
    double shown = 0.0;
    for (std::size_t i = 0; i < plate.image.data.size(); ++i)
        taken += static_cast<double>(plate.image.data[i] - plate.starless.data[i]);
    for (const Star& star : plate.stars)
        for (std::size_t i = 0; i < star.sprite.size(); ++i)
            shown += static_cast<double>(star.sprite[i] * star.alpha[i / 3]);
    EXPECT_GT(taken, 100.0);
    EXPECT_NEAR(shown / taken, 1.0, 0.1);
}

TEST(DetectStars, AKnotTooWideYieldsNothingAndNoPeakInItRevives)
{
    Image image(120, 120, 0);
    add(image, {60.0, 60.0, 0.8f, 9.0});
    add(image, {50.0, 66.0, 0.3f, 1.5});
    add(image, {70.0, 70.0, 0.3f, 1.5});
    StarDetectParams params;
    params.backgroundScale = 40.0f;
    std::vector<Star> stars;
    Image starless;
    zre::detectStars(image, stars, starless, params, nullptr);
    EXPECT_TRUE(stars.empty());
    EXPECT_TRUE(zrtest::imagesNear(starless, image, 0.0));
    params.maxRadius = 60;
    zre::detectStars(image, stars, starless, params, nullptr);
    EXPECT_EQ(stars.size(), 1u);
}

TEST(DetectStars, APlateauSeedsOnceAndAFloorOfZeroKeepsTheFaint)
{
    Image image(64, 48, 0);
    for (int y = 20; y < 24; ++y)
        for (int x = 30; x < 35; ++x)
            image.data[static_cast<std::size_t>(y * 64 + x)] = 0.9f;
    add(image, {12.0, 12.0, 0.04f, 1.2});
    StarDetectParams params;
    std::vector<Star> stars;
    Image starless;
    zre::detectStars(image, stars, starless, params, nullptr);
    ASSERT_EQ(stars.size(), 1u);
    EXPECT_NEAR(stars[0].x, 32.0, 0.05);
    EXPECT_NEAR(stars[0].y, 21.5, 0.05);
    params.minPeak = 0.0f;
    zre::detectStars(image, stars, starless, params, nullptr);
    EXPECT_TRUE(nearest(stars, 12.0, 12.0, 0.2));
    EXPECT_TRUE(nearest(stars, 32.0, 21.5, 0.2));
}

TEST(DetectStars, DegenerateImagesAndParametersFindNothing)
{
    const float kNaN = std::numeric_limits<float>::quiet_NaN();
    StarDetectParams hostile;
    hostile.backgroundScale = hostile.thresholdSigma = hostile.minPeak = kNaN;
    hostile.maxRadius = std::numeric_limits<int>::min();
    hostile.maxFeather = std::numeric_limits<int>::max();
    for (const auto& [w, h] : {std::pair(0, 0), std::pair(0, 9), std::pair(1, 1), std::pair(2, 9),
                               std::pair(9, 2), std::pair(40, 40)}) {
        const Image image = zrtest::noise(w, h, 1, 3);
        for (const StarDetectParams& params : {StarDetectParams{}, hostile}) {
            std::vector<Star> stars(2);
            Image starless(3, 3, 0);
            zre::detectStars(image, stars, starless, params, nullptr);
            if (std::min(w, h) < 3 || std::isnan(params.minPeak)) {
                EXPECT_TRUE(stars.empty());
                EXPECT_TRUE(zrtest::imagesNear(starless, image, 0.0));
            }
        }
    }
}

TEST(DetectStars, TwoAtOnceDoNotDisturbEachOther)
{
    const Plate plate;
    std::vector<Star> stars[2];
    Image starless[2];
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i)
        threads.emplace_back([&, i] {
            for (int round = 0; round < 3; ++round)
                zre::detectStars(plate.image, stars[i], starless[i], {}, nullptr);
        });
    for (std::thread& thread : threads)
        thread.join();
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(stars[i] == plate.stars);
        EXPECT_TRUE(zrtest::imagesNear(starless[i], plate.starless, 0.0));
    }
}

TEST(DetectStars, FindsTheStarsOfTheBuiltInSceneAndTakesThemOut)
{
    const zre::DemoScene scene = zre::makeDemoScene({.width = 1600, .height = 1067});
    std::vector<Star> stars;
    Image starless;
    zre::detectStars(scene.picture, stars, starless, {}, nullptr);
    const zrtest::StarQuality quality = zrtest::starQuality(scene, stars, starless);
    EXPECT_GT(quality.classes[2].foundShare(), 0.9);
    EXPECT_LT(quality.falseShare(), 0.1);
    EXPECT_LT(quality.classes[2].errorAfter(), 0.5 * quality.classes[2].errorBefore());
}
