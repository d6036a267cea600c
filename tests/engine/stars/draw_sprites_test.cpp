#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "engine/stars/star_sprites.h"
#include "tests/engine/stars/naive_sprites.h"
#include "tests/support/testkit.h"

using zre::Image;
using zre::Star;
using zrtest::imagesNear;
using zrtest::noise;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

using Eye = naive::SpriteEye;

void draw(const std::vector<Star>& stars, Image& image, const Eye& e, const Image* depthMap)
{
    zre::drawStarSprites(stars, image, e.amount, e.convergence, e.dirX, e.dirY, e.maxShift,
                         e.zoomGain, e.centerX, e.centerY, depthMap, e.occlusion);
}

/// Sprites of every size and place: over the edges, beyond them, tiny, negative light, coverage
/// beyond 0 to 1 or none.
std::vector<Star> randomStars(int count, int channels, const Image& frame, unsigned seed)
{
    std::mt19937 engine(seed);
    const auto uniform = [&](double from, double to) {
        return from + (to - from) * (engine() / 4294967296.0);
    };
    std::vector<Star> stars(static_cast<std::size_t>(count));
    for (Star& s : stars) {
        s.boxW = static_cast<int>(uniform(1, 24));
        s.boxH = static_cast<int>(uniform(1, 24));
        s.x = uniform(-15, frame.width + 15);
        s.y = uniform(-15, frame.height + 15);
        if (engine() % 4 == 0) // on whole and half pixels
            s.x = std::floor(s.x * 2) / 2;
        s.boxX = static_cast<int>(std::floor(s.x - s.boxW * uniform(0.3, 0.7)));
        s.boxY = static_cast<int>(std::floor(s.y - s.boxH * uniform(0.3, 0.7)));
        s.depth = static_cast<float>(engine() % 8 == 0 ? 0.5 : uniform(-0.1, 1.1));
        s.channels = channels;
        const std::size_t pixels = static_cast<std::size_t>(s.boxW * s.boxH);
        for (std::size_t i = 0; i < pixels * static_cast<std::size_t>(channels); ++i)
            s.sprite.push_back(static_cast<float>(uniform(-0.2, 0.6)));
        for (std::size_t i = 0; i < pixels && engine() % 512 != 0; ++i)
            s.alpha.push_back(static_cast<float>(std::max(-0.1, uniform(-0.4, 1.2))));
        if (s.alpha.size() < pixels)
            s.alpha.clear();
    }
    return stars;
}

TEST(DrawSprites, EqualsTheDefinitionPixelByPixelForEveryMotion)
{
    const Eye eyes[] = {{},
                        {.dirX = -1.3, .dirY = 0.7},
                        {.amount = 60, .dirY = 1, .maxShift = 5},
                        {.zoomGain = 1.7},
                        {.zoomGain = -3, .centerX = 10, .centerY = 40},
                        {.amount = 0, .maxShift = 9, .zoomGain = 40},
                        {.occlusion = 0.6f},
                        {.dirX = 0.3, .dirY = 0.1, .zoomGain = 0.4, .occlusion = 1}};
    const Image scene = noise(67, 45, 0, 11);
    for (const int model : {0, 1})
        for (const int channels : {1, 2, 3})
            for (const Eye& e : eyes) {
                const Image before = noise(67, 45, model, 12);
                const std::vector<Star> stars = randomStars(120, channels, before, 13);
                Image expected = before;
                naive::drawSprites(stars, expected, e, &scene);
                Image out = before;
                draw(stars, out, e, &scene);
                EXPECT_TRUE(imagesNear(out, expected, 0))
                    << model << channels << " eye " << (&e - eyes);
                EXPECT_FALSE(imagesNear(out, before, 0));
            }
}

/// A round star in the middle of an odd box.
Star gaussian(double x, double y, int radius, float depth)
{
    Star s;
    s.x = x;
    s.y = y;
    s.depth = depth;
    s.channels = 1;
    s.boxX = static_cast<int>(std::lround(x)) - radius;
    s.boxY = static_cast<int>(std::lround(y)) - radius;
    s.boxW = s.boxH = 2 * radius + 1;
    for (int j = 0; j < s.boxH; ++j)
        for (int i = 0; i < s.boxW; ++i) {
            const double rx = s.boxX + i - x;
            const double ry = s.boxY + j - y;
            s.sprite.push_back(
                static_cast<float>(0.6 * std::exp(-(rx * rx + ry * ry) * 8 / (radius * radius))));
            s.alpha.push_back(1.0f);
        }
    return s;
}

struct Spot
{
    double flux = 0;
    double x = 0;
    double y = 0;
};

Spot spotOf(const Image& image)
{
    Spot spot;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            const double v = double(image.data[static_cast<std::size_t>(y * image.width + x)]);
            spot.flux += v;
            spot.x += v * x;
            spot.y += v * y;
        }
    spot.x /= spot.flux;
    spot.y /= spot.flux;
    return spot;
}

TEST(DrawSprites, AStarInTheConvergencePlaneComesBackSampleForSample)
{
    Star s = gaussian(30.37, 20.81, 6, 0.25f);
    Image image(64, 48, 0);
    draw({s}, image, {.convergence = 0.25, .dirY = 3, .zoomGain = 5}, nullptr);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x) {
            const int i = x - s.boxX;
            const int j = y - s.boxY;
            const bool inside = i >= 0 && i < s.boxW && j >= 0 && j < s.boxH;
            const float expected =
                inside ? s.sprite[static_cast<std::size_t>(j * s.boxW + i)] : 0.0f;
            ASSERT_EQ(image.data[static_cast<std::size_t>(y * 64 + x)], expected) << x << " " << y;
        }
}

