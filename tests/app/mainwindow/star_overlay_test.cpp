#include "app/mainwindow/star_overlay.h"

#include <cmath>
#include <random>

#include <QApplication>
#include <QMouseEvent>

#include <gtest/gtest.h>

#include "app/mainwindow/preview_view.h"

namespace {

constexpr QSize kView(640, 480);

QImage painted(StarOverlay& overlay, const PreviewTransform& transform, QColor ground)
{
    QImage view(kView, QImage::Format_RGB32);
    view.fill(ground);
    QPainter painter(&view);
    overlay.paint(painter, transform, kView);
    return view;
}

/// The lightest (or darkest) grey near the ring of `radius` about `center`, at the direction where
/// that is least pronounced.
int weakest(const QImage& view, QPointF center, double radius, bool darkest)
{
    int weak = darkest ? 0 : 255;
    for (int step = 0; step < 12; ++step) {
        const double angle = step * M_PI / 6;
        int best = darkest ? 255 : 0;
        for (double r = radius - 2.5; r <= radius + 2.5; r += 0.5) {
            const QPoint at = (center + r * QPointF(std::cos(angle), std::sin(angle))).toPoint();
            const int grey = view.rect().contains(at) ? qGray(view.pixel(at)) : best;
            best = darkest ? std::min(best, grey) : std::max(best, grey);
        }
        weak = darkest ? std::max(weak, best) : std::min(weak, best);
    }
    return weak;
}

} // namespace

TEST(StarOverlay, RingsStandAboutTheStarsWhereverThePictureIsMoved)
{
    const std::vector<StarMark> marks{{{100.5, 80.5}, 6.0}, {{400.5, 300.5}, 14.0}};
    StarOverlay overlay;
    overlay.setMarks(marks);
    overlay.setStrength(1.0);
    PreviewTransform transform;
    transform.setViewSize(kView);
    transform.setImageSize({600, 450});
    std::mt19937 random(3);
    std::uniform_real_distribution<double> share(0.2, 0.8);
    int looked = 0;
    for (int step = 0; step < 40; ++step) {
        const StarMark& aim = marks[static_cast<std::size_t>(step % 2)];
        transform.setScaleAt({320, 240}, std::exp(4.0 * share(random) - 1.5));
        transform.panBy(QPointF(640 * share(random), 480 * share(random)) -
                        transform.toView(aim.center));
        const QImage onBlack = painted(overlay, transform, Qt::black);
        const QImage onWhite = painted(overlay, transform, Qt::white);
        for (const StarMark& mark : marks) {
            const QPointF center = transform.toView(mark.center);
            const double radius = std::max(5.0, mark.radius * transform.scale());
            const double reach = radius + 3.0;
            if (!QRectF({0, 0}, kView).adjusted(reach, reach, -reach, -reach).contains(center))
                continue;
            ++looked;
            EXPECT_GT(weakest(onBlack, center, radius, false), 90) << step;
            EXPECT_LT(weakest(onWhite, center, radius, true), 170) << step;
            EXPECT_EQ(onBlack.pixel(center.toPoint()), qRgb(0, 0, 0)) << "the star stays free";
        }
    }
    EXPECT_GT(looked, 20);
}

TEST(StarOverlay, AFullSkyIsMarkedStarByStar)
{
    std::vector<StarMark> marks;
    for (int y = 0; y < 120; ++y)
        for (int x = 0; x < 160; ++x)
            marks.push_back({{x * 40.0 + 20.0, y * 40.0 + 20.0}, 9.0, true});
    marks[7].radius = 0.0; // erased
    StarOverlay overlay;
    overlay.setMarks(marks);
    overlay.setStrength(1.0);
    PreviewTransform transform;
    transform.setViewSize(kView);
    transform.setImageSize({6400, 4800});
    const QImage view = painted(overlay, transform, Qt::black);
    for (std::size_t i = 0; i < marks.size(); i += 13)
        EXPECT_GT(qGray(view.pixel(transform.toView(marks[i].center).toPoint())), 60) << i;
    overlay.setStrength(0.0);
    QImage empty(kView, QImage::Format_RGB32);
    empty.fill(Qt::black);
    EXPECT_EQ(painted(overlay, transform, Qt::black), empty);
    overlay.setSelected(7, true);
    EXPECT_EQ(painted(overlay, transform, Qt::black), empty);
    overlay.setSelected(1 << 20, true);
    EXPECT_EQ(painted(overlay, transform, Qt::black), empty);
    overlay.setSelected(9610, true);
    const QImage lit = painted(overlay, transform, Qt::white);
    EXPECT_LT(qGray(lit.pixel(5, 5)), 120) << "the rest is darkened";
    EXPECT_EQ(lit.pixel(transform.toView(marks[9610].center).toPoint()), qRgb(255, 255, 255));
}

