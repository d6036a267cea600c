#include <algorithm>

#include <gtest/gtest.h>

#include "engine/post/post.h"
#include "engine/stars/star_sprites.h"
#include "engine/stereo/eye.h"
#include "engine/stereo/views.h"
#include "tests/engine/stereo/hilly_depth.h"
#include "tests/support/testkit.h"

using zre::Image;
using zre::Star;
using zre::ZRParams;
using zrtest::imagesNear;
using zrtest::noise;

namespace {

constexpr int kWidth = 80;
constexpr int kHeight = 50;

std::vector<Star> squares(int count)
{
    std::vector<Star> stars(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < stars.size(); ++i) {
        Star& s = stars[i];
        s.boxX = static_cast<int>(i * 37 % kWidth);
        s.boxY = static_cast<int>(i * 23 % kHeight);
        s.boxW = s.boxH = 7;
        s.x = s.boxX + 3.2;
        s.y = s.boxY + 2.9;
        s.depth = static_cast<float>(i) / static_cast<float>(count);
        s.channels = 1;
        s.sprite.assign(49, 0.4f);
        s.alpha.assign(49, 0.9f);
    }
    return stars;
}

struct Scene
{
    Image src = noise(kWidth, kHeight, 1, 1);
    Image depth = zrtest::hillyDepth(kWidth, kHeight, 0.02, 2);
    std::vector<Star> stars = squares(40);
    ZRParams params;

    Scene()
    {
        params.autoConvergence = false;
        params.convergence = 0.4f;
        params.maxDisparity = 9;
        params.postGamma = 1.4f;
    }

    /// The view from (`x`, `y`), composed step by step.
    Image seenFrom(double x, double y) const
    {
        Image out = src;
        Image sceneDepth;
        const double convergence = double(params.convergence);
        zre::renderEye(src, depth, out, 20, convergence, x, y, 9, 0, -1, -1, false, &sceneDepth);
        zre::drawStarSprites(stars, out, 20, convergence, x, y, 9, 0, -1, -1, &sceneDepth,
                             params.starOcclusion);
        zre::applyPost(out, params);
        return out;
    }
};

TEST(StarLayer, TheListServesWhereNoImageWithDepthIs)
{
    const Scene s;
    const Image light = noise(kWidth, kHeight, 0, 3);
    const Image before = noise(kWidth, kHeight, 1, 4);
    const Image none;
    Image sprites = before;
    zre::drawStarSprites(s.stars, sprites, 20, 0.5, 1, 0.2, 0, 0, -1, -1, &s.depth, 0.7f);
    Image warped = before;
    zre::compositeStarsImage(light, s.depth, warped, 20, 0.5, 1, 0.2, 0, 0, -1, -1, &s.depth, 0.7f);
    struct Case
    {
        const std::vector<Star>* stars;
        const Image* image;
        const Image* depth;
        const Image* expected;
    };
    for (const Case& c :
         {Case{&s.stars, nullptr, nullptr, &sprites}, Case{&s.stars, &light, nullptr, &sprites},
          Case{&s.stars, nullptr, &s.depth, &sprites}, Case{&s.stars, &none, &s.depth, &sprites},
          Case{&s.stars, &light, &none, &sprites}, Case{&s.stars, &light, &s.depth, &warped},
          Case{nullptr, &light, &s.depth, &warped}, Case{nullptr, &light, nullptr, &before}}) {
        Image out = before;
        zre::compositeStarLayer(out, 20, 0.5, 1, 0.2, 0, c.stars, c.image, c.depth, &s.depth, 0.7f);
        EXPECT_TRUE(imagesNear(out, *c.expected, 0));
    }
}

TEST(StarList, EveryRoadDrawsItByTheDepthOfItsOwnViewAndGradesLast)
{
    Scene s;
    for (const float occlusion : {0.0f, 0.6f, 1.0f})
        for (const bool swapped : {false, true}) {
            s.params.starOcclusion = occlusion;
            s.params.swapEyes = swapped;
            Image left = s.seenFrom(1, 0);
            Image right = s.seenFrom(-1, 0);
            Image eyes[2];
            zre::renderEyes(s.src, s.depth, s.params, eyes[0], eyes[1], &s.stars, {}, nullptr,
                            nullptr);
            EXPECT_TRUE(imagesNear(eyes[0], left, 0));
            EXPECT_TRUE(imagesNear(eyes[1], right, 0));
            if (swapped)
                std::swap(left, right);
            Image expected;
            zre::packEyes(left, right, expected, true, kWidth, kHeight);
            Image out;
            zre::renderSideBySide(s.src, s.depth, s.params, out, &s.stars, {}, nullptr, nullptr);
            EXPECT_TRUE(imagesNear(out, expected, 0));
            zre::makeAnaglyph(left, right, expected, 0, 1, 1, 1);
            zre::renderAnaglyph(s.src, s.depth, s.params, out, &s.stars, {}, nullptr, nullptr, 1, 1,
                                1);
            EXPECT_TRUE(imagesNear(out, expected, 0));
            s.params.wiggleCircular = true;
            zre::renderWiggleFrame(s.src, s.depth, 0, 9, 2, double(s.params.convergence), s.params,
                                   out, &s.stars, nullptr, nullptr, 0);
            EXPECT_TRUE(imagesNear(out, s.seenFrom(swapped ? -2 : 2, swapped ? -0.0 : 0), 0));
        }
}

TEST(StarList, AStarStandsWhereTheScenePixelsOfItsDepthStand)
{
    // A speck in the scene and the same speck as a star, at depths whose shifts are whole pixels.
    for (const float depth : {0.25f, 0.5f, 0.75f})
        for (const double offsetX : {1.0, -1.0}) {
            const std::size_t speck = 25 * kWidth + 40;
            Image scene(kWidth, kHeight, 0);
            scene.data[speck] = 0.5f;
            Image map(kWidth, kHeight, 0);
            map.data.assign(map.data.size(), depth);
            Image warped = scene;
            zre::renderEye(scene, map, warped, 16, 0.5, offsetX, 0, 0, 0, -1, -1, false, nullptr);
            Star star;
            star.x = 40;
            star.y = 25;
            star.depth = depth;
            star.channels = star.boxW = star.boxH = 1;
            star.boxX = 40;
            star.boxY = 25;
            star.sprite = {0.5f};
            Image drawn(kWidth, kHeight, 0);
            const std::vector<Star> stars{star};
            zre::compositeStarLayer(drawn, 16, 0.5, offsetX, 0, 0, &stars, nullptr, nullptr,
                                    nullptr, 0);
            EXPECT_TRUE(imagesNear(drawn, warped, 0)) << depth << " " << offsetX;
        }
}

} // namespace
