#include "engine/qt/zre_qt.h"

#include <cmath>
#include <limits>

#include "tests/support/testkit.h"

namespace {

TEST(ZreQt, EveryByteSurvivesTheWayThereAndBack)
{
    QImage picture(256, 2, QImage::Format_RGB888);
    for (int x = 0; x < 256; ++x) {
        picture.setPixel(x, 0, qRgb(x, 255 - x, x ^ 0x55));
        picture.setPixel(x, 1, qRgb(255, x, 0));
    }
    const QImage back = zre_qt::toQImage(zre_qt::fromQImage(picture));
    EXPECT_EQ(back.format(), QImage::Format_RGBA8888);
    EXPECT_EQ(back.convertToFormat(QImage::Format_RGB888), picture);
}

TEST(ZreQt, AnySampleBecomesAByte)
{
    zre::Image image(8, 1, 0);
    image.data = {-0.1f,     0.0f,       1.0f, 3e38f, std::numeric_limits<float>::quiet_NaN(),
                  HUGE_VALF, -HUGE_VALF, 0.5f};
    const QImage picture = zre_qt::toQImage(image);
    constexpr int expected[]{0, 0, 255, 255, 0, 255, 0, 128};
    for (int x = 0; x < 8; ++x)
        EXPECT_EQ(picture.pixel(x, 0), qRgb(expected[x], expected[x], expected[x])) << x;
}

TEST(ZreQt, PlanesAndRowsKeepTheirPlaces)
{
    // A width that is no multiple of four: QImage pads its rows, the raster does not.
    const zre::Image image = zrtest::noise(5, 3, 1, 2);
    const zre::Image back = zre_qt::fromQImage(zre_qt::toQImage(image));
    EXPECT_TRUE(zrtest::imagesNear(back, image, 0.5001 / 255));
}

TEST(ZreQt, EveryFormatShowsTheSamePicture)
{
    for (const int width : {1, 3, 4, 7, 64, 131}) {
        zre::Image image = zrtest::noise(width, 5, 1, 9);
        for (float& v : image.data)
            v = v * 1.4f - 0.2f;
        const QImage picture = zre_qt::toQImage(image);
        for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_RGB888})
            EXPECT_EQ(zre_qt::toQImage(image, format), picture.convertToFormat(format)) << width;
    }
    EXPECT_TRUE(zre_qt::toQImage(zrtest::noise(4, 4, 1, 1), QImage::Format_Mono).isNull());
}

TEST(ZreQt, NothingGivesNothing)
{
    EXPECT_TRUE(zre_qt::toQImage(zre::Image()).isNull());
    const zre::Image image = zre_qt::fromQImage(QImage());
    EXPECT_FALSE(image.usable());
    EXPECT_TRUE(image.data.empty());
}

} // namespace
