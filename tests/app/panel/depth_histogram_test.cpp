#include "app/panel/depth_histogram.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace {

/// A map of which each quarter has one depth.
zre::Image quarters(float a, float b, float c, float d)
{
    zre::Image depth(40, 10, 0);
    const float values[] = {a, b, c, d};
    for (std::size_t i = 0; i < depth.data.size(); ++i)
        depth.data[i] = values[i % 40 / 10];
    return depth;
}

zre::ZRParams params(float parallax, float convergence, float maxDisparity)
{
    zre::ZRParams p;
    p.parallaxAmount = parallax;
    p.autoConvergence = false;
    p.convergence = convergence;
    p.maxDisparity = maxDisparity;
    return p;
}

} // namespace

TEST(DepthHistogram, EveryPixelOfASmallMapCountsOnceInItsBin)
{
    const float hostile = std::numeric_limits<float>::infinity();
    const DepthHistogram h = depthHistogram(quarters(0.0f, 0.5f, hostile, std::nanf("")), {});
    EXPECT_EQ(h.samples, 300);
    EXPECT_EQ(h.bins[0], 100);
    EXPECT_EQ(h.bins[128], 100);
    EXPECT_EQ(h.bins[255], 100);
    EXPECT_EQ(depthHistogram({}, {}).samples, 0);
}

TEST(DepthHistogram, DisparityIsSignedAboutTheScreenAndStopsAtTheLimit)
{
    const DepthHistogram h =
        depthHistogram(quarters(0.1f, 0.25f, 0.5f, 0.9f), params(40.0f, 0.25f, 15.0f));
    EXPECT_DOUBLE_EQ(h.disparityOf(0.25), 0.0);
    EXPECT_NEAR(h.disparityOf(0.5), 10.0, 1e-9);
    EXPECT_NEAR(h.disparityOf(0.1), -6.0, 1e-6);
    EXPECT_NEAR(h.disparityOf(0.9), 15.0, 1e-9);
    EXPECT_NEAR(h.limitedShare(), 0.25, 1e-9);
    EXPECT_NEAR(h.quantile(0.5), 0.25, 1.0 / 256);
    EXPECT_TRUE(describe(h).contains("to +15.0 px")) << qPrintable(describe(h));
    EXPECT_TRUE(describe(h).contains("holds back 25.0 %"));
}

TEST(DepthHistogram, TheViewSaysInWordsWhatItDraws)
{
    DepthHistogramView view;
    view.resize(240, view.sizeHint().height());
    const QImage empty = view.grab().toImage();
    EXPECT_TRUE(view.accessibleDescription().startsWith("Shown once"));
    view.setHistogram(depthHistogram(quarters(0.1f, 0.2f, 0.5f, 0.9f), params(40.0f, 0.25f, 0.0f)));
    EXPECT_TRUE(view.accessibleDescription().contains("-6."));
    EXPECT_NE(view.grab().toImage(), empty);
}
