#include <algorithm>
#include <limits>

#include <gtest/gtest.h>

#include "engine/stars/star_sprites.h"
#include "tests/support/testkit.h"

using zre::Image;
using zre::Star;
using zrtest::imagesNear;
using zrtest::noise;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

Image pixels(int width, int height, int model, std::vector<float> samples)
{
    Image img(width, height, model);
    img.data = std::move(samples);
    return img;
}

Star sprite(int boxX, int boxY, int boxW, int boxH, std::vector<float> samples)
{
    Star star;
    star.boxX = boxX;
    star.boxY = boxY;
    star.boxW = boxW;
    star.boxH = boxH;
    star.channels = 3;
    star.sprite = std::move(samples);
    star.alpha.assign(static_cast<std::size_t>(boxW * boxH), 0.5f);
    return star;
}

double luma(const float* rgb)
{
    return 0.2126 * double(rgb[0]) + 0.7152 * double(rgb[1]) + 0.0722 * double(rgb[2]);
}

TEST(SpriteColors, TakeTheHueOfTheSourceAndKeepTheirLuma)
{
    const Image source = noise(9, 7, 1, 5);
    Star star = sprite(2, 1, 4, 3, {});
    star.sprite = noise(4, 3, 1, 6).data;
    for (float& v : star.sprite)
        v *= 0.2f; // so that nothing clips
    std::vector<Star> stars{star};
    zre::recolorStarSpritesFromSource(stars, source);
    EXPECT_EQ(stars[0].alpha, star.alpha);
    for (int j = 0; j < 3; ++j)
        for (int i = 0; i < 4; ++i) {
            const float* was = &star.sprite[static_cast<std::size_t>(j * 4 + i) * 3];
            const float* is = &stars[0].sprite[static_cast<std::size_t>(j * 4 + i) * 3];
            const std::size_t at = static_cast<std::size_t>((1 + j) * 9 + 2 + i);
            const float hue[] = {source.plane(0)[at], source.plane(1)[at], source.plane(2)[at]};
            EXPECT_NEAR(luma(is), luma(was), 1e-6);
            for (int c = 0; c < 3; ++c)
                EXPECT_NEAR(is[c] * hue[(c + 1) % 3], is[(c + 1) % 3] * hue[c], 1e-6);
        }
}

TEST(SpriteColors, DarkForeignAndGreyPixelsStay)
{
    // The source: black, wild, green, red.
    const Image source = pixels(4, 1, 1, {0, kNan, 0, 1, 0, 1, 1, 0, 0, 1, 0, 0});
    const std::vector<float> grey(18, 0.5f);
    std::vector<Star> stars{sprite(-1, 0, 6, 1, grey)};
    zre::recolorStarSpritesFromSource(stars, source);
    const std::vector<float> expected{
        0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0, float(0.5 / 0.7152),
        0,    1,    0,    0,    0.5f, 0.5f, 0.5f};
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_FLOAT_EQ(stars[0].sprite[i], expected[i]) << i;

    const auto stays = [&](Star star, const Image& from) {
        std::vector<Star> list{star};
        zre::recolorStarSpritesFromSource(list, from);
        EXPECT_EQ(list[0].sprite, star.sprite);
    };
    const int huge = std::numeric_limits<int>::max();
    stays(sprite(0, 0, 6, 1, std::vector<float>(18, 1e-6f)), source);
    stays(sprite(huge, 0, 6, 1, grey), source);
    stays(sprite(0, -huge, 6, 1, grey), source);
    stays(sprite(0, 0, 7, 1, grey), source); // shorter than its box
    stays(sprite(0, 0, 6, 1, grey), noise(4, 1, 0, 1));
    Star mono = sprite(0, 0, 6, 1, grey);
    mono.channels = 1;
    stays(mono, source);
}

TEST(StarlessStars, AddWithClippingAndAMissingChannelReadsTheFirst)
{
    const Image grey = pixels(2, 1, 0, {0.25f, 0.75f});
    const Image rgb = pixels(2, 1, 1, {0.5f, 0.5f, 0.125f, 0.125f, 0, 0.25f});
    EXPECT_EQ(zre::compositeStarlessStars(grey, grey).data, (std::vector<float>{0.5f, 1}));
    const std::vector<float> sum{0.75f, 1, 0.375f, 0.875f, 0.25f, 1};
    for (const Image& out :
         {zre::compositeStarlessStars(grey, rgb), zre::compositeStarlessStars(rgb, grey)}) {
        EXPECT_EQ(out.channels, 3);
        EXPECT_EQ(out.colorModel, 1);
        EXPECT_EQ(out.data, sum);
    }
    EXPECT_TRUE(imagesNear(zre::compositeStarlessStars(rgb, Image()), rgb, 0));
    EXPECT_FALSE(zre::compositeStarlessStars(Image(), rgb).usable());
}

TEST(StarlessStars, StarsOfAnotherSizeAreReadByNearestNeighbour)
{
    const Image stars = noise(5, 3, 0, 8);
    for (const auto& [width, height] : {std::pair{10, 9}, {7, 2}, {1, 1}, {5, 3}}) {
        const Image out = zre::compositeStarlessStars(Image(width, height, 0), stars);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                EXPECT_EQ(out.data[static_cast<std::size_t>(y * width + x)],
                          stars.data[static_cast<std::size_t>(y * 3 / height * 5 + x * 5 / width)]);
    }
}

} // namespace