TEST(DrawSprites, BothEyesMoveAStarByHalfTheSeparationEachToItsSide)
{
    const Star s = gaussian(80, 40, 8, 0.9f);
    const Spot still = spotOf([&] {
        Image image(160, 80, 0);
        draw({s}, image, {.amount = 0}, nullptr);
        return image;
    }());
    for (const double dirX : {1.0, -1.0})
        for (const double maxShift : {0.0, 6.0}) {
            Image image(160, 80, 0);
            draw({s}, image, {.amount = 23, .dirX = dirX, .maxShift = maxShift}, nullptr);
            const Spot moved = spotOf(image);
            const double shift = dirX * (maxShift > 0 ? 3.0 : 0.5 * 23 * (double(s.depth) - 0.5));
            EXPECT_NEAR(moved.x - still.x, shift, 1e-3);
            EXPECT_NEAR(moved.y - still.y, 0, 1e-3);
            EXPECT_NEAR(moved.flux, still.flux, still.flux * 1e-3);
        }
}

TEST(DrawSprites, TheScaleGrowsWithNearnessWithinItsLimits)
{
    struct Case
    {
        double zoomGain;
        double scale;
    };
    for (const Case& c : {Case{2, 2}, Case{1e6, 8}, Case{-1, 0.5}, Case{-1e6, 0.2}}) {
        Image image(400, 400, 0);
        draw({gaussian(200, 200, 20, 1.0f)}, image, {.amount = 0, .zoomGain = c.zoomGain}, nullptr);
        Image still(400, 400, 0);
        draw({gaussian(200, 200, 20, 1.0f)}, still, {.amount = 0}, nullptr);
        const double growth = spotOf(image).flux / spotOf(still).flux;
        EXPECT_NEAR(std::sqrt(growth), c.scale, 0.02 * c.scale) << c.zoomGain;
    }
}

TEST(DrawSprites, OnlyStarsBeyondTheThresholdAreCutByStructureInFrontOfThem)
{
    Image scene(32, 32, 0);
    for (std::size_t i = 0; i < scene.data.size(); ++i)
        scene.data[i] = i % 32 < 16 ? 0.9f : 0.3f;
    struct Case
    {
        float depth;
        float occlusion;
        bool cut;
    };
    for (const Case& c : {Case{0.5f, 0.6f, true}, Case{0.5f, 0.5f, false}, Case{0.5f, 0.0f, false},
                          Case{0.8995f, 1.0f, false}, Case{0.5f, -1.0f, false}}) {
        Image image(32, 32, 0);
        draw({gaussian(16, 16, 9, c.depth)}, image, {.amount = 0, .occlusion = c.occlusion},
             &scene);
        EXPECT_EQ(image.data[16 * 32 + 15] == 0.0f, c.cut) << c.depth << " " << c.occlusion;
        EXPECT_GT(image.data[16 * 32 + 16], 0.0f);
    }
    Image image(32, 32, 0);
    draw({gaussian(16, 16, 9, 0.5f)}, image, {.amount = 0, .occlusion = 1}, nullptr);
    const Image foreign = noise(31, 32, 0, 1);
    draw({gaussian(16, 16, 9, 0.5f)}, image, {.amount = 0, .occlusion = 1}, &foreign);
    EXPECT_GT(image.data[16 * 32 + 15], 0.0f);
}

TEST(DrawSprites, HiddenAndHostileRecordsDrawNothing)
{
    const Star good = gaussian(16, 16, 5, 0.5f);
    const int huge = std::numeric_limits<int>::max();
    const auto with = [&](auto change) {
        Star s = good;
        change(s);
        return s;
    };
    const std::vector<Star> bad{
        with([](Star& s) { s.depth = -1; }),
        with([](Star& s) { s.depth = kNan; }),
        with([](Star& s) { s.depth = std::numeric_limits<float>::infinity(); }),
        with([](Star& s) { s.x = double(kNan); }),
        with([](Star& s) { s.y = -1e300; }),
        with([](Star& s) { s.boxW = 0; }),
        with([](Star& s) { s.boxH = -5; }),
        with([](Star& s) { s.sprite.pop_back(); }),
        with([](Star& s) { s.sprite.clear(); }),
        with([&](Star& s) { s.boxW = s.boxH = huge; }),
        with([&](Star& s) { s.channels = huge; }),
        with([&](Star& s) { s.boxX = -huge; }),
        with([&](Star& s) { s.boxY = huge; }),
        with([](Star& s) { std::fill(s.sprite.begin(), s.sprite.end(), kNan); }),
        with([](Star& s) { std::fill(s.alpha.begin(), s.alpha.end(), kNan); }),
    };
    const Image before = noise(33, 33, 1, 3);
    for (std::size_t i = 0; i < bad.size(); ++i) {
        Image out = before;
        draw({bad[i]}, out, {.zoomGain = 0.5}, nullptr);
        EXPECT_TRUE(imagesNear(out, before, 0)) << "record " << i;
    }
    for (const double wild : {double(kNan), std::numeric_limits<double>::infinity(), 1e300}) {
        Image out = before;
        draw({with([](Star& s) { s.depth = 1; })}, out, {.amount = wild}, nullptr);
        draw({with([](Star& s) { s.depth = 1; })}, out, {.zoomGain = wild, .centerX = 3}, nullptr);
        EXPECT_TRUE(imagesNear(out, before, 0));
    }
    Image none;
    draw({good}, none, {}, nullptr);
    Image whole = before;
    draw({with([](Star& s) { s.alpha.pop_back(); })}, whole, {}, nullptr);
    Image expected = before;
    draw({with([](Star& s) { s.alpha.clear(); })}, expected, {}, nullptr);
    EXPECT_TRUE(imagesNear(whole, expected, 0)) << "a torn coverage counts as none";
}

} // namespace
