#include <algorithm>

#include <gtest/gtest.h>

#include "engine/stereo/eye.h"
#include "tests/engine/stereo/scenes.h"
#include "tests/support/testkit.h"

using zre::Image;
using zrtest::imagesNear;
using zrtest::noise;

namespace {

/// Stars of `eye` added to `out` by the definition, pixel by pixel.
Image lit(const Image& out, const Image& stars, const Image& starDepth, const Image* scene,
          double occlusion, double offsetX, double offsetY, double zoom)
{
    Image warped = stars;
    Image warpedDepth;
    zre::renderEye(stars, starDepth, warped, 12, 0.5, offsetX, offsetY, 7, zoom, 20, 10,
                   zoom != 0.0, &warpedDepth);
    Image result = out;
    for (int c = 0; c < out.channels; ++c)
        for (std::size_t i = 0; i < out.pixelCount(); ++i) {
            const float s = warpedDepth.data[i];
            if (scene && occlusion > 0 && s < occlusion && scene->data[i] > s + 0.001)
                continue;
            const Image& light = warped;
            result.plane(c)[i] =
                std::min(1.0f, out.plane(c)[i] + light.plane(std::min(c, light.channels - 1))[i]);
        }
    return result;
}

struct Motion
{
    double offsetX;
    double offsetY;
    double zoom;
};

TEST(StarsImage, EqualsTheDefinitionForEveryMotionModelAndThreshold)
{
    const Image starDepth = noise(41, 27, 0, 1);
    const Image scene = noise(41, 27, 0, 2);
    for (const Motion& m : {Motion{1, 0, 0}, Motion{-1, 0.5, 0}, Motion{0.2, 0, 0.4}})
        for (const int starModel : {0, 1})
            for (const int outModel : {0, 1})
                for (const float occlusion : {0.0f, 0.3f, 1.0f}) {
                    const Image stars = noise(41, 27, starModel, 3);
                    const Image before = noise(41, 27, outModel, 4);
                    Image out = before;
                    zre::compositeStarsImage(stars, starDepth, out, 12, 0.5, m.offsetX, m.offsetY,
                                             7, m.zoom, 20, 10, &scene, occlusion);
                    EXPECT_TRUE(imagesNear(out,
                                           lit(before, stars, starDepth, &scene, occlusion,
                                               m.offsetX, m.offsetY, m.zoom),
                                           0))
                        << starModel << outModel << " occlusion " << occlusion;
                }
}

TEST(StarsImage, AMonoLayerLightsEveryPlaneAndNeverBeyondOne)
{
    Image out(3, 1, 1);
    out.data = {0, 0.5f, 0.9f, 0, 0, 0, 1, 1, 1};
    Image stars(3, 1, 0);
    stars.data = {0.25f, 0.25f, 0.25f};
    zre::compositeStarsImage(stars, zrtest::flatDepth(3, 1, 0.5f), out, 10, 0.5, 1, 0, 0, 0, -1, -1,
                             nullptr, 1.0f);
    EXPECT_EQ(out.data, (std::vector<float>{0.25f, 0.75f, 1, 0.25f, 0.25f, 0.25f, 1, 1, 1}));
}

TEST(StarsImage, OnlyStarsBeyondTheThresholdGoBehindNearerStructure)
{
    // Columns: structure in front, barely in front, level, behind, a star on the threshold, beyond.
    Image depth(6, 1, 0);
    depth.data = {0.25f, 0.25f, 0.25f, 0.25f, 0.5f, 0.75f};
    Image scene(6, 1, 0);
    scene.data = {0.5f, 0.2505f, 0.25f, 0.125f, 1, 1};
    Image stars(6, 1, 0);
    stars.data.assign(6, 0.5f);
    Image out(6, 1, 0);
    zre::compositeStarsImage(stars, depth, out, 0, 0.5, 1, 0, 0, 0, -1, -1, &scene, 0.5f);
    EXPECT_EQ(out.data, (std::vector<float>{0, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f}));
}

TEST(StarsImage, ASceneOfAnotherSizeHidesNothingAndAForeignLayerAddsNothing)
{
    const Image starDepth = zrtest::flatDepth(4, 4, 0.1f);
    const Image stars = zrtest::flatDepth(4, 4, 0.5f);
    const Image scene = zrtest::flatDepth(5, 4, 1.0f);
    Image out(4, 4, 0);
    zre::compositeStarsImage(stars, starDepth, out, 0, 0.5, 1, 0, 0, 0, -1, -1, &scene, 1.0f);
    EXPECT_TRUE(imagesNear(out, stars, 0));
    Image other(5, 4, 0);
    zre::compositeStarsImage(stars, starDepth, other, 0, 0.5, 1, 0, 0, 0, -1, -1, &scene, 1.0f);
    zre::compositeStarsImage(scene, starDepth, other, 0, 0.5, 1, 0, 0, 0, -1, -1, &scene, 1.0f);
    zre::compositeStarsImage(Image(), starDepth, other, 0, 0.5, 1, 0, 0, 0, -1, -1, &scene, 1.0f);
    EXPECT_TRUE(imagesNear(other, Image(5, 4, 0), 0));
}

} // namespace
