#include "engine/stereo/views.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "engine/image/raster.h"
#include "engine/post/post.h"
#include "engine/stereo/eye.h"
#include "tests/engine/stereo/hilly_depth.h"
#include "tests/engine/stereo/naive_eye.h"
#include "tests/support/testkit.h"

using zre::Image;
using zre::ZRParams;
using zrtest::imagesNear;
using zrtest::noise;

namespace {

constexpr int kWidth = 61;
constexpr int kHeight = 34;

struct Scene
{
    Image src = noise(kWidth, kHeight, 1, 1);
    Image depth = zrtest::hillyDepth(kWidth, kHeight, 0.02, 2);
    Image stars = noise(kWidth, kHeight, 0, 3);
    Image starDepth = noise(kWidth, kHeight, 0, 4);
};

struct Pair
{
    Image left;
    Image right;
};

Pair eyesOf(const Scene& s, const ZRParams& p)
{
    Pair eyes;
    zre::renderEyes(s.src, s.depth, p, eyes.left, eyes.right, nullptr, {}, &s.stars, &s.starDepth);
    return eyes;
}

Image stretched(const Image& img, float scale, float offset)
{
    Image result = img;
    for (float& v : result.data)
        v = v * scale + offset;
    return result;
}

TEST(Anaglyph, EveryEncodingEqualsItsFormulasForColourAndMonoEyes)
{
    const double gains[][3] = {{1, 1, 1}, {0.7, 1.3, 0.9}, {1.3, 0.504, 0.896}};
    for (int mode = 0; mode < 4; ++mode)
        for (const auto& gain : gains)
            for (const int leftModel : {0, 1})
                for (const int rightModel : {0, 1}) {
                    // More samples than one strip, and values beyond 0 to 1, which clamp by
                    // channel.
                    const Image left = stretched(noise(83, 41, leftModel, 5), 2.0f, -0.5f);
                    const Image right = stretched(noise(83, 41, rightModel, 6), 2.0f, -0.5f);
                    Image expected;
                    naive::makeAnaglyph(left, right, expected, mode, gain[0], gain[1], gain[2]);
                    Image out;
                    zre::makeAnaglyph(left, right, out, mode, gain[0], gain[1], gain[2]);
                    EXPECT_EQ(out.colorModel, 1);
                    EXPECT_TRUE(imagesNear(out, expected, 0))
                        << "mode " << mode << " models " << leftModel << rightModel;
                }
}

TEST(Anaglyph, ColourOfEqualEyesIsTheSourceForAnyUnknownModeToo)
{
    const Image eye = noise(19, 7, 1, 7);
    for (const int mode : {0, -1, 4, std::numeric_limits<int>::max()}) {
        Image out;
        zre::makeAnaglyph(eye, eye, out, mode, 1, 1, 1);
        EXPECT_TRUE(imagesNear(out, eye, 0));
    }
}

TEST(Anaglyph, WildSamplesAndGainsStayWithinTheRange)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    Image wild = noise(4, 1, 1, 8);
    wild.data[0] = nan;
    wild.data[1] = inf;
    wild.data[2] = -inf;
    const Image calm = noise(4, 1, 1, 9);
    for (int mode = 0; mode < 4; ++mode) {
        Image out;
        zre::makeAnaglyph(wild, calm, out, mode, double(nan), 1, double(-inf));
        for (const float v : out.data)
            EXPECT_TRUE(v >= 0.0f && v <= 1.0f) << "mode " << mode;
    }
    Image out;
    zre::makeAnaglyph(wild, calm, out, 0, 1, 1, 1);
    EXPECT_TRUE(std::equal(out.plane(1), out.plane(1) + 8, calm.plane(1)));
    Image untouched = calm;
    zre::makeAnaglyph(wild, noise(1, 4, 1, 1), untouched, 0, 1, 1, 1);
    EXPECT_TRUE(imagesNear(untouched, calm, 0));
}

TEST(RenderEyes, ConvergesOnTheMedianOnlyWhenAsked)
{
    const Scene s;
    ZRParams p;
    p.parallaxAmount = 30;
    p.convergence = 0.9f;
    for (const bool automatic : {true, false}) {
        p.autoConvergence = automatic;
        const double convergence = automatic ? zre::medianValue(s.depth) : double(p.convergence);
        const Pair eyes = eyesOf(s, p);
        for (const double offset : {1.0, -1.0}) {
            Image expected = s.src;
            zre::renderEyeHorizontal(s.src, s.depth, expected, 30, convergence, offset, 0, {},
                                     nullptr);
            zre::compositeStarsImage(s.stars, s.starDepth, expected, 30, convergence, offset, 0, 0,
                                     0, -1, -1, nullptr, 0);
            EXPECT_TRUE(imagesNear(offset > 0 ? eyes.left : eyes.right, expected, 0));
        }
    }
}

