#include "engine/stereo/eye.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <map>
#include <span>
#include <sstream>

#include <gtest/gtest.h>

#include "tests/engine/stereo/naive_eye.h"
#include "tests/engine/stereo/scenes.h"
#include "tests/support/testkit.h"

using naive::Eye;
using zre::Image;
using zrtest::imagesNear;
using zrtest::noise;

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

struct Rendered
{
    Image image;
    Image depth;
};

Rendered horizontal(const Image& src, const Image& depth, const Eye& e)
{
    Rendered r{src, {}};
    std::fill(r.image.data.begin(), r.image.data.end(), 77.0f);
    zre::renderEyeHorizontal(src, depth, r.image, e.parallax, e.convergence, e.offsetX,
                             e.maxDisparity, {}, &r.depth);
    return r;
}

Rendered general(const Image& src, const Image& depth, const Eye& e)
{
    Rendered r{src, {}};
    std::fill(r.image.data.begin(), r.image.data.end(), 77.0f);
    zre::renderEye2D(src, depth, r.image, e.parallax, e.convergence, e.offsetX, e.offsetY,
                     e.maxDisparity, e.zoom, e.centerX, e.centerY, e.splat, &r.depth);
    return r;
}

testing::AssertionResult sameBits(const Rendered& actual, const Image& image, const Image& depth)
{
    if (auto same = imagesNear(actual.image, image, 0); !same)
        return same << " in the picture";
    return imagesNear(actual.depth, depth, 0) << " in the depth";
}

struct Size
{
    int width;
    int height;
};

const Size kSizes[] = {{1, 1},  {1, 9},    {9, 1},    {2, 2},   {37, 23},
                       {64, 5}, {131, 70}, {1100, 9}, {40, 300}};

std::string describe(const Size& size, const std::string& scene, const Eye& e)
{
    std::ostringstream text;
    text << size.width << "x" << size.height << " " << scene << " parallax " << e.parallax
         << " convergence " << e.convergence << " offset " << e.offsetX << "," << e.offsetY
         << " clamp " << e.maxDisparity << " zoom " << e.zoom << " about " << e.centerX << ","
         << e.centerY << (e.splat ? " splat" : "");
    return text.str();
}

const Eye kHorizontalEyes[] = {
    {},
    {.offsetX = -1},
    {.parallax = 0},
    {.parallax = -35, .convergence = 0.1},
    {.parallax = 100, .convergence = 0.9, .offsetX = -1},
    {.parallax = 40, .maxDisparity = 5},
    {.parallax = 60, .offsetX = 0.37, .maxDisparity = 1},
    {.parallax = 1e9, .maxDisparity = 3},
    {.parallax = 1e300, .offsetX = 1e300},
};

TEST(EyeHorizontal, EqualsThePlainFormBitForBit)
{
    for (const Size& size : kSizes)
        for (const auto& scene : zrtest::depthScenes(size.width, size.height))
            for (const Eye& eye : kHorizontalEyes)
                for (const int model : {0, 1}) {
                    const Image src = noise(size.width, size.height, model, 3);
                    Image image;
                    Image depth;
                    naive::renderHorizontal(src, scene.depth, eye, image, depth);
                    ASSERT_TRUE(sameBits(horizontal(src, scene.depth, eye), image, depth))
                        << describe(size, scene.name, eye);
                }
}

const Eye k2DEyes[] = {
    {.offsetX = 2, .offsetY = 1.5},
    {.offsetX = 0, .offsetY = -3},
    {.parallax = -30, .convergence = 0.2, .offsetX = -1, .offsetY = 0.25},
    {.parallax = 55, .offsetX = 0.6, .offsetY = 0.8, .maxDisparity = 6},
    {.parallax = 10, .offsetX = 1, .offsetY = 1e-30},
    {.parallax = 0, .offsetX = 1, .offsetY = 1},
    {.offsetX = 0, .offsetY = 0, .splat = true},
    {.offsetX = 1, .offsetY = 0.5, .splat = true},
    {.parallax = 8, .convergence = 0.3, .zoom = 0.4, .splat = true},
    {.parallax = 8, .convergence = 0.3, .zoom = 0.9},
    {.convergence = 0.1, .offsetX = 0, .offsetY = 0, .zoom = 0.7, .centerX = 3, .centerY = 60},
    {.convergence = 0, .offsetX = 0, .offsetY = 0, .zoom = -0.6, .splat = true},
    {.convergence = 0, .offsetX = 0.1, .offsetY = 0, .zoom = -1.5},
    {.parallax = 20, .convergence = 0, .offsetY = 1, .maxDisparity = 9, .zoom = 1, .splat = true},
    {.parallax = 1e200, .offsetX = 1e200, .offsetY = 3, .maxDisparity = 4},
    {.parallax = 1e9, .offsetX = 0.2, .offsetY = 3},
    // By just under one and a half pixels, so that the rounding of its place moves a pixel farther.
    {.parallax = 2, .offsetX = std::nextafter(6.0, 0.0), .offsetY = -std::nextafter(6.0, 0.0)},
    // Every other step of the search ends a rounding away from between two cells.
    {.parallax = 30, .offsetX = 1, .offsetY = std::sqrt(3.0)},
    {.convergence = 0, .offsetX = 0, .offsetY = 0, .zoom = 1e12, .splat = true},
    // About a centre beyond the image, with and without the clamp.
    {.convergence = 0.2, .zoom = 0.3, .centerX = 500, .centerY = 900, .splat = true},
    {.convergence = 0.2,
     .maxDisparity = 12,
     .zoom = -0.3,
     .centerX = 500,
     .centerY = 1,
     .splat = true},
    {.convergence = 0.6, .offsetX = 0.3, .offsetY = 0.1, .zoom = 0.15, .splat = true},
};

