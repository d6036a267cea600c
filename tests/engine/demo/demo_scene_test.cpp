#include "engine/demo/demo_scene.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/testkit.h"

namespace {

zre::DemoScene scene(int width, int height, std::uint64_t seed, int stars = -1)
{
    zre::DemoSceneOptions options;
    options.width = width;
    options.height = height;
    options.seed = seed;
    options.stars = stars;
    return zre::makeDemoScene(options);
}

// FNV-1a over the samples in 1024 steps.
std::uint64_t checksum(const zre::Image& image, std::uint64_t hash = 0xcbf29ce484222325U)
{
    for (const float value : image.data) {
        const auto level = static_cast<std::uint32_t>(value * 1023.0f + 0.5f);
        for (const std::uint32_t byte : {level & 0xffU, level >> 8}) {
            hash ^= byte;
            hash *= 0x100000001b3U;
        }
    }
    return hash;
}

float sample(const zre::Image& image, int channel, int x, int y)
{
    return image.plane(
        channel)[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                 static_cast<std::size_t>(x)];
}

double meanOfRows(const zre::Image& image, int from, int to)
{
    double sum = 0.0;
    for (int y = from; y < to; ++y)
        for (int x = 0; x < image.width; ++x)
            sum += sample(image, 0, x, y);
    return sum / (static_cast<double>(to - from) * image.width);
}

int brightestChannel(const zre::DemoStar& star)
{
    if (star.r >= star.g && star.r >= star.b)
        return 0;
    return star.g >= star.b ? 1 : 2;
}

// Stars that stand alone, do not burn out and lie well inside.
std::vector<zre::DemoStar> isolatedStars(const zre::DemoScene& s)
{
    std::vector<zre::DemoStar> alone;
    for (const zre::DemoStar& star : s.stars) {
        const bool inside = star.x > 6 && star.y > 6 && star.x < s.picture.width - 7 &&
                            star.y < s.picture.height - 7;
        const auto crowds = [&](const zre::DemoStar& other) {
            const double distance = std::hypot(other.x - star.x, other.y - star.y);
            return &other != &star && distance < 12.0 + 24.0 * other.sigma * other.peak;
        };
        if (inside && star.peak > 0.1f && star.peak < 0.7f &&
            std::none_of(s.stars.begin(), s.stars.end(), crowds))
            alone.push_back(star);
    }
    return alone;
}

TEST(DemoScene, TheSameSeedGivesTheSameBitsAndAnotherSeedAnotherScene)
{
    const zre::DemoScene a = scene(120, 80, 5);
    const zre::DemoScene b = scene(120, 80, 5);
    const zre::DemoScene c = scene(120, 80, 6);
    EXPECT_TRUE(zrtest::imagesNear(a.picture, b.picture, 0.0));
    EXPECT_TRUE(zrtest::imagesNear(a.starless, b.starless, 0.0));
    EXPECT_TRUE(zrtest::imagesNear(a.depth, b.depth, 0.0));
    EXPECT_FALSE(zrtest::imagesNear(a.starless, c.starless, 0.1));
    EXPECT_FALSE(zrtest::imagesNear(a.depth, c.depth, 0.1));
}

TEST(DemoScene, EveryProcessorPaintsWhatTheFirstOnePainted)
{
    const zre::DemoScene s = scene(96, 64, 7);
    EXPECT_EQ(checksum(s.depth, checksum(s.picture)), 0xe664be88fa0e59ecU);
}

TEST(DemoScene, LargePicturesShowTheSceneOfSmallOnes)
{
    const zre::DemoScene small = scene(160, 100, 3, 0);
    const zre::DemoScene large = scene(3840, 2400, 3, 0); // painted on a coarser grid
    double sum = 0.0;
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 160; ++x)
            sum += std::fabs(sample(small.depth, 0, x, y) -
                             sample(large.depth, 0, 24 * x + 12, 24 * y + 12));
    EXPECT_LT(sum / (160 * 100), 0.02);
}

