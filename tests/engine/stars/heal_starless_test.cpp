#include "engine/stars/heal_starless.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "engine/demo/demo_scene.h"
#include "engine/stars/detect_stars.h"
#include "tests/engine/stars/star_quality.h"
#include "tests/support/testkit.h"

using zre::Image;
using zre::Star;

namespace {

/// A sky that brightens towards one corner, with stars of a width that a blur cannot see past.
struct Sky
{
    Image truth = Image(200, 160, 1);
    Image picture;
    std::vector<Star> stars;
    Image starless;

    Sky()
    {
        const auto at = [](int c, int x, int y) {
            return 0.1f + 0.001f * (x + y) * (c + 1) / 3.0f;
        };
        for (int c = 0; c < 3; ++c)
            for (int y = 0; y < truth.height; ++y)
                for (int x = 0; x < truth.width; ++x)
                    truth.plane(c)[y * truth.width + x] = at(c, x, y);
        picture = truth;
        for (int c = 0; c < 3; ++c)
            for (int y = 0; y < truth.height; ++y)
                for (int x = 0; x < truth.width; ++x) {
                    const double dx = (x % 40) - 20.3;
                    const double dy = (y % 40) - 19.6;
                    picture.plane(c)[y * truth.width + x] +=
                        static_cast<float>(0.6 * std::exp(-(dx * dx + dy * dy) / 6.0));
                }
        zre::detectStars(picture, stars, starless, {}, nullptr);
    }

    /// Base and sprites, each where it was found.
    Image sum() const
    {
        Image image = starless;
        for (const Star& star : stars)
            for (int y = 0; y < star.boxH; ++y)
                for (int x = 0; x < star.boxW; ++x)
                    for (int c = 0; c < 3; ++c) {
                        const std::size_t i = static_cast<std::size_t>(y * star.boxW + x);
                        image.plane(c)[(star.boxY + y) * image.width + star.boxX + x] +=
                            star.alpha[i] * star.sprite[3 * i + static_cast<std::size_t>(c)];
                    }
        return image;
    }
};

double worst(const Image& a, const Image& b)
{
    double most = 0.0;
    for (std::size_t i = 0; i < a.data.size(); ++i)
        most = std::max(most, std::abs(static_cast<double>(a.data[i] - b.data[i])));
    return most;
}

} // namespace

TEST(HealStarless, FillsFromTheSkyAboutAndLosesNoLight)
{
    Sky sky;
    ASSERT_EQ(sky.stars.size(), 20u);
    const double ghost = worst(sky.starless, sky.truth);
    ASSERT_GT(ghost, 0.03);
    zre::healStarless(sky.picture, sky.stars, sky.starless);
    EXPECT_LT(worst(sky.starless, sky.truth), 0.2 * ghost);
    EXPECT_LT(worst(sky.sum(), sky.picture), 1e-3);
    const Image once = sky.starless;
    zre::healStarless(sky.picture, sky.stars, sky.starless);
    EXPECT_TRUE(zrtest::imagesNear(sky.starless, once, 0.0)) << "a second time changes nothing";
}

TEST(HealStarless, HalvesTheErrorBehindTheStarsOfTheBuiltInScene)
{
    const zre::DemoScene scene = zre::makeDemoScene({.width = 960, .height = 640});
    std::vector<Star> stars;
    Image starless;
    zre::detectStars(scene.picture, stars, starless, {}, nullptr);
    const auto before = zrtest::starQuality(scene, stars, starless);
    zre::healStarless(scene.picture, stars, starless);
    const auto after = zrtest::starQuality(scene, stars, starless);
    for (std::size_t i = 1; i < after.classes.size(); ++i)
        EXPECT_LT(after.classes[i].errorAfter(), 0.6 * before.classes[i].errorAfter())
            << after.classes[i].fromPeak;
}

TEST(HealStarless, ToleratesWhatIsNoNumberAndLeavesTheUnfitAlone)
{
    Sky sky;
    const float kNaN = std::numeric_limits<float>::quiet_NaN();
    sky.picture.data[40 * 200 + 30] = kNaN;
    sky.starless.data[40 * 200 + 30] = kNaN;
    sky.stars[0].boxX = std::numeric_limits<int>::max() - 100;
    sky.stars[1].boxY = -1000;
    sky.stars[2].erased = true;
    sky.stars[2].sprite = sky.stars[2].alpha = {};
    sky.stars[3].alpha.assign(sky.stars[3].alpha.size(), 0.0f);
    sky.stars[4].channels = 1;
    zre::healStarless(sky.picture, sky.stars, sky.starless);
    int notNumbers = 0;
    for (const float value : sky.starless.data)
        notNumbers += !std::isfinite(value);
    EXPECT_EQ(notNumbers, 1);

    const Image picture = zrtest::noise(30, 20, 1, 4);
    for (Image other : {Image(), Image(30, 21, 1), Image(30, 20, 0)}) {
        const Image kept = other;
        zre::healStarless(picture, sky.stars, other);
        EXPECT_TRUE(zrtest::imagesNear(other, kept, 0.0));
    }
    std::vector<Star> none;
    Image starless = picture;
    zre::healStarless(picture, none, starless);
    EXPECT_TRUE(zrtest::imagesNear(starless, picture, 0.0));
}
