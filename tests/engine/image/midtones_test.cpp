#include "engine/image/midtones.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/support/testkit.h"

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

/// A dark frame as a camera gives it: background with noise, a few bright samples.
zre::Image darkFrame(int model)
{
    zre::Image image = zrtest::noise(97, 61, model, 5);
    for (std::size_t i = 0; i < image.data.size(); ++i)
        image.data[i] = i % 50 == 0 ? 0.5f + image.data[i] / 2 : 0.01f + 0.004f * image.data[i];
    return image;
}

/// By sorting, in the plainest way.
double sortedMedian(std::vector<float> values)
{
    std::erase_if(values, [](float v) { return !(v > 0.0f); });
    std::sort(values.begin(), values.end());
    return values.empty() ? 0.0 : values[(values.size() - 1) / 2];
}

TEST(Midtones, MedianIsExactAtEveryScaleAndPassesOverMissingData)
{
    for (const float scale : {1e-30f, 1e-4f, 1.0f, 3000.0f})
        for (const int count : {1, 2, 3, 64, 1001}) {
            zre::Image image = zrtest::noise(count, 1, 0, static_cast<std::uint32_t>(count));
            for (float& v : image.data)
                v *= scale;
            EXPECT_EQ(zre::sampleMedian(image), sortedMedian(image.data)) << scale << " " << count;
        }
    zre::Image holes(7, 1, 0);
    holes.data = {0.0f, kNan, 0.3f, -0.0f, 0.1f, -2.0f, 0.2f};
    EXPECT_EQ(zre::sampleMedian(holes), double{0.2f});
    EXPECT_EQ(zre::sampleMedian(zre::Image(5, 5, 1)), 0.0);
}

TEST(Midtones, BackgroundComesToItsTarget)
{
    for (const int model : {0, 1})
        for (const double target : {0.125, 0.25, 0.5}) {
            zre::Image image = darkFrame(model);
            zre::applyStretch(image, zre::autoStretch(image, target));
            EXPECT_NEAR(zre::sampleMedian(image), target, 1e-5);
        }
}

TEST(Midtones, OrderOfSamplesSurvivesAndTheResultStaysInTheUnit)
{
    const zre::Image before = darkFrame(0);
    zre::Image after = before;
    after.data[3] = kNan;
    after.data[4] = -1.0f;
    after.data[5] = HUGE_VALF;
    zre::applyStretch(after, zre::autoStretch(before));
    for (const float v : after.data)
        ASSERT_TRUE(v >= 0.0f && v <= 1.0f);
    for (std::size_t i = 6; i + 1 < after.data.size(); ++i)
        ASSERT_EQ(before.data[i] <= before.data[i + 1] && after.data[i] > after.data[i + 1], false);
}

TEST(Midtones, EqualChannelsStayEqual)
{
    zre::Image image(40, 30, 1);
    const zre::Image grey = darkFrame(0);
    for (int c = 0; c < 3; ++c)
        std::copy_n(grey.data.begin(), image.pixelCount(), image.plane(c));
    zre::applyStretch(image, zre::autoStretch(image));
    EXPECT_TRUE(std::equal(image.plane(0), image.plane(1), image.plane(1)));
    EXPECT_TRUE(std::equal(image.plane(1), image.plane(2), image.plane(2)));
}

TEST(Midtones, PicturesWithoutSpreadAreLeftAlone)
{
    zre::Image flat(8, 8, 1);
    EXPECT_TRUE(zre::autoStretch(flat).isIdentity());
    std::fill(flat.data.begin(), flat.data.end(), 0.3f);
    EXPECT_TRUE(zre::autoStretch(flat).isIdentity());
    EXPECT_TRUE(zre::autoStretch(zre::Image()).isIdentity());
    std::fill(flat.data.begin(), flat.data.end(), HUGE_VALF);
    EXPECT_TRUE(zre::autoStretch(flat).isIdentity());
}

TEST(Midtones, TransferPassesItsThreePoints)
{
    for (const double m : {0.001, 0.2, 0.5, 0.9}) {
        EXPECT_EQ(zre::midtonesTransfer(m, 0.0), 0.0);
        EXPECT_NEAR(zre::midtonesTransfer(m, m), 0.5, 1e-12);
        EXPECT_EQ(zre::midtonesTransfer(m, 1.0), 1.0);
    }
    for (const double v : {0.1, 0.6})
        EXPECT_DOUBLE_EQ(zre::midtonesTransfer(0.5, v), v);
    EXPECT_EQ(zre::midtonesTransfer(kNan, 0.3), 0.3);
}

TEST(Midtones, NonFiniteStretchChangesNothing)
{
    zre::Image image = darkFrame(1);
    const zre::Image before = image;
    zre::applyStretch(image, {kNan, 0.5});
    zre::applyStretch(image, {0.1, HUGE_VAL});
    zre::applyStretch(image, {1.0, 0.5});
    EXPECT_TRUE(zrtest::imagesNear(image, before, 0.0));
}

} // namespace
