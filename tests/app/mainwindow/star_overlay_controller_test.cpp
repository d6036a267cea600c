#include "app/mainwindow/star_overlay_controller.h"

#include <cmath>

#include <QApplication>
#include <QElapsedTimer>

#include <gtest/gtest.h>

#include "app/mainwindow/preview_view.h"
#include "tests/app/mainwindow/fake_host.h"

namespace {

constexpr int kSide = 160;
constexpr int kStars = 9;

/// Stars of falling brightness on an even ground.
zre::Image starField()
{
    zre::Image field(kSide, kSide, 1);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            double light = 0.05 + 0.002 * ((x * 7 + y * 13) % 5);
            for (int star = 0; star < kStars; ++star) {
                const double dx = x - (30 + 50 * (star % 3));
                const double dy = y - (30 + 50 * (star / 3));
                light += (0.8 - 0.07 * star) * std::exp(-(dx * dx + dy * dy) / 4.5);
            }
            field.plane(0)[y * kSide + x] = static_cast<float>(light);
        }
    return field;
}

struct Rings : testing::Test
{
    FakeHost host;
    PreviewView view;
    StarOverlayController rings{host, view};

    void SetUp() override
    {
        host.document.installSource({}, starField(), {}, {});
        view.resize(400, 400);
        picture(2);
    }
    /// A render of this view comes to the screen; black, so that rings stand out.
    void picture(int output)
    {
        host.document.outputMode = output;
        zre::Image out;
        ASSERT_TRUE(host.pipeline().renderView(output, {}, out, nullptr));
        QImage black(kSide, kSide, QImage::Format_RGB32);
        black.fill(Qt::black);
        view.setPreview(black);
        rings.pictureShown();
    }
    bool visible()
    {
        const QImage shown = view.grab().toImage();
        for (int y = 0; y < shown.height(); ++y)
            for (int x = 0; x < shown.width(); ++x)
                if (qGray(shown.pixel(x, y)) > 60)
                    return true;
        return false;
    }
};

} // namespace

TEST_F(Rings, ComeUpWithAChangeOfDetectionTellTheCountAndGo)
{
    EXPECT_FALSE(visible());
    EXPECT_TRUE(host.statuses.filter("found").isEmpty());
    host.document.params.parallaxAmount = 7.0f;
    rings.paramsEdited();
    EXPECT_FALSE(visible());
    host.document.params.minPeak = 0.3f;
    rings.paramsEdited();
    EXPECT_TRUE(visible()) << "those of before, at once";
    picture(2);
    ASSERT_TRUE(host.pipeline().activeStars());
    const auto found = static_cast<int>(host.pipeline().activeStars()->size());
    EXPECT_GT(found, 2);
    EXPECT_LT(found, kStars) << "the faint ones are below the floor";
    EXPECT_EQ(host.statuses.last(), QString("%1 stars found").arg(found));
    host.document.params.starMaxRendered = 2;
    picture(2);
    EXPECT_EQ(host.statuses.last(), QString("%1 stars found  -  2 drawn").arg(found));
    QElapsedTimer timer;
    timer.start();
    while (visible() && timer.elapsed() < 30000)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    EXPECT_FALSE(visible());
    EXPECT_GE(timer.elapsed(), StarOverlayController::kHoldMs);
}

TEST_F(Rings, StayWhenWantedWhereTheStarsAreInPlace)
{
    rings.setAlwaysShown(true);
    for (const int output : {0, 1, 2, 4, 5, 6}) {
        picture(output);
        EXPECT_TRUE(visible()) << output;
    }
    picture(3);
    EXPECT_FALSE(visible()) << "two pictures beside each other";
    rings.setAlwaysShown(false);
    picture(2);
    EXPECT_FALSE(visible());
}

TEST_F(Rings, AnotherDocumentIsNoChangeOfDetection)
{
    host.document.params.thresholdSigma = 9.0f;
    rings.documentReplaced();
    picture(2);
    EXPECT_FALSE(visible());
}
