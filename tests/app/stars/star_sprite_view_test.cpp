#include "app/stars/star_sprite_view.h"

#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include "tests/app/stars/some_stars.h"

namespace {

/// The middle of what is white in `picture`, in its own pixels, edges counted.
QPointF middleOfWhite(const QImage& picture)
{
    QRect white;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (qGray(picture.pixel(x, y)) > 250)
                white = white.united({x, y, 1, 1});
    EXPECT_FALSE(white.isEmpty());
    return QRectF(white).center();
}

QImage rendered(StarSpriteView& view, double pixelRatio)
{
    QImage screen(view.size() * pixelRatio, QImage::Format_RGB32);
    screen.setDevicePixelRatio(pixelRatio);
    view.render(&screen);
    return screen;
}

void turnWheel(QWidget& widget, QPointF at, int notches, Qt::KeyboardModifiers modifiers)
{
    QWheelEvent event(at, widget.mapToGlobal(at), {}, {0, 120 * notches}, Qt::NoButton, modifiers,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
}

/// A black picture of 21 x 15 pixels at (40, 60) with one white pixel.
startable::StarPicture onePixel(QPoint white)
{
    QImage image(21, 15, QImage::Format_RGB32);
    image.fill(Qt::black);
    image.setPixelColor(white - QPoint(40, 60), Qt::white);
    return {image, {40, 60}, {45, 62, 9, 9}};
}

} // namespace

// The click goes where the pixel is seen on the screen; what is painted there is the oracle.
TEST(StarSpriteView, AClickErasesAtTheImagePixelUnderIt)
{
    constexpr QPoint kWhite(47, 66);
    for (const QSize size : {QSize(420, 300), QSize(300, 411)})
        for (const int zoomed : {0, 2, -3})
            for (const double pixelRatio : {1.0, 2.0, 3.0}) {
                StarSpriteView view;
                view.resize(size);
                view.setPicture(onePixel(kWhite), false);
                view.fit();
                turnWheel(view, view.toWidget(kWhite) + QPointF(3, 1), zoomed, Qt::NoModifier);
                const QPointF seen = middleOfWhite(rendered(view, pixelRatio)) / pixelRatio;
                QSignalSpy erased(&view, &StarSpriteView::eraseRequested);
                QTest::mouseClick(&view, Qt::LeftButton, {}, seen.toPoint());
                ASSERT_EQ(erased.size(), 1);
                const QPointF place = erased[0][0].toPointF() - kWhite;
                EXPECT_LT(std::abs(place.x()), 0.15) << zoomed << " at " << pixelRatio;
                EXPECT_LT(std::abs(place.y()), 0.15) << zoomed << " at " << pixelRatio;
            }
}

TEST(StarSpriteView, SelectsTheDiscUnderAClickUnlessShiftIsHeld)
{
    StarSpriteView view;
    view.resize(420, 300);
    view.setPicture(onePixel({47, 66}), false);
    view.setErasures({{44.0, 64.0, 3.0, 1.0, 0}, {47.0, 64.0, 3.0, 1.0, 1}}, -1);
    QSignalSpy erased(&view, &StarSpriteView::eraseRequested);
    QSignalSpy selected(&view, &StarSpriteView::erasureSelected);
    const auto click = [&](QPointF place, Qt::KeyboardModifiers keys) {
        QTest::mouseClick(&view, Qt::LeftButton, keys, view.toWidget(place).toPoint());
    };
    click({46.0, 64.0}, {}); // within both: the nearer middle counts
    ASSERT_EQ(selected.size(), 1);
    EXPECT_EQ(selected[0][0].toInt(), 1);
    click({46.0, 64.0}, Qt::ShiftModifier);
    click({55.0, 70.0}, {});
    EXPECT_EQ(erased.size(), 2);
    click({39.0, 70.0}, {}); // beside the picture
    EXPECT_EQ(erased.size(), 2);
    EXPECT_EQ(selected.last()[0].toInt(), -1);
}

TEST(StarSpriteView, TheWheelWithCtrlAndTheBracketsSetTheRadius)
{
    StarSpriteView view;
    view.resize(420, 300);
    view.setPicture(onePixel({47, 66}), false);
    startable::Eraser eraser;
    QObject::connect(&view, &StarSpriteView::radiusChanged, &view, [&](double radius) {
        eraser.radius = radius;
        view.setEraser(eraser);
    });
    const QPointF before = view.toImage({10, 10});
    turnWheel(view, {10, 10}, 1, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(eraser.radius, 4.4);
    QTest::keyClick(&view, Qt::Key_BracketLeft);
    EXPECT_DOUBLE_EQ(eraser.radius, 4.0);
    turnWheel(view, {10, 10}, -100, Qt::ControlModifier);
    EXPECT_EQ(eraser.radius, startable::Eraser::kMinRadius);
    for (int i = 0; i < 9; ++i) // no step may round away
        turnWheel(view, {10, 10}, 1, Qt::ControlModifier);
    EXPECT_NEAR(eraser.radius, 1.4, 1e-9);
    turnWheel(view, {10, 10}, 300, Qt::ControlModifier);
    EXPECT_EQ(eraser.radius, startable::Eraser::kMaxRadius);
    EXPECT_EQ(view.toImage({10, 10}), before) << "Ctrl zooms nothing";
}

TEST(StarSpriteView, CanBeUsedWithKeysAlone)
{
    StarSpriteView view;
    view.resize(420, 300);
    view.setPicture(onePixel({47, 66}), false);
    QSignalSpy erased(&view, &StarSpriteView::eraseRequested);
    QSignalSpy deleted(&view, &StarSpriteView::deleteRequested);
    QTest::keyClick(&view, Qt::Key_Right); // the first key shows the eraser at the sprite's middle
    QTest::keyClick(&view, Qt::Key_Right);
    QTest::keyClick(&view, Qt::Key_Up);
    QTest::keyClick(&view, Qt::Key_Return);
    ASSERT_EQ(erased.size(), 1);
    EXPECT_EQ(erased[0][0].toPointF(), QPointF(50, 65));
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(deleted.size(), 1);
}