TEST(Eye2D, EqualsThePlainFormBitForBit)
{
    for (const Size& size : kSizes)
        for (const auto& scene : zrtest::depthScenes(size.width, size.height))
            for (const Eye& eye : k2DEyes)
                for (const int model : {0, 1}) {
                    const Image src = noise(size.width, size.height, model, 5);
                    Image image;
                    Image depth;
                    naive::render2D(src, scene.depth, eye, image, depth);
                    ASSERT_TRUE(sameBits(general(src, scene.depth, eye), image, depth))
                        << describe(size, scene.name, eye);
                }
}

/// True when the two agree in every channel of a window.
bool sameIn(const zre::EyeWindow& window, const Image& a, const Image& b)
{
    for (int c = 0; c < a.channels; ++c)
        for (int y = std::max(0, window.top); y < std::min(a.height, window.bottom); ++y)
            for (int x = std::max(0, window.left); x < std::min(a.width, window.right); ++x) {
                const std::size_t at = std::size_t(y) * std::size_t(a.width) + std::size_t(x);
                if (a.plane(c)[at] != b.plane(c)[at])
                    return false;
            }
    return true;
}

TEST(RenderEyeWindow, ShowsWhatTheWholeEyeShowsThere)
{
    const Size size{140, 330};
    const zre::EyeWindow windows[] = {{0, 0, 140, 330},     {20, 130, 60, 150},  {0, 0, 1, 1},
                                      {139, 300, 140, 330}, {-9, 200, 200, 400}, {50, 9, 50, 90}};
    const Image src = noise(size.width, size.height, 1, 5);
    for (const auto& scene : zrtest::depthScenes(size.width, size.height))
        for (const auto& eyes :
             {std::span<const Eye>(k2DEyes), std::span<const Eye>(kHorizontalEyes)})
            for (const Eye& eye : eyes) {
                const auto render = [&](const zre::EyeWindow& window, Image& depth) {
                    Image out = noise(size.width, size.height, 1, 6);
                    zre::renderEyeWindow(src, scene.depth, out, eye.parallax, eye.convergence,
                                         eye.offsetX, eye.offsetY, eye.maxDisparity, eye.zoom,
                                         eye.centerX, eye.centerY, eye.splat, window, &depth);
                    return out;
                };
                Image wholeDepth;
                const Image whole = render(windows[0], wholeDepth);
                for (const zre::EyeWindow& window : windows) {
                    Image depth;
                    const Image part = render(window, depth);
                    ASSERT_TRUE(sameIn(window, part, whole)) << describe(size, scene.name, eye);
                    ASSERT_TRUE(window.left == window.right || sameIn(window, depth, wholeDepth))
                        << describe(size, scene.name, eye);
                }
            }
}

/// Every pixel has a value of its own, so that it can be found again: its index, exact in a float.
Image labelled(int width, int height)
{
    Image img(width, height, 0);
    for (std::size_t i = 0; i < img.data.size(); ++i)
        img.data[i] = static_cast<float>(i);
    return img;
}