TEST(StarOverlay, AClickHitsTheNearestOfTheRingsThatHoldIt)
{
    const std::vector<StarMark> marks{
        {{50, 50}, 40}, {{60, 50}, 4}, {{200, 50}, 0.0}, {{300, 50}, 5}};
    EXPECT_EQ(starMarkAt(marks, {52, 50}, 0), 0);
    EXPECT_EQ(starMarkAt(marks, {58, 50}, 0), 1);
    EXPECT_EQ(starMarkAt(marks, {50, 88}, 0), 0);
    EXPECT_EQ(starMarkAt(marks, {200, 50}, 3), -1);
    EXPECT_EQ(starMarkAt(marks, {307, 50}, 1), -1);
    EXPECT_EQ(starMarkAt(marks, {307, 50}, 2), 3);
    EXPECT_EQ(starMarkAt({}, {0, 0}, 9), -1);
}

TEST(StarOverlay, AStarIsRingedAroundTheMiddleOfItsPixel)
{
    std::vector<zre::Star> stars(2);
    stars[0].x = 10.0;
    stars[0].y = 20.0;
    stars[0].boxW = 7;
    stars[0].boxH = 9;
    stars[1].erased = true;
    stars[1].depth = -1.0f;
    const std::vector<StarMark> marks = starMarks(stars);
    EXPECT_EQ(marks[0].center, QPointF(10.5, 20.5));
    EXPECT_GT(marks[0].radius, 4.5);
    EXPECT_TRUE(marks[0].rendered);
    EXPECT_EQ(marks[1].radius, 0.0);
}

TEST(PreviewClick, IsAPressAndReleaseOnThePictureWithoutADrag)
{
    PreviewView view;
    view.resize(kView);
    QImage picture(200, 100, QImage::Format_RGB32);
    picture.fill(Qt::black);
    view.setPreview(picture);
    view.zoomToPixels();
    std::vector<QPointF> clicks;
    QObject::connect(&view, &PreviewView::clickedInPicture, &view,
                     [&](QPointF at) { clicks.push_back(at); });
    const auto send = [&view](QEvent::Type type, QPointF at) {
        QMouseEvent event(type, at, view.mapToGlobal(at), Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(&view, &event);
    };
    const auto gesture = [&](QPointF from, QPointF to) {
        send(QEvent::MouseButtonPress, from);
        send(QEvent::MouseMove, to);
        send(QEvent::MouseButtonRelease, to);
    };
    const auto place = [&view](QPointF inPicture) {
        return view.transform().toView(inPicture) / view.devicePixelRatioF();
    };
    gesture(place({30.5, 40.5}), place({31.5, 40.5}));
    ASSERT_EQ(clicks.size(), 1U);
    const QPointF clicked = clicks[0] - QPointF(30.5, 40.5);
    EXPECT_LT(std::hypot(clicked.x(), clicked.y()), 1e-6);
    gesture(place({30, 40}), place({60, 40})); // a drag, also one that comes back
    send(QEvent::MouseButtonPress, place({30, 40}));
    send(QEvent::MouseMove, place({60, 40}));
    send(QEvent::MouseMove, place({60, 40}));
    send(QEvent::MouseButtonRelease, place({30, 40}));
    gesture(place({-5, 40}), place({-5, 40}));
    EXPECT_EQ(clicks.size(), 1U);
    send(QEvent::MouseButtonDblClick, place({30, 40}));
    send(QEvent::MouseButtonRelease, place({30, 40}));
    EXPECT_EQ(clicks.size(), 1U);
}