TEST(DemoScene, WithoutStarsThePictureIsTheStarlessOne)
{
    const zre::DemoScene none = scene(200, 140, 2, 0);
    const zre::DemoScene some = scene(200, 140, 2, 300);
    EXPECT_TRUE(none.stars.empty());
    EXPECT_TRUE(zrtest::imagesNear(none.picture, none.starless, 0.0));
    EXPECT_TRUE(zrtest::imagesNear(some.starless, none.starless, 0.0));
    EXPECT_TRUE(zrtest::imagesNear(some.depth, none.depth, 0.0));
}

TEST(DemoScene, ListedStarsStandWhereTheyAreListedAndAsHigh)
{
    const zre::DemoScene s = scene(1200, 800, 4, 300);
    const std::vector<zre::DemoStar> alone = isolatedStars(s);
    ASSERT_GE(alone.size(), 15U);
    for (const zre::DemoStar& star : alone) {
        const int c = brightestChannel(star);
        const int x0 = static_cast<int>(std::lround(star.x));
        const int y0 = static_cast<int>(std::lround(star.y));
        double sum = 0.0;
        double sumX = 0.0;
        double sumY = 0.0;
        for (int y = y0 - 3; y <= y0 + 3; ++y)
            for (int x = x0 - 3; x <= x0 + 3; ++x) {
                const double light = sample(s.picture, c, x, y) - sample(s.starless, c, x, y);
                sum += light;
                sumX += light * x;
                sumY += light * y;
            }
        EXPECT_NEAR(sumX / sum, star.x, 0.25);
        EXPECT_NEAR(sumY / sum, star.y, 0.25);
        const double away = std::pow(x0 - star.x, 2) + std::pow(y0 - star.y, 2);
        const double gauss = std::exp(-away / (2.0 * star.sigma * star.sigma));
        const double light = sample(s.picture, c, x0, y0) - sample(s.starless, c, x0, y0);
        EXPECT_NEAR(light, star.peak * gauss, 0.12 * star.peak);
    }
}

TEST(DemoScene, TheLightAddedIsThatOfTheListedStars)
{
    for (const std::uint64_t seed : {1U, 2U, 3U}) {
        const zre::DemoScene s = scene(700, 500, seed);
        double added = 0.0;
        for (std::size_t i = 0; i < s.picture.data.size(); ++i) {
            ASSERT_GE(s.picture.data[i], s.starless.data[i]);
            added += s.picture.data[i] - s.starless.data[i];
        }
        double listed = 0.0; // of the cores alone: halos add to it, borders and burnt cores take
        for (const zre::DemoStar& star : s.stars)
            listed += 6.2831853 * star.sigma * star.sigma * star.peak * (star.r + star.g + star.b);
        EXPECT_GT(added, 0.7 * listed);
        EXPECT_LT(added, 1.6 * listed);
    }
}

TEST(DemoScene, TheNumberOfStarsIsTheOneAskedForOrSuitsTheSize)
{
    for (const int count : {0, 1, 39, 137})
        EXPECT_EQ(scene(100, 100, 1, count).stars.size(), static_cast<std::size_t>(count));
    const double small = static_cast<double>(scene(200, 200, 1).stars.size());
    const double large = static_cast<double>(scene(800, 400, 1).stars.size());
    EXPECT_NEAR(large / small, 8.0, 0.2);
}

TEST(DemoScene, ManyStarsAreFaintAndFewAreBright)
{
    const zre::DemoScene s = scene(1000, 700, 1);
    const auto brighter = [&](float peak) {
        return std::count_if(s.stars.begin(), s.stars.end(),
                             [&](const zre::DemoStar& star) { return star.peak > peak; });
    };
    EXPECT_GT(brighter(0.05f), 3 * brighter(0.3f));
    EXPECT_GT(brighter(0.3f), 3 * brighter(0.9f));
    EXPECT_GE(brighter(0.9f), 5);
}

TEST(DemoScene, TheCloudInFrontIsNearAndHidesStars)
{
    for (const std::uint64_t seed : {1U, 2U, 3U, 4U}) {
        const zre::DemoScene s = scene(600, 400, seed, 3000);
        EXPECT_GT(meanOfRows(s.depth, 390, 400), meanOfRows(s.depth, 0, 200) + 0.3);
        double cloudPixels = 0.0;
        for (const float depth : s.depth.data)
            cloudPixels += depth > 0.9f ? 1.0 : 0.0;
        double cloudStars = 0.0;
        for (const zre::DemoStar& star : s.stars)
            cloudStars += sample(s.depth, 0, std::clamp(static_cast<int>(star.x + 0.5), 0, 599),
                                 std::clamp(static_cast<int>(star.y + 0.5), 0, 399)) > 0.9f &&
                                  star.peak > 0.05f
                              ? 1.0
                              : 0.0;
        ASSERT_GT(cloudPixels, 0.02 * 600 * 400);
        EXPECT_LT(cloudStars / cloudPixels, 0.3 * 3000.0 / (600 * 400));
    }
}

