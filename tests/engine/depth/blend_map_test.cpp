#include "engine/depth/blend_map.h"

#include <limits>

#include "engine/depth/blend_modes.h"
#include "engine/depth/depth_map.h"
#include "tests/support/testkit.h"

using zre::Image;

namespace {

struct BlendCase
{
    int mode;
    float base, map, result;
};

Image onePixel(float value)
{
    Image img(1, 1, 0);
    img.data[0] = value;
    return img;
}

class BlendResult : public testing::TestWithParam<BlendCase>
{
};

} // namespace

TEST_P(BlendResult, StandsInTheMapAtFullAmountAndHalfWayAtHalf)
{
    const auto [mode, base, map, result] = GetParam();
    Image depth = onePixel(base);
    zre::blendMap(depth, onePixel(map), mode, 1.0f);
    EXPECT_FLOAT_EQ(depth.data[0], result);
    depth = onePixel(base);
    zre::blendMap(depth, onePixel(map), mode, 0.5f);
    EXPECT_FLOAT_EQ(depth.data[0], (base + result) / 2);
}

INSTANTIATE_TEST_SUITE_P(
    Modes, BlendResult,
    testing::Values(BlendCase{0, 0.25f, 0.75f, 0.75f}, BlendCase{1, 0.25f, 0.75f, 0.75f},
                    BlendCase{1, 0.75f, 0.25f, 0.75f}, BlendCase{2, 0.25f, 0.75f, 0.25f},
                    BlendCase{2, 0.75f, 0.25f, 0.25f}, BlendCase{3, 0.25f, 0.5f, 0.75f},
                    BlendCase{3, 0.75f, 0.5f, 1.0f}, BlendCase{4, 0.75f, 0.5f, 0.25f},
                    BlendCase{4, 0.25f, 0.5f, 0.0f}, BlendCase{5, 0.25f, 0.5f, 0.625f},
                    BlendCase{-1, 0.25f, 0.75f, 0.75f}, BlendCase{6, 0.25f, 0.75f, 0.75f}));

TEST(BlendMap, AMapOfAnyOtherSizeIsReadByNearestNeighbour)
{
    for (const auto& [mapWidth, mapHeight] :
         {std::pair{3, 5}, {13, 2}, {29, 40}, {1, 1}, {13, 5}}) {
        const Image base = zrtest::noise(13, 11, 0, 1);
        const Image map = zrtest::noise(mapWidth, mapHeight, 1, 2);
        Image depth = base;
        zre::blendMap(depth, map, 4, 0.25f);
        for (int y = 0; y < 11; ++y)
            for (int x = 0; x < 13; ++x) {
                const float b = base.data[static_cast<std::size_t>(y * 13 + x)];
                const float m = map.data[static_cast<std::size_t>(y * mapHeight / 11 * mapWidth +
                                                                  x * mapWidth / 13)];
                EXPECT_NEAR(depth.data[static_cast<std::size_t>(y * 13 + x)],
                            b * 0.75f + std::max(0.0f, b - m) * 0.25f, 1e-7);
            }
    }
}

TEST(BlendMap, SamplesWithoutAValueLeaveTheDepthAlone)
{
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (int mode = 0; mode < static_cast<int>(zre::kBlendModes.size()); ++mode) {
        Image depth = zrtest::noise(4, 1, 0, 3);
        const Image before = depth;
        Image map(4, 1, 0);
        map.data = {kNan, -kNan, kInfinity, -kInfinity};
        zre::blendMap(depth, map, mode, 0.7f);
        EXPECT_TRUE(zrtest::imagesNear(depth, before, 0)) << mode;
    }
}

TEST(DepthModel, StaysOutWhenItIsOffOrHasNoImage)
{
    const Image anchored = zrtest::noise(5, 4, 0, 1);
    const Image model = zrtest::noise(5, 4, 0, 2);
    const Image nothing;
    zre::ZRParams off;
    off.depthModelEnabled = false;
    zre::ZRParams faded;
    faded.depthModelBlend = 0.0f;
    Image out;
    for (const auto& [params, image] :
         {std::pair{off, &model}, {faded, &model}, {zre::ZRParams{}, &nothing}}) {
        zre::compositeDepthModel(anchored, params, {.depthModel = image}, out);
        EXPECT_TRUE(zrtest::imagesNear(out, anchored, 0));
    }
    zre::compositeDepthModel(anchored, {}, {.depthModel = &model}, out);
    EXPECT_TRUE(zrtest::imagesNear(out, model, 0));
}