TEST(RenderEyes, HidesStarsByTheDepthOfEachEyeAndGradesLast)
{
    const Scene s;
    ZRParams p;
    p.starOcclusion = 0.8f;
    p.maxDisparity = 9;
    p.autoConvergence = false;
    p.postGamma = 1.7f;
    p.postSaturation = 0.3f;
    const Pair eyes = eyesOf(s, p);
    for (const double offset : {1.0, -1.0}) {
        Image expected = s.src;
        Image eyeDepth;
        zre::renderEyeHorizontal(s.src, s.depth, expected, 20, 0.5, offset, 9, {}, &eyeDepth);
        zre::compositeStarsImage(s.stars, s.starDepth, expected, 20, 0.5, offset, 0, 9, 0, -1, -1,
                                 &eyeDepth, 0.8f);
        zre::applyPost(expected, p);
        EXPECT_TRUE(imagesNear(offset > 0 ? eyes.left : eyes.right, expected, 0));
    }
}

TEST(RenderEyes, ProgressRunsOnceThroughBothEyes)
{
    const Image src = noise(3, 130, 0, 1);
    std::vector<double> seen;
    Image left;
    Image right;
    zre::renderEyes(
        src, src, {}, left, right, nullptr, [&](double f) { seen.push_back(f); }, nullptr, nullptr);
    ASSERT_EQ(seen.size(), 6u);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_EQ(seen.front(), 0.0);
    EXPECT_EQ(seen[3], 0.5);
    EXPECT_LT(seen.back(), 1.0);
}

Image half(const Image& pair, int x0)
{
    Image eye(pair.width / 2, pair.height, pair.colorModel);
    for (int c = 0; c < pair.channels; ++c)
        for (int y = 0; y < pair.height; ++y)
            std::copy_n(pair.plane(c) + y * pair.width + x0, eye.width,
                        eye.plane(c) + y * eye.width);
    return eye;
}

TEST(SwapEyes, ExchangesTheHalvesAndTheColoursButNotTheRenderedPair)
{
    Scene s;
    ZRParams p;
    p.anaglyphMode = 3;
    const Pair eyes = eyesOf(s, p);
    for (const bool swapped : {false, true}) {
        p.swapEyes = swapped;
        EXPECT_TRUE(imagesNear(eyesOf(s, p).left, eyes.left, 0));
        const Image& first = swapped ? eyes.right : eyes.left;
        const Image& second = swapped ? eyes.left : eyes.right;
        Image out;
        zre::renderSideBySide(s.src, s.depth, p, out, nullptr, {}, &s.stars, &s.starDepth);
        ASSERT_EQ(out.width, 2 * kWidth);
        EXPECT_TRUE(imagesNear(half(out, 0), first, 0));
        EXPECT_TRUE(imagesNear(half(out, kWidth), second, 0));
        Image expected;
        zre::makeAnaglyph(first, second, expected, 3, 0.9, 1, 1.1);
        zre::renderAnaglyph(s.src, s.depth, p, out, nullptr, {}, &s.stars, &s.starDepth, 0.9, 1,
                            1.1);
        EXPECT_TRUE(imagesNear(out, expected, 0));
    }
}

TEST(SideBySide, AMonoSourceStaysMono)
{
    const Image src = noise(9, 5, 0, 1);
    Image out;
    zre::renderSideBySide(src, src, {}, out, nullptr, {}, nullptr, nullptr);
    EXPECT_EQ(out.channels, 1);
    EXPECT_EQ(out.colorModel, 0);
    EXPECT_EQ(out.data.size(), 90u);
}

TEST(PackEyes, EyesOfAnySizeFillExactlyTheirHalf)
{
    const Image eyes[] = {noise(8, 6, 1, 1), noise(8, 6, 0, 2), noise(31, 3, 1, 3),
                          noise(2, 2, 0, 4)};
    for (const Image& a : eyes)
        for (const Image& b : eyes)
            for (const bool beside : {true, false}) {
                Image out;
                zre::packEyes(a, b, out, beside, 8, 6);
                ASSERT_EQ(out.width, beside ? 16 : 8);
                ASSERT_EQ(out.height, beside ? 6 : 12);
                ASSERT_EQ(out.channels, 3);
                Image parts[2];
                zre::areaResample(a, 8, 6, parts[0]);
                zre::areaResample(b, 8, 6, parts[1]);
                for (int c = 0; c < 3; ++c)
                    for (int y = 0; y < out.height; ++y)
                        for (int x = 0; x < out.width; ++x) {
                            const Image& eye = parts[x / 8 + y / 6];
                            ASSERT_EQ(out.plane(c)[y * out.width + x],
                                      eye.plane(eye.channels == 1 ? 0 : c)[y % 6 * 8 + x % 8]);
                        }
            }
}

