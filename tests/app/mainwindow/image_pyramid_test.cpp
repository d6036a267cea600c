#include "app/mainwindow/image_pyramid.h"

#include <algorithm>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

static QImage noisePicture(int width, int height)
{
    QImage picture(width, height, QImage::Format_RGB32);
    std::mt19937 random(11);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.setPixel(x, y, 0xff000000u | (static_cast<QRgb>(random()) & 0xffffffu));
    return picture;
}

class Halved : public testing::TestWithParam<QSize>
{
};

TEST_P(Halved, IsTheRoundedMeanOfTwoByTwoWithTheEdgeRepeated)
{
    const QImage picture = noisePicture(GetParam().width(), GetParam().height());
    const QImage half = halved(picture);
    ASSERT_EQ(half.size(), QSize((picture.width() + 1) / 2, (picture.height() + 1) / 2));
    for (int y = 0; y < half.height(); ++y)
        for (int x = 0; x < half.width(); ++x) {
            int red = 0;
            int green = 0;
            int blue = 0;
            for (const int sy : {2 * y, std::min(2 * y + 1, picture.height() - 1)})
                for (const int sx : {2 * x, std::min(2 * x + 1, picture.width() - 1)}) {
                    red += qRed(picture.pixel(sx, sy));
                    green += qGreen(picture.pixel(sx, sy));
                    blue += qBlue(picture.pixel(sx, sy));
                }
            ASSERT_EQ(half.pixel(x, y), qRgb((red + 2) / 4, (green + 2) / 4, (blue + 2) / 4))
                << "at " << x << ", " << y;
        }
}

INSTANTIATE_TEST_SUITE_P(Shapes, Halved,
                         testing::Values(QSize(8, 6), QSize(7, 5), QSize(1, 1), QSize(1, 4),
                                         QSize(33, 2)));

TEST(ImagePyramid, LevelIsTheCoarsestThatStillHasAPixelForEachShown)
{
    ImagePyramid pyramid(noisePicture(300, 200));
    for (const double scale : {32.0, 1.0, 0.999, 0.51, 0.5, 0.49, 0.26, 0.25, 0.13, 0.03}) {
        const int level = pyramid.levelFor(scale);
        const double widthShown = 300 * scale;
        EXPECT_TRUE(level == 0 || pyramid.level(level).width() >= widthShown) << scale;
        EXPECT_LT(150.0 / std::ldexp(1.0, level), widthShown) << scale;
    }
}

TEST(ImagePyramid, ThinAndTinyPicturesHaveNoLevelBelowOnePixel)
{
    ImagePyramid thin(noisePicture(4000, 1));
    EXPECT_EQ(thin.levelFor(0.001), 0);
    EXPECT_EQ(thin.levelFor(std::nan("")), 0);
    EXPECT_EQ(ImagePyramid().levelFor(0.1), 0);
}
