#include <algorithm>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "engine/image/blur.h"
#include "tests/engine/image/naive.h"
#include "tests/support/testkit.h"

using zre::Image;

TEST(GuidedFilter, EqualsItsDefinitionBitForBit)
{
    struct Case
    {
        int width, height;
        float sigma, eps;
    };
    for (const Case& c :
         {Case{61, 43, 2.0f, 1e-3f}, Case{1, 90, 5.0f, 1e-4f}, Case{130, 1, 1.2f, 0.1f},
          Case{18, 17, 30.0f, 1e-2f}, Case{9, 8, 0.0f, 1e-3f}, Case{9, 8, -1.0f, 1e-3f}}) {
        const Image guide = zrtest::noise(c.width, c.height, 0, 21);
        Image target = zrtest::noise(c.width, c.height, 0, 22);
        const Image expected = naive::guided(guide, target, c.sigma, c.eps);
        zre::guidedFilter(guide, target, static_cast<double>(c.sigma), c.eps, {});
        EXPECT_TRUE(zrtest::imagesNear(target, expected, 0.0))
            << c.width << "x" << c.height << " sigma " << c.sigma;
    }
}

TEST(GuidedFilter, MayBeGuidedByItsOwnTarget)
{
    Image img = zrtest::noise(40, 30, 0, 23);
    const Image expected = naive::guided(img, img, 2.0f, 1e-2f);
    zre::guidedFilter(img, img, 2.0, 1e-2f, {});
    EXPECT_TRUE(zrtest::imagesNear(img, expected, 0.0));
}

TEST(GuidedFilter, KeepsAnEdgeOfTheGuideAndSmoothsTheRest)
{
    const int width = 80;
    Image guide(width, 40, 0);
    for (std::size_t i = 0; i < guide.data.size(); ++i)
        guide.data[i] = i % width < width / 2 ? 0.2f : 0.8f;
    const Image noise = zrtest::noise(width, 40, 0, 24);
    Image target = guide;
    for (std::size_t i = 0; i < target.data.size(); ++i)
        target.data[i] += 0.1f * (noise.data[i] - 0.5f);
    const Image noisy = target;
    zre::guidedFilter(guide, target, 4.0, 1e-4f, {});

    const auto roughness = [&](const Image& img) {
        double sum = 0.0;
        for (std::size_t i = 0; i < img.data.size(); ++i)
            sum += std::fabs(static_cast<double>(img.data[i]) - static_cast<double>(guide.data[i]));
        return sum / static_cast<double>(img.data.size());
    };
    EXPECT_LT(roughness(target), 0.25 * roughness(noisy));
    const std::size_t middle = 20 * width + width / 2;
    EXPECT_GT(target.data[middle] - target.data[middle - 1], 0.5f) << "the edge was blurred";
}

TEST(GuidedFilter, LeavesTheTargetWhenAParameterIsNotFinite)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const Image guide = zrtest::noise(20, 10, 0, 25);
    const Image before = zrtest::noise(20, 10, 0, 26);
    struct Case
    {
        double sigma, eps;
    };
    for (const Case& c : {Case{infinity, 0.1}, Case{std::nan(""), 0.1}, Case{1e300, 0.1},
                          Case{2.0, infinity}, Case{2.0, std::nan("")}}) {
        Image target = before;
        zre::guidedFilter(guide, target, c.sigma, static_cast<float>(c.eps), {});
        EXPECT_TRUE(zrtest::imagesNear(target, before, 0.0))
            << "sigma " << c.sigma << " eps " << c.eps;
    }
    Image target = before;
    zre::guidedFilter(Image(), target, 2.0, 0.1f, {});
    EXPECT_TRUE(zrtest::imagesNear(target, before, 0.0)) << "no guide";
}

TEST(GuidedFilter, ReportsItsSixStagesInOrderAndEndsAtOne)
{
    const Image guide = zrtest::noise(150, 100, 0, 27);
    Image target = zrtest::noise(150, 100, 0, 28);
    std::vector<double> reported;
    zre::guidedFilter(guide, target, 2.0, 1e-3f, [&](double f) { reported.push_back(f); });
    std::vector<double> expected;
    for (int stage = 0; stage < 6; ++stage)
        for (const int line : {64, 128, 192})
            expected.push_back((stage + line / 250.0) / 6.0);
    expected.push_back(1.0);
    ASSERT_EQ(reported.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(reported[i], expected[i], 1e-12);
    EXPECT_TRUE(std::is_sorted(reported.begin(), reported.end()));
    EXPECT_EQ(reported.back(), 1.0);
}

TEST(GuidedFilter, ASigmaThatIsZeroInSinglePrecisionHasNoMeans)
{
    const Image guide = zrtest::noise(9, 8, 0, 27);
    const Image before = zrtest::noise(9, 8, 0, 28);
    Image target = before;
    zre::guidedFilter(guide, target, 1e-60, 1e-3f, {});
    EXPECT_TRUE(zrtest::imagesNear(target, naive::guided(guide, before, 0.0f, 1e-3f), 0.0));
}