TEST(DemoScene, DepthSpansNearAndFar)
{
    for (const std::uint64_t seed : {1U, 2U, 3U, 4U}) {
        std::vector<float> depth = scene(320, 210, seed).depth.data;
        std::sort(depth.begin(), depth.end());
        EXPECT_GE(depth.front(), 0.0f);
        EXPECT_LE(depth.back(), 1.0f);
        EXPECT_LT(depth[depth.size() / 20], 0.2f);
        EXPECT_GT(depth[depth.size() * 24 / 25], 0.8f);
    }
}

TEST(DemoScene, TheSkyIsDarkAndTheNebulaKeepsItsColours)
{
    for (const std::uint64_t seed : {1U, 2U, 3U, 4U}) {
        const zre::DemoScene s = scene(320, 210, seed);
        const std::size_t plane = s.starless.pixelCount();
        std::vector<float> red(s.starless.data.begin(),
                               s.starless.data.begin() + static_cast<std::ptrdiff_t>(plane));
        std::sort(red.begin(), red.end());
        EXPECT_LT(red[plane / 50], 0.12f);
        EXPECT_GT(red[plane * 9 / 10], 0.3f);
        EXPECT_LT(*std::max_element(s.starless.data.begin(), s.starless.data.end()), 1.0f);
    }
}

struct SizeCase
{
    int askedWidth, askedHeight, width, height;
};

class DemoSceneSize : public testing::TestWithParam<SizeCase>
{
};

TEST_P(DemoSceneSize, EverySizeGivesAWholeScene)
{
    const SizeCase& c = GetParam();
    const zre::DemoScene s = scene(c.askedWidth, c.askedHeight, 9);
    ASSERT_EQ(s.picture.width, c.width);
    ASSERT_EQ(s.picture.height, c.height);
    ASSERT_EQ(s.picture.channels, 3);
    ASSERT_TRUE(s.starless.sameSize(s.picture));
    ASSERT_TRUE(s.depth.sameSize(s.picture));
    for (const zre::Image* image : {&s.picture, &s.starless, &s.depth})
        for (const float value : image->data)
            ASSERT_TRUE(value >= 0.0f && value <= 1.0f);
    EXPECT_TRUE(s.wcs.valid);
}

INSTANTIATE_TEST_SUITE_P(Sizes, DemoSceneSize,
                         testing::Values(SizeCase{16, 16, 16, 16}, SizeCase{-5, 0, 16, 16},
                                         SizeCase{17, 333, 17, 333}, SizeCase{99999, 16, 32768, 16},
                                         SizeCase{16, 4001, 16, 4001},
                                         SizeCase{3001, 2203, 3001, 2203}));

TEST(DemoScene, TheSolutionPutsTheCentreInMonoceros)
{
    const zre::DemoScene s = scene(401, 300, 1, 0);
    double ra = 0.0;
    double dec = 0.0;
    ASSERT_TRUE(s.wcs.centerCelestial(ra, dec));
    EXPECT_NEAR(ra, 98.0, 1e-9);
    EXPECT_NEAR(dec, 4.9, 1e-9);
    EXPECT_NEAR(s.wcs.resolutionArcsec * 401, 1.6 * 3600.0, 1e-6);
}

TEST(DemoScene, ProgressRisesToOne)
{
    std::vector<double> seen;
    zre::DemoSceneOptions options;
    options.width = 90;
    options.height = 60;
    zre::makeDemoScene(options, [&](double fraction) { seen.push_back(fraction); });
    ASSERT_GT(seen.size(), 10U);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_GE(seen.front(), 0.0);
    EXPECT_DOUBLE_EQ(seen.back(), 1.0);
}

} // namespace
