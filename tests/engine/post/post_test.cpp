#include "engine/post/post.h"

#include <array>
#include <cmath>
#include <limits>

#include <gmock/gmock.h>

#include "tests/support/testkit.h"

using zre::Image;
using zre::ZRParams;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

using Setter = void (*)(ZRParams&);
using Rgb = std::array<float, 3>;

ZRParams with(Setter set)
{
    ZRParams p;
    set(p);
    return p;
}

Rgb graded(const Rgb& colour, const ZRParams& p)
{
    Image img(1, 1, 1);
    img.data.assign(colour.begin(), colour.end());
    zre::applyPost(img, p);
    return {img.data[0], img.data[1], img.data[2]};
}

auto near(const Rgb& expected)
{
    return testing::Pointwise(testing::FloatNear(2e-7f), expected);
}

struct ColourCase
{
    const char* name;
    Setter set;
    Rgb before;
    Rgb after;
};

void PrintTo(const ColourCase& c, std::ostream* out)
{
    *out << c.name;
}

class GradedColour : public testing::TestWithParam<ColourCase>
{
};

} // namespace

TEST_P(GradedColour, HasItsKnownValue)
{
    const auto& [name, set, before, after] = GetParam();
    EXPECT_THAT(graded(before, with(set)), near(after));
}

INSTANTIATE_TEST_SUITE_P(
    ClosedForms, GradedColour,
    testing::Values(ColourCase{"levels",
                               [](ZRParams& p) { p.postBlack = 0.25f, p.postWhite = 0.75f; },
                               {0.5f, 0.125f, 0.875f},
                               {0.5f, 0.0f, 1.0f}},
                    ColourCase{"gammaTwoIsTheSquareRoot",
                               [](ZRParams& p) { p.postGamma = 2; },
                               {0.25f, 0.0f, 0.81f},
                               {0.5f, 0.0f, 0.9f}},
                    ColourCase{"gammaAlmostZeroIsPinned",
                               [](ZRParams& p) { p.postGamma = 0.005f; },
                               {1.0f, 0.9921875f, 0.5f},
                               {1.0f, 0.456430997f, 0.0f}},
                    ColourCase{"brightnessBeforeContrast",
                               [](ZRParams& p) { p.postBrightness = 0.25f, p.postContrast = 1; },
                               {0.25f, 0.0f, 0.375f},
                               {0.5f, 0.0f, 0.75f}},
                    ColourCase{"noContrastIsMidGrey",
                               [](ZRParams& p) { p.postContrast = -1; },
                               {0.1f, 0.9f, 0.3f},
                               {0.5f, 0.5f, 0.5f}},
                    ColourCase{"temperature",
                               [](ZRParams& p) { p.postTemperature = 0.5f; },
                               {0.4f, 0.4f, 0.4f},
                               {0.46f, 0.4f, 0.34f}},
                    ColourCase{"tintLowersGreenAlone",
                               [](ZRParams& p) { p.postTint = 1; },
                               {0.5f, 0.5f, 0.5f},
                               {0.5f, 0.35f, 0.5f}},
                    ColourCase{"saturationDoubled",
                               [](ZRParams& p) { p.postSaturation = 1; },
                               {0.5f, 0.4f, 0.4f},
                               {0.57874f, 0.37874f, 0.37874f}},
                    ColourCase{"vibranceSparesPureColours",
                               [](ZRParams& p) { p.postVibrance = 1; },
                               {0.8f, 0.0f, 0.4f},
                               {0.8f, 0.0f, 0.4f}},
                    ColourCase{"vibranceLiftsPaleColours",
                               [](ZRParams& p) { p.postVibrance = 1; },
                               {0.5f, 0.5f, 0.4f},
                               {0.505776f, 0.505776f, 0.325776f}},
                    ColourCase{"thirdOfACircle",
                               [](ZRParams& p) { p.postHue = 120; },
                               {0.7f, 0.2f, 0.4f},
                               {0.4f, 0.7f, 0.2f}},
                    ColourCase{"thirdOfACircleBack",
                               [](ZRParams& p) { p.postHue = -120; },
                               {0.7f, 0.2f, 0.4f},
                               {0.2f, 0.4f, 0.7f}},
                    ColourCase{"redToYellow",
                               [](ZRParams& p) { p.postHue = 60; },
                               {0.6f, 0.0f, 0.0f},
                               {0.6f, 0.6f, 0.0f}}),
    [](const auto& setting) { return std::string(setting.param.name); });

TEST(Post, BlackOnWhiteIsAThreshold)
{
    const ZRParams p = with([](ZRParams& q) { q.postBlack = q.postWhite = 0.5f; });
    EXPECT_THAT(graded({0.4999f, 0.5f, 0.5002f}, p), near({0.0f, 0.0f, 1.0f}));
}

TEST(Post, AFullCircleOfHueAndAnyTurnOfGreyChangeNothing)
{
    const Image before = zrtest::noise(701, 3, 1, 5); // more than one strip
    Image full = before;
    zre::applyPost(full, with([](ZRParams& p) { p.postHue = 360; }));
    EXPECT_TRUE(zrtest::imagesNear(full, before, 3e-7));

    for (const float v : {0.0f, 0.3f, 1.0f})
        EXPECT_THAT(graded({v, v, v}, with([](ZRParams& p) { p.postHue = 77; })), near({v, v, v}));
}

