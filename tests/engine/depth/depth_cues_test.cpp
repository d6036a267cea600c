#include "engine/depth/depth_map.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>

#include "tests/engine/depth/depth_reference.h"
#include "tests/support/testkit.h"

using zre::DepthInputs;
using zre::Image;
using zre::ZRParams;

namespace {

constexpr int kWidth = 37; // no multiple of any vector width
constexpr int kHeight = 23;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// Every optional input at once; which of them counts is up to the parameters.
struct Scene
{
    Image source = zrtest::noise(kWidth, kHeight, 1, 11);
    Image starless = zrtest::noise(kWidth, kHeight, 1, 12);
    Image mask = zrtest::noise(kWidth, kHeight, 0, 13);
    Image map = zrtest::noise(16, 9, 1, 14);
    Image learned = zrtest::noise(kWidth, kHeight, 0, 15);

    DepthInputs inputs() const { return {&starless, &mask, &map, nullptr, &learned}; }
};

struct CueCase
{
    const char* name;
    void (*set)(ZRParams&);
};

void PrintTo(const CueCase& c, std::ostream* out)
{
    *out << c.name;
}

void useRows(ZRParams& p)
{
    p.colorDepthEnabled = true;
    p.colorDepthWeight = 0.8f;
    p.colorDepthEntries = "1,0.2,0.3,0.7,0.5,0.9;0,0.5,0.5,0.5,2,1;1,0.6,0.6,0.5,0.4,0.15";
}

void useMap(ZRParams& p)
{
    p.depthMapEnabled = true;
    p.depthMapBlend = 0.7f;
}

class CuesAgainstTheirDefinition : public testing::TestWithParam<CueCase>
{
};

} // namespace

TEST_P(CuesAgainstTheirDefinition, AgreeOnNoise)
{
    const Scene scene;
    ZRParams p;
    GetParam().set(p);
    Image out;
    zre::buildDepthCues(scene.source, p, scene.inputs(), out, {}, {});
    EXPECT_TRUE(zrtest::imagesNear(out, referenceCues(scene.source, p, scene.inputs()), 2e-5));
}

INSTANTIATE_TEST_SUITE_P(
    Settings, CuesAgainstTheirDefinition,
    testing::Values(
        CueCase{"defaults", [](ZRParams&) {}},
        CueCase{"luminanceAlone", [](ZRParams& p) { p.structureWeight = 0; }},
        CueCase{"structureAlone", [](ZRParams& p) { p.luminanceWeight = 0, p.structureScale = 4; }},
        CueCase{"inverted", [](ZRParams& p) { p.invertDepth = true; }},
        CueCase{"unsmoothed", [](ZRParams& p) { p.smoothness = 0; }},
        CueCase{"softEdges", [](ZRParams& p) { p.edgePreservation = 0; }},
        CueCase{"edgesBeyondTheRange", [](ZRParams& p) { p.edgePreservation = 3; }},
        CueCase{"edgesBelowTheRange", [](ZRParams& p) { p.edgePreservation = -1; }},
        CueCase{"gamma", [](ZRParams& p) { p.depthGamma = 2.2f; }},
        CueCase{"learned", [](ZRParams& p) { p.aiDepthWeight = 0.6f; }},
        CueCase{"narrowband",
                [](ZRParams& p) {
                    p.narrowbandEnabled = true, p.narrowbandWeight = 0.9f;
                    p.nearChannel = 2, p.farChannel = 1;
                }},
        CueCase{"narrowbandAlone",
                [](ZRParams& p) {
                    p.narrowbandEnabled = true, p.narrowbandWeight = 0.5f;
                    p.luminanceEnabled = false, p.aiDepthWeight = 1;
                }},
        CueCase{"nothingButRows", [](ZRParams& p) { p.luminanceEnabled = false, useRows(p); }},
        CueCase{"rows", useRows},
        CueCase{"rowsWithGamma", [](ZRParams& p) { useRows(p), p.colorDepthGamma = 0.5f; }},
        CueCase{"rowsAlongEdges", [](ZRParams& p) { useRows(p), p.colorDepthSmoothness = 1.5f; }},
        CueCase{"rowsBlurred", [](ZRParams& p) { useRows(p), p.colorDepthGaussian = 2; }},
        CueCase{
            "rowsSmoothedTwice",
            [](ZRParams& p) { useRows(p), p.colorDepthSmoothness = 1, p.colorDepthGaussian = 1; }},
        CueCase{"starMask", [](ZRParams& p) { p.starInputMode = 1, p.starFloatation = 0.6f; }},
        CueCase{"starlessSource", [](ZRParams& p) { p.starInputMode = 3; }}, CueCase{"map", useMap},
        CueCase{"mapScreened", [](ZRParams& p) { useMap(p), p.depthMapMode = 5; }},
        CueCase{"mapSmoothed",
                [](ZRParams& p) { useMap(p), p.paintedSmoothness = 2, p.depthMapMode = 3; }},
        CueCase{"mapWithGamma", [](ZRParams& p) { useMap(p), p.paintedGamma = 0.4f; }}),
    [](const auto& setting) { return std::string(setting.param.name); });