TEST(PackEyes, SizesThatCannotBeDoubledLeaveTheOutputAlone)
{
    const Image eye = noise(4, 4, 1, 1);
    for (const int side : {0, -3, std::numeric_limits<int>::max(), 1 << 30}) {
        Image out = eye;
        zre::packEyes(eye, eye, out, true, side, side > 4 ? 1 : side);
        EXPECT_TRUE(imagesNear(out, eye, 0));
    }
}

Image wiggle(const Scene& s, const ZRParams& p, int frame, int frames, double amplitude,
             double baseOffset = 0.0)
{
    Image out(s.src.width + 3, s.src.height + 1, 1); // a frame before this one, of another size
    std::fill(out.data.begin(), out.data.end(), std::numeric_limits<float>::quiet_NaN());
    zre::renderWiggleFrame(s.src, s.depth, frame, frames, amplitude, 0.4, p, out, nullptr, nullptr,
                           nullptr, baseOffset);
    return out;
}

Image seenFrom(const Scene& s, const ZRParams& p, double x, double y)
{
    Image out = s.src;
    zre::renderEye(s.src, s.depth, out, p.parallaxAmount, 0.4, x, y, p.maxDisparity, 0, -1, -1,
                   false, nullptr);
    return out;
}

TEST(Wiggle, ALinearSweepStartsAtTheSourceAndGoesAlongItsAngle)
{
    const Scene s;
    ZRParams p;
    for (const float angle : {0.0f, 30.0f, -90.0f}) {
        p.wigglePathAngle = angle;
        EXPECT_TRUE(imagesNear(wiggle(s, p, 0, 12, 3), s.src, 0));
        const double radians = double(angle) * M_PI / 180;
        const double quarter = 3 * std::sin(M_PI / 2);
        EXPECT_TRUE(imagesNear(
            wiggle(s, p, 3, 12, 3),
            seenFrom(s, p, std::cos(radians) * quarter, std::sin(radians) * quarter), 1e-6))
            << angle;
    }
}

TEST(Wiggle, AnOrbitKeepsItsRadiusAndTheSwapTurnsItRound)
{
    const Scene s;
    ZRParams p;
    p.wiggleCircular = true;
    p.wigglePathAngle = 77; // has no say in an orbit
    for (int frame = 0; frame < 5; ++frame) {
        const double phase = frame * 2 * M_PI / 5;
        p.swapEyes = false;
        EXPECT_TRUE(imagesNear(wiggle(s, p, frame, 5, 2),
                               seenFrom(s, p, 2 * std::cos(phase), 2 * std::sin(phase)), 1e-6));
        p.swapEyes = true;
        EXPECT_TRUE(imagesNear(wiggle(s, p, frame, 5, 2, 0.5),
                               seenFrom(s, p, 0.5 - 2 * std::cos(phase), -2 * std::sin(phase)),
                               1e-6));
    }
}

TEST(Wiggle, TwoFramesOfALinearSweepDoNotMove)
{
    const Scene s;
    for (int frame = 0; frame < 2; ++frame)
        EXPECT_TRUE(imagesNear(wiggle(s, {}, frame, 2, 3), s.src, 0));
}

TEST(Wiggle, WithoutFramesOrWithAWildAmplitudeThereIsNoMotion)
{
    const Scene s;
    EXPECT_TRUE(imagesNear(wiggle(s, {}, 7, 0, 3), s.src, 0));
    EXPECT_TRUE(imagesNear(wiggle(s, {}, 7, -5, 3, 1.25), seenFrom(s, {}, 1.25, 0), 0));
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(imagesNear(wiggle(s, {}, 1, 4, inf), s.src, 0));
    EXPECT_TRUE(imagesNear(wiggle(s, {}, 1, 4, 1, inf), s.src, 0));
}

TEST(Wiggle, DrawsStarsBehindTheStructureOfItsOwnViewAndGrades)
{
    const Scene s;
    ZRParams p;
    p.starOcclusion = 1.0f;
    p.wiggleCircular = true;
    p.postContrast = 0.4f;
    Image expected = s.src;
    Image sceneDepth;
    zre::renderEye(s.src, s.depth, expected, 20, 0.4, 2, 0, 0, 0, -1, -1, false, &sceneDepth);
    zre::compositeStarsImage(s.stars, s.starDepth, expected, 20, 0.4, 2, 0, 0, 0, -1, -1,
                             &sceneDepth, 1.0f);
    zre::applyPost(expected, p);
    Image out;
    zre::renderWiggleFrame(s.src, s.depth, 0, 9, 2, 0.4, p, out, nullptr, &s.stars, &s.starDepth,
                           0);
    EXPECT_TRUE(imagesNear(out, expected, 0));
}

} // namespace
