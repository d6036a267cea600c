#include "app/mainwindow/depth_colors.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "engine/qt/zre_qt.h"
#include "tests/support/testkit.h"

/// CIE lightness, 0 to 100.
static double lightness(QRgb color)
{
    const auto linear = [](int level) {
        const double v = level / 255.0;
        return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    const double y = 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) +
                     0.0722 * linear(qBlue(color));
    return y > 0.008856 ? 116.0 * std::cbrt(y) - 16.0 : 903.3 * y;
}

TEST(DepthColors, LightnessRisesEvenlyFromDarkToPale)
{
    EXPECT_LT(lightness(depthColors().front()), 12.0);
    EXPECT_GT(lightness(depthColors().back()), 90.0);
    const double mean =
        (lightness(depthColors().back()) - lightness(depthColors().front())) / 255.0;
    for (std::size_t level = 8; level < 256; level += 8) {
        const double rise = lightness(depthColors()[level]) - lightness(depthColors()[level - 8]);
        EXPECT_GT(rise, 0.4 * 8 * mean) << level;
        EXPECT_LT(rise, 1.8 * 8 * mean) << level;
    }
}

TEST(DepthColors, NoTwoNeighboursOfALevelJump)
{
    for (std::size_t level = 1; level < 256; ++level) {
        const QRgb a = depthColors()[level - 1];
        const QRgb b = depthColors()[level];
        EXPECT_LE(std::abs(qRed(a) - qRed(b)), 8) << level;
        EXPECT_LE(std::abs(qGreen(a) - qGreen(b)), 8) << level;
        EXPECT_LE(std::abs(qBlue(a) - qBlue(b)), 8) << level;
    }
}

TEST(DepthColors, LevelsAreThoseOfTheGreyPictureEvenOffTheScale)
{
    zre::Image depth = zrtest::noise(17, 5, 0, 3);
    depth.data[0] = -0.5f;
    depth.data[1] = 1.5f;
    depth.data[2] = std::numeric_limits<float>::quiet_NaN();
    depth.data[3] = std::numeric_limits<float>::infinity();
    const QImage grey = zre_qt::toQImage(depth);
    const QImage color = depthInColor(depth);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 17; ++x)
            EXPECT_EQ(color.pixel(x, y),
                      depthColors()[static_cast<std::size_t>(qRed(grey.pixel(x, y)))]);
    EXPECT_TRUE(depthInColor({}).isNull());
}
