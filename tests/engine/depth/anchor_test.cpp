#include <algorithm>

#include "engine/depth/depth_map.h"
#include "tests/support/testkit.h"

using zre::Image;
using zre::ZRParams;

namespace {

ZRParams anchored(float target)
{
    ZRParams p;
    p.resolveDistance = p.sourceIsStarless = p.manualAnchorOn = true;
    p.objectFit = 1.0f;
    p.manualAnchorDepth = target;
    return p;
}

/// Background noise below 0.1 in the left third, an object between 0.3 and 0.7 in the rest.
Image objectOnBackground()
{
    Image depth = zrtest::noise(90, 60, 0, 6);
    for (std::size_t i = 0; i < depth.data.size(); ++i)
        depth.data[i] = i % 90 < 30 ? depth.data[i] * 0.1f : 0.3f + 0.4f * depth.data[i];
    return depth;
}

float objectPercentile(const Image& depth, double fraction)
{
    std::vector<float> object;
    for (std::size_t i = 0; i < depth.data.size(); ++i)
        if (i % 90 >= 30)
            object.push_back(depth.data[i]);
    std::sort(object.begin(), object.end());
    return object[static_cast<std::size_t>(fraction * static_cast<double>(object.size() - 1))];
}

} // namespace

TEST(Anchor, TheObjectLevelLandsOnTheTarget)
{
    const Image depth = objectOnBackground();
    for (const float target : {0.2f, 0.5f, 0.9f})
        for (const float floor : {0.0f, 0.1f, 0.2f}) {
            ZRParams p = anchored(target);
            p.floorAuto = false;
            p.backgroundFloor = floor;
            Image out;
            zre::applyAnchor(depth, p, out);
            // Levels are bins of 1/1024; with the floor at 0 the background counts as object too.
            const double share = floor == 0.0f ? 0.7 : 0.8;
            EXPECT_NEAR(objectPercentile(out, share), target, 0.0021) << target << " " << floor;
        }
}

TEST(Anchor, TheBackgroundStaysWhereItIs)
{
    const Image depth = objectOnBackground();
    ZRParams p = anchored(0.95f);
    p.floorAuto = false;
    p.backgroundFloor = 0.1f;
    Image out;
    zre::applyAnchor(depth, p, out);
    for (std::size_t i = 0; i < depth.data.size(); ++i)
        if (i % 90 < 30) {
            ASSERT_EQ(out.data[i], depth.data[i]);
        }
}

TEST(Anchor, TheAutomaticFloorIsTheTenthPercentileButNotAbove15Percent)
{
    Image depth = zrtest::ramp(1000, 3);
    for (float& v : depth.data)
        v *= 0.5f; // a tenth lies up to 0.0495, in bin 50
    ZRParams automatic = anchored(0.8f);
    ZRParams byHand = automatic;
    byHand.floorAuto = false;
    byHand.backgroundFloor = 50.5f / 1024.0f;
    Image out;
    Image expected;
    zre::applyAnchor(depth, automatic, out);
    zre::applyAnchor(depth, byHand, expected);
    EXPECT_TRUE(zrtest::imagesNear(out, expected, 1e-6));

    for (float& v : depth.data)
        v += 0.4f;
    byHand.backgroundFloor = 0.15f;
    zre::applyAnchor(depth, automatic, out);
    zre::applyAnchor(depth, byHand, expected);
    EXPECT_TRUE(zrtest::imagesNear(out, expected, 1e-6));
}

TEST(Anchor, ThicknessScalesTheSpreadInsideTheObject)
{
    const Image depth = objectOnBackground();
    ZRParams p = anchored(0.5f);
    p.floorAuto = false;
    p.backgroundFloor = 0.15f;
    Image whole;
    Image thin;
    zre::applyAnchor(depth, p, whole);
    p.objectThickness = 0.25f;
    zre::applyAnchor(depth, p, thin);
    const auto top = [](const Image& img) { return objectPercentile(img, 0.99) - 0.5f; };
    EXPECT_NEAR(top(thin), top(whole) * 0.25f, 0.002);
}

TEST(Anchor, AThinObjectIsFittedOverASpanOfItsOwn)
{
    Image depth(100, 1, 0);
    std::fill(depth.data.begin(), depth.data.end(), 0.54f);
    depth.data[3] = 0.52f;
    depth.data[4] = 0.5f;
    ZRParams p = anchored(0.8f);
    p.floorAuto = false;
    p.backgroundFloor = 0.5f;
    Image out;
    zre::applyAnchor(depth, p, out);
    // The object stands in bin 552, 0.04 above the floor; the fit is full 0.08 above it.
    const double move = 0.8 - 552.5 / 1024.0;
    EXPECT_NEAR(out.data[0], 0.54 + 0.5 * move, 1e-5);
    EXPECT_NEAR(out.data[3], 0.52 + 0.25 * move, 1e-5);
    EXPECT_EQ(out.data[4], 0.5f);
}

TEST(Anchor, TheFitIsALinearWayToTheFullMove)
{
    const Image depth = objectOnBackground();
    ZRParams p = anchored(0.6f);
    Image full;
    Image half;
    zre::applyAnchor(depth, p, full);
    p.objectFit = 0.5f;
    zre::applyAnchor(depth, p, half);
    for (std::size_t i = 0; i < depth.data.size(); ++i)
        ASSERT_NEAR(half.data[i], (depth.data[i] + full.data[i]) / 2, 1e-6);
}

TEST(Anchor, LeavesTheDepthAloneUnlessEveryConditionHolds)
{
    const Image depth = objectOnBackground();
    for (void (*unset)(ZRParams&) : std::initializer_list<void (*)(ZRParams&)>{
             [](ZRParams& p) { p.manualAnchorOn = false; },
             [](ZRParams& p) { p.resolveDistance = false; },
             [](ZRParams& p) { p.sourceIsStarless = false; },
             [](ZRParams& p) { p.objectFit = 0.0f; },
             [](ZRParams& p) { p.floorAuto = false, p.backgroundFloor = 0.97f; }}) {
        ZRParams p = anchored(0.9f);
        unset(p);
        Image out;
        zre::applyAnchor(depth, p, out);
        EXPECT_TRUE(zrtest::imagesNear(out, depth, 0));
    }
}