TEST(DepthCues, AOneChannelImageHasNoColourStages)
{
    const Image grey = zrtest::noise(kWidth, kHeight, 0, 3);
    ZRParams p;
    useRows(p);
    p.narrowbandEnabled = true;
    p.narrowbandWeight = 1.0f;
    Image out;
    zre::buildDepthCues(grey, p, {}, out, {}, {});
    EXPECT_TRUE(zrtest::imagesNear(out, referenceCues(grey, p, {}), 2e-5));
}

TEST(DepthCues, AStarlessImageOfAnotherSizeIsBroughtToTheSource)
{
    const Scene scene;
    const Image large = zrtest::noise(kWidth * 2, kHeight * 2, 1, 5);
    Image means(kWidth, kHeight, 1);
    for (int c = 0; c < 3; ++c)
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                const float* from = large.plane(c) + 2 * y * large.width + 2 * x;
                means.plane(c)[y * kWidth + x] =
                    (from[0] + from[1] + from[large.width] + from[large.width + 1]) / 4;
            }
    ZRParams p;
    p.starInputMode = 2;
    Image fromLarge;
    Image fromMeans;
    zre::buildDepthCues(scene.source, p, {.starless = &large}, fromLarge, {}, {});
    zre::buildDepthCues(scene.source, p, {.starless = &means}, fromMeans, {}, {});
    EXPECT_TRUE(zrtest::imagesNear(fromLarge, fromMeans, 1e-5));

    Image withoutStarless;
    Image plain;
    zre::buildDepthCues(scene.source, p, {}, withoutStarless, {}, {});
    zre::buildDepthCues(scene.source, ZRParams{}, {}, plain, {}, {});
    EXPECT_TRUE(zrtest::imagesNear(withoutStarless, plain, 0));
}

TEST(DepthCues, ALearnedDepthOfAnotherPixelCountIsIgnored)
{
    const Scene scene;
    const Image small = zrtest::noise(kWidth - 1, kHeight, 0, 5);
    ZRParams p;
    p.aiDepthWeight = 1.0f;
    Image out;
    Image plain;
    zre::buildDepthCues(scene.source, p, {.aiDepth = &small}, out, {}, {});
    zre::buildDepthCues(scene.source, ZRParams{}, {}, plain, {}, {});
    EXPECT_TRUE(zrtest::imagesNear(out, plain, 0));
}

TEST(DepthCues, PixelsThatNoRowTouchesKeepTheirDepthExactly)
{
    Image source = zrtest::noise(kWidth, kHeight, 1, 21);
    for (int c = 0; c < 3; ++c)
        source.plane(c)[40] = 5.0f; // the one colour that the row paints
    ZRParams p;
    Image plain;
    zre::buildDepthCues(source, p, {}, plain, {}, {});
    useRows(p);
    p.colorDepthEntries = "1,5,5,5,0,0.25";
    p.colorDepthWeight = 1.0f;
    p.colorDepthSmoothness = 3.0f;
    p.colorDepthGaussian = 0.0f;
    Image painted;
    zre::buildDepthCues(source, p, {}, painted, {}, {});
    EXPECT_NE(painted.data[40], plain.data[40]);
    painted.data[40] = plain.data[40];
    EXPECT_TRUE(zrtest::imagesNear(painted, plain, 0));
}

TEST(DepthCues, AZeroTolerancePaintsTheExactColourAlone)
{
    Image source(3, 1, 1);
    for (int c = 0; c < 3; ++c) {
        source.plane(c)[0] = 0.25f;
        source.plane(c)[1] = 0.2502f;
        source.plane(c)[2] = 0.9f;
    }
    ZRParams p;
    p.luminanceEnabled = false;
    p.colorDepthEnabled = true;
    p.colorDepthWeight = 0.5f;
    p.colorDepthEntries = "1,0.25,0.25,0.25,0,1";
    Image out;
    zre::buildDepthCues(source, p, {}, out, {}, {});
    EXPECT_THAT(out.data, testing::ElementsAre(0.5f, 0.0f, 0.0f));
}

TEST(DepthCues, AFlatImageIsFarEverywhere)
{
    Image flat(9, 7, 1);
    std::fill(flat.data.begin(), flat.data.end(), 0.6f);
    ZRParams p;
    p.smoothness = 0.0f;
    p.depthGamma = 2.0f;
    Image out;
    zre::buildDepthCues(flat, p, {}, out, {}, {});
    EXPECT_TRUE(zrtest::imagesNear(out, Image(9, 7, 0), 0));
}

