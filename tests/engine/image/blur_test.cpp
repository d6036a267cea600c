#include "engine/image/blur.h"

#include <limits>

#include <gtest/gtest.h>

#include "tests/engine/image/naive.h"
#include "tests/support/testkit.h"

using zre::Image;

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

struct Shape
{
    int width, height, model;
};

std::ostream& operator<<(std::ostream& out, const Shape& s)
{
    return out << s.width << "x" << s.height << (s.model == 1 ? " rgb" : "");
}

/// Noise with both signs, far from 0 to 1, so that a changed order of a sum shows in its bits.
Image roughNoise(const Shape& shape, std::uint32_t seed)
{
    Image img = zrtest::noise(shape.width, shape.height, shape.model, seed);
    for (float& v : img.data)
        v = (v - 0.4f) * 3.0f;
    return img;
}

class GaussianBlurAgainstNaive : public testing::TestWithParam<Shape>
{
};

} // namespace

TEST_P(GaussianBlurAgainstNaive, SumsItsTapsInOrderWhateverTheVectorWidth)
{
    const Image source = roughNoise(GetParam(), 11);
    for (const float sigma : {0.2f, 0.34f, 0.7f, 2.0f, 6.0f, 17.3f, 50.0f}) {
        Image actual = source;
        zre::gaussianBlur(actual, sigma, 0.01f, {});
        EXPECT_TRUE(zrtest::imagesNear(actual, naive::blurred(source, sigma, 0.01f), 0.0))
            << "sigma " << sigma;
    }
}

TEST_P(GaussianBlurAgainstNaive, EndsTheKernelAtTheCutoff)
{
    const Image source = roughNoise(GetParam(), 12);
    for (const float cutoff : {1e-38f, 1e-6f, 0.3f, 0.999f, 0.0f, 1.0f, -0.5f, 7.0f, kNaN}) {
        Image actual = source;
        zre::gaussianBlur(actual, 3.0f, cutoff, {});
        EXPECT_TRUE(zrtest::imagesNear(actual, naive::blurred(source, 3.0f, cutoff), 0.0))
            << "cutoff " << cutoff;
    }
}

