#include "app/panel/anaglyph_glasses.h"

#include <QApplication>
#include <QImage>

#include <gtest/gtest.h>

namespace {

/// Counts how often it is asked to paint.
struct PaintCounter : QObject
{
    int paints = 0;
    bool eventFilter(QObject*, QEvent* event) override
    {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

} // namespace

TEST(AnaglyphGlasses, LensesShowWhatTheEyeOfTheirSideGets)
{
    for (int mode = 0; mode < 4; ++mode) {
        const QColor left = lensTint(true, mode, 1.0, 1.0, 1.0);
        const QColor right = lensTint(false, mode, 1.0, 1.0, 1.0);
        EXPECT_GT(left.redF(), 0.5f) << mode;
        EXPECT_LT(left.greenF() + left.blueF(), 0.01f) << mode;
        EXPECT_LT(right.redF(), 0.01f) << mode;
        EXPECT_GT(std::min(right.greenF(), right.blueF()), 0.5f) << mode;
    }
}

TEST(AnaglyphGlasses, TheLargestGainsOfTheSettingsCanStillBeToldApart)
{
    const double gain = 1.28 * 1.3;
    EXPECT_LT(lensTint(false, 0, 1.0, 1.0, gain * 0.99).blueF(),
              lensTint(false, 0, 1.0, 1.0, gain).blueF());
}

TEST(AnaglyphGlasses, PaintsAnewOnlyForAChange)
{
    AnaglyphGlasses glasses;
    glasses.resize(glasses.sizeHint());
    glasses.show();
    QApplication::processEvents();
    PaintCounter counter;
    glasses.installEventFilter(&counter);
    const auto paintsAfter = [&](int mode, double r, double g, double b) {
        counter.paints = 0;
        glasses.setState(mode, r, g, b);
        QApplication::processEvents();
        return counter.paints;
    };
    EXPECT_EQ(paintsAfter(0, 1.0, 1.0, 1.0), 0);
    EXPECT_EQ(paintsAfter(0, 1.0 + 1e-14, 1.0, 1.0), 0);
    EXPECT_EQ(paintsAfter(0, 1.001, 1.0, 1.0), 1);
    EXPECT_EQ(paintsAfter(1, 1.001, 1.0, 1.0), 1);
    EXPECT_EQ(paintsAfter(1, 1.001, 0.0, 1.0), 1);
    EXPECT_EQ(paintsAfter(1, 1.001, 0.0, 1.0), 0);
}

TEST(AnaglyphGlasses, TheDesignKeepsItsShapeInAnyWidget)
{
    AnaglyphGlasses glasses;
    glasses.resize(640, 158);
    const QImage wide = glasses.grab().toImage();
    const QColor left = lensTint(true, 0, 1.0, 1.0, 1.0);
    const QColor right = lensTint(false, 0, 1.0, 1.0, 1.0);
    EXPECT_EQ(wide.pixelColor(160 + 89, 79).rgb(), left.rgb());
    EXPECT_EQ(wide.pixelColor(160 + 231, 79).rgb(), right.rgb());
    EXPECT_NE(wide.pixelColor(89, 79).rgb(), left.rgb());
}