TEST(DepthCues, BlankPixelsCountAsBlackAndInfiniteOnesAsWhite)
{
    Image replaced = zrtest::noise(60, 40, 1, 8);
    Image holed = replaced;
    for (int c = 0; c < 3; ++c) {
        holed.plane(c)[500] = kNan;
        holed.plane(c)[501] = -kInfinity;
        holed.plane(c)[700] = kInfinity;
        replaced.plane(c)[500] = replaced.plane(c)[501] = 0.0f;
        replaced.plane(c)[700] = 1.0f;
    }
    Image out;
    Image expected;
    zre::buildDepthCues(holed, {}, {}, out, {}, {});
    zre::buildDepthCues(replaced, {}, {}, expected, {}, {});
    EXPECT_TRUE(zrtest::imagesNear(out, expected, 1e-6));
}

TEST(DepthCues, NoParameterValueGivesADepthOutOfRange)
{
    const Scene scene;
    Image holes = zrtest::noise(kWidth, kHeight, 1, 77);
    holes.data[5] = kNan;
    holes.data[300] = kInfinity;
    for (float ZRParams::*field : {&ZRParams::luminanceWeight,
                                   &ZRParams::structureWeight,
                                   &ZRParams::structureScale,
                                   &ZRParams::aiDepthWeight,
                                   &ZRParams::narrowbandWeight,
                                   &ZRParams::smoothness,
                                   &ZRParams::edgePreservation,
                                   &ZRParams::depthGamma,
                                   &ZRParams::colorDepthWeight,
                                   &ZRParams::colorDepthGamma,
                                   &ZRParams::colorDepthSmoothness,
                                   &ZRParams::colorDepthGaussian,
                                   &ZRParams::starFloatation,
                                   &ZRParams::starPlane,
                                   &ZRParams::depthMapBlend,
                                   &ZRParams::paintedSmoothness,
                                   &ZRParams::paintedGamma,
                                   &ZRParams::depthModelBlend,
                                   &ZRParams::objectFit,
                                   &ZRParams::objectThickness,
                                   &ZRParams::manualAnchorDepth,
                                   &ZRParams::backgroundFloor})
        for (const float value : {kNan, kInfinity, -kInfinity, -1.0f, 0.0f}) {
            ZRParams p;
            useRows(p), useMap(p);
            p.narrowbandEnabled = true;
            p.narrowbandWeight = p.aiDepthWeight = p.objectFit = 0.5f;
            p.colorDepthSmoothness = p.colorDepthGaussian = p.paintedSmoothness = 1.0f;
            p.starInputMode = 1;
            p.resolveDistance = p.sourceIsStarless = p.manualAnchorOn = true;
            p.floorAuto = false;
            p.*field = value;
            Image out;
            DepthInputs in = scene.inputs();
            in.depthModel = in.externalDepth = &holes;
            zre::buildDepthMap(holes, p, in, out, {});
            ASSERT_EQ(out.pixelCount(), holes.pixelCount());
            for (const float v : out.data)
                ASSERT_TRUE(std::isfinite(v) && v > -3.0f && v < 3.0f) << value << " gives " << v;
        }
}

TEST(DepthCues, ModesAndChannelsBeyondTheirRangeReadNoForeignMemory)
{
    const Scene scene;
    for (const int value : {-2147483647, -1, 3, 2147483647}) {
        ZRParams p;
        useMap(p);
        p.narrowbandEnabled = true;
        p.narrowbandWeight = 1.0f;
        p.nearChannel = p.farChannel = p.depthMapMode = p.depthModelMode = p.starInputMode = value;
        Image out;
        zre::buildDepthMap(scene.source, p, scene.inputs(), out, {});
        EXPECT_EQ(out.pixelCount(), scene.source.pixelCount());
    }
}

TEST(DepthCues, StagesAreNamedInOrderAndProgressNeverFallsBack)
{
    const Scene scene;
    ZRParams p;
    useRows(p), useMap(p);
    p.colorDepthSmoothness = 1.0f;
    std::vector<std::string> stages;
    std::vector<double> fractions;
    Image out;
    zre::buildDepthCues(
        scene.source, p, scene.inputs(), out, [&](double f) { fractions.push_back(f); },
        [&](const std::string& stage) { stages.push_back(stage); });
    EXPECT_THAT(stages, testing::ElementsAre("Smoothing", "Color depth", "External depth map"));
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_EQ(fractions.front(), 0.05);
    EXPECT_EQ(fractions.back(), 0.95);
}

TEST(DepthMap, TheOutputMayBeTheSourceItself)
{
    const Scene scene;
    Image apart;
    Image same = scene.source;
    zre::buildDepthMap(scene.source, ZRParams{}, {}, apart, {});
    zre::buildDepthMap(same, ZRParams{}, {}, same, {});
    EXPECT_TRUE(zrtest::imagesNear(same, apart, 0));
}