TEST_P(GaussianBlurAgainstNaive, NoBadSampleSpreadsBeyondTheKernel)
{
    Image source = roughNoise(GetParam(), 13);
    const std::size_t count = source.data.size();
    source.data[count / 2] = kNaN;
    source.data[count - 1] = kInfinity;
    source.data[count / 7] = -kInfinity;
    source.data[count / 3] = -0.0f;
    for (const float sigma : {0.1f, 0.5f, 2.2f, 9.0f}) {
        Image actual = source;
        zre::gaussianBlur(actual, sigma, 0.01f, {});
        EXPECT_TRUE(zrtest::imagesNear(actual, naive::blurred(source, sigma, 0.01f), 0.0))
            << "sigma " << sigma;
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, GaussianBlurAgainstNaive,
                         testing::Values(Shape{1, 1, 0}, Shape{2, 1, 1}, Shape{1, 203, 0},
                                         Shape{203, 1, 0}, Shape{5, 7, 1}, Shape{15, 6, 0},
                                         Shape{16, 12, 0}, Shape{17, 13, 0}, Shape{64, 5, 1},
                                         Shape{65, 66, 0}, Shape{300, 40, 0}, Shape{40, 300, 0},
                                         Shape{131, 129, 1}));

TEST(GaussianBlur, LeavesTheImageWhenThereIsNothingToDo)
{
    const Image source = roughNoise({33, 21, 1}, 3);
    for (const float sigma : {0.0f, -0.0f, -2.0f, kNaN, kInfinity, -kInfinity}) {
        Image actual = source;
        zre::gaussianBlur(actual, sigma, 0.01f, {});
        zre::localMean(actual, static_cast<double>(sigma), {});
        EXPECT_TRUE(zrtest::imagesNear(actual, source, 0.0)) << "sigma " << sigma;
    }
    Image unusable;
    zre::gaussianBlur(unusable, 2.0f, 0.01f, [](double) { FAIL() << "no work, no report"; });
    EXPECT_EQ(unusable.data.size(), 0u);
}

TEST(GaussianBlur, ASenselessSigmaEndsAndCountsAsTheWidest)
{
    const Image source = roughNoise({23, 9, 0}, 4);
    Image widest = source;
    zre::gaussianBlur(widest, 4096.0f, 0.01f, {});
    EXPECT_TRUE(zrtest::imagesNear(widest, naive::blurred(source, 4096.0f, 0.01f), 0.0));
    for (const float sigma : {4097.0f, 1e9f, 1e30f, std::numeric_limits<float>::max()}) {
        Image actual = source;
        zre::gaussianBlur(actual, sigma, 0.01f, {});
        EXPECT_TRUE(zrtest::imagesNear(actual, widest, 0.0)) << "sigma " << sigma;
    }
}

TEST(GaussianBlur, KeepsAConstantAndTheSumOfAnInnerSpot)
{
    Image constant(70, 50, 0);
    std::fill(constant.data.begin(), constant.data.end(), 0.7f);
    Image spot(70, 50, 0);
    spot.plane(0)[25 * 70 + 35] = 1.0f;
    const Image untouched = constant;
    for (const float sigma : {0.4f, 3.0f, 7.0f}) {
        Image flat = untouched;
        zre::gaussianBlur(flat, sigma, 0.01f, {});
        EXPECT_TRUE(zrtest::imagesNear(flat, untouched, 1e-6)) << "sigma " << sigma;
        Image spread = spot;
        zre::gaussianBlur(spread, sigma, 0.01f, {});
        double sum = 0.0;
        for (const float v : spread.data)
            sum += static_cast<double>(v);
        EXPECT_NEAR(sum, 1.0, 1e-5) << "sigma " << sigma;
    }
}

TEST(GaussianBlur, LocalMeanIsTheBlurWithTheUsualCutoff)
{
    const Image source = roughNoise({45, 31, 1}, 5);
    Image mean = source;
    zre::localMean(mean, 2.5, {});
    EXPECT_TRUE(zrtest::imagesNear(mean, naive::blurred(source, 2.5f, 0.01f), 0.0));
}

TEST(GaussianBlur, ReportsEvery64thLineOfAllChannelsAndPasses)
{
    for (const Shape& shape : {Shape{200, 130, 1}, Shape{64, 64, 0}, Shape{20, 11, 0},
                               Shape{1, 400, 1}, Shape{700, 3, 0}}) {
        Image img = roughNoise(shape, 6);
        std::vector<double> reported;
        zre::gaussianBlur(img, 2.0f, 0.01f, [&](double f) { reported.push_back(f); });
        std::vector<double> expected;
        const int lines = (shape.width + shape.height) * img.channels;
        for (int line = 64; line <= lines; line += 64)
            expected.push_back(static_cast<double>(line) / lines);
        EXPECT_EQ(reported, expected) << shape;

        Image silent = roughNoise(shape, 6);
        zre::gaussianBlur(silent, 2.0f, 0.01f, {});
        EXPECT_TRUE(zrtest::imagesNear(silent, img, 0.0)) << "reporting changed the pixels";
    }
}

TEST(SubRange, MapsANestedStepAndKeepsAnEmptyFunctionEmpty)
{
    EXPECT_FALSE(zre::subRange({}, 0.2, 0.6));
    std::vector<double> reported;
    const zre::Progress outer = [&](double f) { reported.push_back(f); };
    const zre::Progress inner = zre::subRange(outer, 0.2, 0.6);
    inner(0.0);
    inner(0.5);
    inner(1.0);
    ASSERT_EQ(reported.size(), 3u);
    EXPECT_NEAR(reported[0], 0.2, 1e-15);
    EXPECT_NEAR(reported[1], 0.4, 1e-15);
    EXPECT_NEAR(reported[2], 0.6, 1e-15);
}