/// The longest way, in cells along either axis, from a source pixel to the nearest cell that shows
/// it; pixels are told apart by their depth, of which each has its own.
int farthestMove(const Image& shown, const Image& depth)
{
    std::map<float, int> source;
    for (std::size_t i = 0; i < depth.data.size(); ++i)
        source[depth.data[i]] = static_cast<int>(i);
    std::map<float, int> nearest;
    for (std::size_t i = 0; i < shown.data.size(); ++i) {
        const auto from = source.find(shown.data[i]);
        if (from == source.end())
            continue;
        const int cell = static_cast<int>(i);
        const int move = std::max(std::abs(cell % shown.width - from->second % shown.width),
                                  std::abs(cell / shown.width - from->second / shown.width));
        const auto known = nearest.emplace(from->first, move).first;
        known->second = std::min(known->second, move);
    }
    int farthest = -1;
    for (const auto& [label, move] : nearest)
        farthest = std::max(farthest, move);
    return farthest;
}

TEST(Eye, NoPixelMovesBeyondHalfTheComfortClamp)
{
    const Image src = noise(97, 40, 0, 3);
    Image depth = noise(97, 40, 0, 11);
    for (float& d : depth.data)
        d = d * 40.0f - 20.0f;
    for (const double offset : {1.0, -1.0, 5.0}) {
        const Eye eye{.offsetX = offset, .offsetY = 0.4, .maxDisparity = 4};
        EXPECT_EQ(farthestMove(horizontal(src, depth, eye).depth, depth), 2);
        EXPECT_EQ(farthestMove(general(src, depth, eye).depth, depth), 2);
        Eye zoomed = eye;
        zoomed.zoom = 2;
        EXPECT_EQ(farthestMove(general(src, depth, zoomed).depth, depth), 2);
    }
}

TEST(Eye, PixelsAtTheConvergenceDepthNeverMove)
{
    const Image src = labelled(50, 31);
    const Image depth = zrtest::flatDepth(50, 31, 0.625f);
    for (Eye eye :
         {Eye{.parallax = 90, .offsetX = -1}, Eye{.offsetX = 1, .offsetY = 2},
          Eye{.offsetY = 1, .zoom = 3}, Eye{.maxDisparity = 4, .zoom = 1, .splat = true}}) {
        eye.convergence = 0.625;
        EXPECT_TRUE(sameBits(general(src, depth, eye), src, depth));
        EXPECT_TRUE(sameBits(horizontal(src, depth, eye), src, depth));
    }
}

TEST(EyeHorizontal, FlatDepthShiftsAsOneAndFillsTheEdgeFromTheNearestPixel)
{
    const Image src = labelled(20, 3);
    const Rendered eye = horizontal(src, zrtest::flatDepth(20, 3, 1.0f), {.parallax = 12});
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 20; ++x)
            EXPECT_EQ(eye.image.plane(0)[y * 20 + x], float(y * 20 + std::max(0, x - 3)));
}

TEST(EyeHorizontal, AHoleShowsTheBackgroundOnWhicheverSideItLies)
{
    Image depth = zrtest::flatDepth(30, 1, 0.5f);
    for (int x = 10; x < 20; ++x)
        depth.data[static_cast<std::size_t>(x)] = 1.0f;
    const Image src = labelled(30, 1);
    // The block moves four pixels; the hole it leaves lies between it and the background.
    const Rendered left = horizontal(src, depth, {.parallax = 16});
    const Rendered right = horizontal(src, depth, {.parallax = 16, .offsetX = -1});
    for (int x = 10; x < 14; ++x)
        EXPECT_EQ(left.image.data[static_cast<std::size_t>(x)], 9.0f);
    for (int x = 16; x < 20; ++x)
        EXPECT_EQ(right.image.data[static_cast<std::size_t>(x)], 20.0f);
    EXPECT_EQ(left.depth.data[12], 0.5f);
}

TEST(EyeHorizontal, ARowThatNothingReachesIsBlackWithoutDepth)
{
    const Rendered eye =
        horizontal(labelled(8, 2), zrtest::flatDepth(8, 2, 1.0f), {.parallax = 1000});
    EXPECT_TRUE(sameBits(eye, Image(8, 2, 0), zrtest::flatDepth(8, 2, -1.0f)));
}

TEST(EyeHorizontal, ReportsEvery64thRow)
{
    std::vector<double> seen;
    const Image src = noise(3, 200, 0, 1);
    Image out = src;
    zre::renderEyeHorizontal(
        src, src, out, 5, 0.5, 1, 0, [&](double f) { seen.push_back(f); }, nullptr);
    EXPECT_EQ(seen, (std::vector<double>{0.0, 0.32, 0.64, 0.96}));
}