TEST(Post, HueKeepsTheExtremesOfEveryPixel)
{
    const Image before = zrtest::noise(200, 5, 1, 6);
    for (const float degrees : {-171.0f, -33.0f, 10.0f, 59.0f, 100.0f, 1000.0f}) {
        Image img = before;
        ZRParams p;
        p.postHue = degrees;
        zre::applyPost(img, p);
        for (std::size_t i = 0; i < img.pixelCount(); ++i) {
            const auto extremes = [i](const Image& of) {
                return std::minmax({of.plane(0)[i], of.plane(1)[i], of.plane(2)[i]});
            };
            ASSERT_NEAR(extremes(img).first, extremes(before).first, 2e-7);
            ASSERT_NEAR(extremes(img).second, extremes(before).second, 2e-7);
        }
    }
}

TEST(Post, NoSaturationIsTheLuminanceOfEachPixel)
{
    const Image before = zrtest::noise(600, 2, 1, 7);
    Image img = before;
    zre::applyPost(img, with([](ZRParams& p) { p.postSaturation = -1; }));
    for (std::size_t i = 0; i < img.pixelCount(); ++i)
        for (int c = 0; c < 3; ++c)
            ASSERT_NEAR(img.plane(c)[i],
                        0.2126 * before.plane(0)[i] + 0.7152 * before.plane(1)[i] +
                            0.0722 * before.plane(2)[i],
                        2e-7);
}

TEST(Post, AWholeImageAndSinglePixelsGiveTheSameBits)
{
    const ZRParams p = with([](ZRParams& q) {
        q.postGamma = 1.3f, q.postContrast = 0.2f, q.postTemperature = 0.4f;
        q.postSaturation = 0.3f, q.postVibrance = 0.2f, q.postHue = 50;
    });
    const Image before = zrtest::noise(523, 1, 1, 11);
    Image whole = before;
    zre::applyPost(whole, p);
    for (std::size_t i = 0; i < before.pixelCount(); ++i) {
        const Rgb pixel = graded({before.plane(0)[i], before.plane(1)[i], before.plane(2)[i]}, p);
        ASSERT_EQ(pixel, (Rgb{whole.plane(0)[i], whole.plane(1)[i], whole.plane(2)[i]})) << i;
    }
}

TEST(Post, AOneChannelImageGetsTheToneAlone)
{
    const Image before = zrtest::noise(777, 2, 0, 8);
    const auto colourControls = [](ZRParams& p) {
        p.postTemperature = p.postTint = p.postSaturation = p.postVibrance = 0.5f;
        p.postHue = 90;
    };
    Image untouched = before;
    zre::applyPost(untouched, with(colourControls));
    EXPECT_TRUE(zrtest::imagesNear(untouched, before, 1e-7));

    Image toned = before;
    zre::applyPost(toned, with([](ZRParams& p) { p.postBrightness = 0.25f, p.postTint = 1; }));
    for (std::size_t i = 0; i < toned.data.size(); ++i)
        ASSERT_NEAR(toned.data[i], std::min(1.0f, before.data[i] + 0.25f), 1e-7);
}

TEST(Post, ANeutralOrDisabledGradeKeepsEvenValuesOutOfRange)
{
    Image before = zrtest::noise(5, 4, 1, 9);
    before.data[3] = -4.0f;
    before.data[7] = kNan;
    ZRParams off = with([](ZRParams& p) { p.postEnabled = false, p.postHue = 40; });
    ZRParams blank = with([](ZRParams& p) { p.postHue = kNan, p.postWhite = kInfinity; });
    for (const ZRParams& p : {ZRParams{}, off, blank}) {
        Image img = before;
        zre::applyPost(img, p);
        EXPECT_TRUE(zrtest::imagesNear(img, before, 0));
    }
    EXPECT_TRUE(zre::postIsIdentity(ZRParams{}));
    EXPECT_FALSE(zre::postIsIdentity(off));
}

TEST(Post, NothingLeavesTheUnitRange)
{
    Image before = zrtest::noise(64, 8, 1, 10);
    before.data[0] = kNan;
    before.data[1] = kInfinity;
    before.data[2] = -kInfinity;
    before.data[3] = 3e38f;
    for (float ZRParams::*field :
         {&ZRParams::postBlack, &ZRParams::postWhite, &ZRParams::postGamma,
          &ZRParams::postBrightness, &ZRParams::postContrast, &ZRParams::postTemperature,
          &ZRParams::postTint, &ZRParams::postSaturation, &ZRParams::postVibrance,
          &ZRParams::postHue})
        for (const float value : {-3e38f, -1.0f, 0.5f, 2.0f, 3e38f, kNan, kInfinity}) {
            ZRParams p = with([](ZRParams& q) { q.postSaturation = 0.1f, q.postHue = 5; });
            p.*field = value;
            Image img = before;
            zre::applyPost(img, p);
            for (const float v : img.data)
                ASSERT_TRUE(v >= 0.0f && v <= 1.0f) << v << " with " << value;
        }
}
