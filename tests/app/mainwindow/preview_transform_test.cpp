#include "app/mainwindow/preview_transform.h"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

static double distance(QPointF a, QPointF b)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

class Wander : public testing::TestWithParam<QSize>
{
protected:
    PreviewTransform transform;
    std::mt19937 random{5};

    void SetUp() override
    {
        transform.setViewSize({900, 600});
        transform.setImageSize(GetParam());
    }
    double uniform(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(random);
    }
    QPointF somewhere() { return {uniform(0, 900), uniform(0, 600)}; }
    /// Over the picture, where that is in sight.
    QPointF somewhereOnPicture()
    {
        const QRectF seen = transform.imageRect().intersected({0, 0, 900, 600});
        return {uniform(seen.left(), seen.right()), uniform(seen.top(), seen.bottom())};
    }
};

TEST_P(Wander, ZoomKeepsThePointUnderTheCursorAndThePictureInSight)
{
    int overPicture = 0;
    for (int step = 0; step < 3000; ++step) {
        const QPointF cursor = step % 2 == 0 ? somewhere() : somewhereOnPicture();
        const QPointF under = transform.toImage(cursor);
        const bool onPicture = QRectF({0, 0}, QSizeF(GetParam())).contains(under);
        if (step % 3 == 0)
            transform.panBy({uniform(-400, 400), uniform(-400, 400)});
        else {
            transform.zoomAt(cursor, std::exp(uniform(-0.7, 0.7)));
            if (onPicture) {
                ++overPicture;
                ASSERT_LT(distance(transform.toView(under), cursor), 1e-6) << "step " << step;
            }
        }
        ASSERT_GE(transform.scale(), 1.0 / 256);
        ASSERT_LE(transform.scale(), PreviewTransform::kMaxScale);
        ASSERT_TRUE(QRectF(0, 0, 900, 600).adjusted(-1, -1, 1, 1).intersects(transform.imageRect()))
            << "step " << step;
        ASSERT_LT(distance(transform.toImage(transform.toView({3, 4})), {3, 4}), 1e-6);
    }
    EXPECT_GT(overPicture, 100);
}

TEST_P(Wander, FitShowsTheWholePictureInTheMiddleWhateverCameBefore)
{
    for (int step = 0; step < 50; ++step) {
        transform.zoomAt(somewhere(), uniform(0.3, 3));
        transform.panBy({uniform(-400, 400), uniform(-400, 400)});
        transform.fit();
        EXPECT_TRUE(QRectF(0, 0, 900, 600)
                        .adjusted(-1e-6, -1e-6, 1e-6, 1e-6)
                        .contains(transform.imageRect()));
        EXPECT_LT(distance(transform.imageRect().center(), {450, 300}), 1e-6);
    }
}

INSTANTIATE_TEST_SUITE_P(Pictures, Wander,
                         testing::Values(QSize(6000, 4000), QSize(40, 900), QSize(3, 2),
                                         QSize(12000, 90)));

TEST(PreviewTransform, ALargerViewOfTheSameImageShowsTheSamePlace)
{
    PreviewTransform transform;
    transform.setViewSize({800, 600});
    transform.setImageSize({4000, 3000});
    transform.setScaleAt({200, 100}, 1.0);
    const QPointF before = transform.toImage(transform.viewCenter());
    transform.setImageSize({8000, 3000});
    const QPointF after = transform.toImage(transform.viewCenter());
    EXPECT_NEAR(after.x(), 2 * before.x(), 1e-6);
    EXPECT_NEAR(after.y(), before.y(), 1e-6);
    EXPECT_EQ(transform.scale(), 1.0);
}

TEST(PreviewTransform, AResizedWindowFitsAgainOnlyWhatWasFitted)
{
    PreviewTransform transform;
    transform.setViewSize({800, 600});
    transform.setImageSize({4000, 3000});
    transform.setViewSize({400, 300});
    EXPECT_DOUBLE_EQ(transform.scale(), 0.1);
    transform.zoomAt({200, 150}, 3);
    const QPointF center = transform.toImage(transform.viewCenter());
    transform.setViewSize({1000, 700});
    EXPECT_DOUBLE_EQ(transform.scale(), 0.3);
    EXPECT_LT(distance(transform.toImage(transform.viewCenter()), center), 1e-6);
}

TEST(PreviewTransform, StepsAcrossActualPixelsStopThere)
{
    PreviewTransform transform;
    transform.setViewSize({800, 600});
    transform.setImageSize({4000, 3000});
    for (int step = 0; step < 40 && transform.scale() < 1.0; ++step)
        transform.zoomAt({400, 300}, 1.25);
    EXPECT_EQ(transform.scale(), 1.0);
    transform.zoomAt({400, 300}, 1.25);
    EXPECT_EQ(transform.scale(), 1.25);
}