TEST(Eye2D, ACellBeyondTheSearchReachStaysBlackWithoutDepth)
{
    // The near half leaves by the top; the hole is 100 rows high, the search reaches 8 + 4.
    Image depth = zrtest::flatDepth(3, 200, 0.5f);
    for (std::size_t i = 3 * 100; i < depth.data.size(); ++i)
        depth.data[i] = 1e6f;
    const Rendered eye =
        general(labelled(3, 200), depth, {.parallax = 16, .offsetX = 0, .offsetY = 1});
    EXPECT_EQ(eye.depth.data[3 * 111], 0.5f);
    EXPECT_EQ(eye.image.data[3 * 112], 0.0f);
    EXPECT_EQ(eye.depth.data[3 * 112], -1.0f);
}

TEST(RenderEye, OnlyAnExactZeroTakesTheHorizontalRoad)
{
    const Image src = noise(40, 20, 1, 2);
    const Image depth = noise(40, 20, 0, 9);
    const auto render = [&](double offsetY, double zoom, bool splat) {
        Rendered r{src, {}};
        zre::renderEye(src, depth, r.image, 20, 0.5, 1, offsetY, 0, zoom, -1, -1, splat, &r.depth);
        return r;
    };
    const Rendered whole = horizontal(src, depth, {});
    EXPECT_TRUE(sameBits(render(0.0, 0.0, false), whole.image, whole.depth));
    EXPECT_TRUE(sameBits(render(-0.0, 0.0, false), whole.image, whole.depth));
    for (const Eye& e : {Eye{.offsetY = 1e-30}, Eye{.zoom = 1e-30}, Eye{.splat = true}}) {
        const Rendered subPixel = general(src, depth, e);
        EXPECT_TRUE(sameBits(render(e.offsetY, e.zoom, e.splat), subPixel.image, subPixel.depth));
        EXPECT_FALSE(imagesNear(subPixel.image, whole.image, 0));
    }
}

TEST(RenderEye, ArgumentsThatAreNoNumbersLeaveThePixelsWhereTheyAre)
{
    const Image src = noise(33, 17, 1, 4);
    const Image depth = noise(33, 17, 0, 6);
    for (const double bad : {kNan, kInf, -kInf}) {
        for (const Eye& eye :
             {Eye{.parallax = bad, .offsetY = 1}, Eye{.convergence = bad},
              Eye{.convergence = bad, .offsetY = 1, .zoom = 1}, Eye{.offsetX = bad},
              Eye{.offsetX = 0, .offsetY = bad}, Eye{.offsetX = 0, .zoom = bad, .splat = true},
              Eye{.offsetX = 0, .zoom = 1, .centerX = bad},
              Eye{.parallax = 0, .maxDisparity = bad}}) {
            EXPECT_TRUE(imagesNear(general(src, depth, eye).image, src, 0))
                << describe({33, 17}, "noise", eye);
            const bool flat = eye.offsetY == 0 && eye.zoom == 0;
            EXPECT_TRUE(!flat || imagesNear(horizontal(src, depth, eye).image, src, 0));
        }
    }
}

TEST(RenderEye, DepthsThatAreNoNumbersLeaveTheirPixelsWhereTheyAre)
{
    const Image src = labelled(40, 12);
    Image depth = zrtest::flatDepth(40, 12, 0.25f);
    const std::size_t bad[] = {0, 39, 205, 206, 207, 300, 479};
    const double values[] = {kNan, kInf, -kInf};
    for (std::size_t i = 0; i < std::size(bad); ++i)
        depth.data[bad[i]] = static_cast<float>(values[i % 3]);
    for (const Eye& eye : {Eye{.parallax = 24}, Eye{.offsetX = -2, .offsetY = 1},
                           Eye{.offsetY = 1, .zoom = 0.5, .splat = true}}) {
        for (const Rendered& out : {general(src, depth, eye), horizontal(src, depth, eye)})
            for (const std::size_t at : bad) {
                EXPECT_EQ(out.image.data[at], src.data[at]);
                EXPECT_EQ(out.depth.data[at], 0.5f);
            }
    }
}

TEST(RenderEye, ImagesThatDoNotFitAreLeftAlone)
{
    const Image src = noise(6, 4, 1, 1);
    const Image before = noise(6, 4, 1, 2);
    for (const auto& [depth, out] :
         {std::pair{noise(5, 4, 0, 3), before}, std::pair{Image(), before},
          std::pair{noise(6, 4, 0, 3), noise(6, 4, 0, 2)},
          std::pair{noise(6, 4, 0, 3), noise(4, 6, 1, 2)}}) {
        for (const double offsetY : {0.0, 1.0}) {
            Image target = out;
            zre::renderEye(src, depth, target, 20, 0.5, 1, offsetY, 0, 0, -1, -1, false, nullptr);
            EXPECT_TRUE(imagesNear(target, out, 0));
        }
    }
}

} // namespace
