#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <QCoreApplication>
#include <QPainter>
#include <QPainterPath>

#include "app/prefs/splash_canvas.h"
#include "app/prefs/splash_fonts.h"
#include "app/prefs/splash_screen.h"

namespace {

constexpr QRectF kCanvas(0, 0, splash::kWidth, splash::kHeight);
constexpr qreal kMargin = 52;
constexpr qreal kWordBaseline = 382;
constexpr qreal kTaglineBaseline = 417;
const QPointF kFlightTarget(404, 168); ///< the bright cluster of the photograph

/// From 0 to 1 without a jerk at either end.
qreal eased(qreal phase)
{
    return phase * phase * (3 - 2 * phase);
}

/// Opacity of what must be seen from the first frame on: it may stand while the program is busy.
qreal shown(qreal a)
{
    return 0.45 + 0.55 * eased(a);
}

/// Draws runs of text one behind another from `at`; gives the width of all.
struct Run
{
    QString text;
    QFont font;
    QColor colour;
};

qreal drawRuns(QPainter& painter, QPointF at, const std::vector<Run>& runs)
{
    const qreal start = at.x();
    for (const Run& run : runs) {
        painter.setFont(run.font);
        painter.setPen(run.colour);
        painter.drawText(at, run.text);
        at.rx() += QFontMetricsF(run.font).horizontalAdvance(run.text);
    }
    return at.x() - start;
}

} // namespace

void SplashScreen::paintPhoto(QPainter& painter, qreal t, qreal a) const
{
    const qreal zoom = 1.02 + 0.018 * std::min(t, 8.0); // a slow flight into the picture
    painter.save();
    painter.setOpacity(shown(a));
    painter.translate(kFlightTarget);
    painter.scale(zoom, zoom);
    painter.translate(-kFlightTarget);
    painter.drawPixmap(kCanvas, m_photo, QRectF(m_photo.rect()));
    painter.restore();
}

void SplashScreen::paintScrimAndVignette(QPainter& painter) const
{
    QLinearGradient scrim(0, 210, 0, splash::kHeight);
    scrim.setColorAt(0.0, QColor(6, 6, 9, 0));
    scrim.setColorAt(0.5, QColor(6, 6, 9, 190));
    scrim.setColorAt(1.0, QColor(6, 6, 9, 242));
    painter.fillRect(kCanvas, scrim);
    QRadialGradient vignette(kFlightTarget, 560);
    vignette.setColorAt(0.45, QColor(6, 6, 9, 0));
    vignette.setColorAt(1.0, QColor(6, 6, 9, 170));
    painter.fillRect(kCanvas, vignette);
}

void SplashScreen::paintSpecks(QPainter& painter, qreal t, qreal a) const
{
    constexpr qreal kNearest = 0.12;
    painter.save();
    painter.setPen(Qt::NoPen);
    for (const Speck& speck : m_specks) {
        const qreal flown = speck.distance - speck.speed * t;
        const qreal distance = kNearest + (1 - kNearest) * (flown - std::floor(flown));
        const QPointF at = kFlightTarget + QPointF(speck.x, speck.y) * (110 / distance);
        const qreal light = eased(1 - distance) * std::min(1.0, (distance - kNearest) * 8);
        painter.setBrush(QColor(226, 236, 255, static_cast<int>(170 * light * a)));
        const qreal radius = speck.size * (0.5 + 0.32 / distance);
        painter.drawEllipse(at, radius, radius);
    }
    painter.restore();
}

void SplashScreen::paintFlightPath(QPainter& painter, qreal t, qreal b) const
{
    constexpr int kSteps = 60;
    QPainterPath flight(QPointF(800, 330));
    flight.cubicTo(QPointF(640, 300), QPointF(690, 150), QPointF(560, 170));
    flight.cubicTo(QPointF(480, 182), QPointF(470, 240), kFlightTarget);
    const qreal reached = eased(b);
    painter.save();
    painter.setBrush(Qt::NoBrush);
    for (int i = 0; i < kSteps; ++i) {
        const qreal from = qreal(i) / kSteps;
        if (from >= reached)
            break;
        const qreal to = std::min(reached, from + 0.6 / kSteps);
        QColor colour(235, 240, 248, static_cast<int>(40 + 150 * (1 - from)));
        painter.setPen(QPen(colour, 0.7 + 1.5 * (1 - from), Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(flight.pointAtPercent(from), flight.pointAtPercent(to));
    }
    // The two eyes of the camera, coming together as they fly off.
    const QPointF camera = flight.pointAtPercent(reached);
    const qreal apart = 1.2 + 5 * (1 - reached);
    const qreal pulse = 2.6 + 0.5 * std::sin(4 * t);
    painter.setCompositionMode(QPainter::CompositionMode_Screen);
    painter.setPen(Qt::NoPen);
    for (const auto& [colour, side] :
         {std::pair(splash::kLeftLens, -1.0), std::pair(splash::kRightLens, 1.0)}) {
        painter.setBrush(colour);
        painter.drawEllipse(camera + QPointF(side * apart, 0), pulse, pulse);
    }
    painter.restore();
}

void SplashScreen::paintMark(QPainter& painter, qreal a) const
{
    constexpr qreal kRadius = 15;
    const QPointF centre(kMargin + 24, kWordBaseline - 76);
    const qreal apart = 5.2 + 9 * (1 - eased(a));
    painter.save();
    painter.setOpacity(shown(a));
    painter.setBrush(Qt::NoBrush);
    painter.setCompositionMode(QPainter::CompositionMode_Screen);
    painter.setPen(QPen(splash::kLeftLens, 3.6));
    painter.drawEllipse(centre - QPointF(apart, 0), kRadius, kRadius);
    painter.setPen(QPen(splash::kRightLens, 3.6));
    painter.drawEllipse(centre + QPointF(apart, 0), kRadius, kRadius);

    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    constexpr qreal kReach = 12.5;
    constexpr qreal kWaist = 1.9;
    QPainterPath star(centre - QPointF(0, kReach));
    for (const QPointF& tip :
         {QPointF(kReach, 0), QPointF(0, kReach), QPointF(-kReach, 0), QPointF(0, -kReach)}) {
        const QPointF before = star.currentPosition() - centre;
        const QPointF waist = (before + tip) / kReach * kWaist;
        star.quadTo(centre + waist, centre + tip);
    }
    painter.fillPath(star, Qt::white);
    painter.restore();
}

void SplashScreen::paintWordmark(QPainter& painter, qreal a) const
{
    constexpr qreal kSize = 54;
    const QFont heavy = splash::textFont(kSize, QFont::Black);
    const qreal apart = 7 * (1 - eased(a)) + 1.6;
    painter.save();
    painter.setOpacity(shown(a));
    const QPointF at(kMargin, kWordBaseline);
    // The initial stands before the page: seen by each eye in its own place.
    painter.setCompositionMode(QPainter::CompositionMode_Screen);
    drawRuns(painter, at - QPointF(apart, 0), {{"Z", heavy, splash::kLeftLens}});
    const qreal width =
        drawRuns(painter, at + QPointF(apart, 0), {{"Z", heavy, splash::kRightLens}});
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    drawRuns(painter, at + QPointF(width + 1, 0),
             {{"errith", splash::textFont(kSize, QFont::Bold), Qt::white},
              {" Studio", splash::textFont(kSize, QFont::Light), QColor(216, 222, 230)}});
    painter.restore();
}

void SplashScreen::paintTagline(QPainter& painter, qreal b) const
{
    const QFont light = splash::textFont(20, QFont::Light);
    const QColor quiet(196, 202, 212);
    painter.save();
    painter.setOpacity(eased(b));
    drawRuns(painter, QPointF(kMargin + 2, kTaglineBaseline + 6 * (1 - eased(b))),
             {{"stereoscopic ", light, quiet},
              {"real depth", splash::textFont(20, QFont::Bold), splash::kRightLens},
              {" from a single photo", light, quiet}});
    painter.restore();
}

void SplashScreen::paintLoader(QPainter& painter, qreal t) const
{
    constexpr qreal kPeriod = 1.5;
    constexpr qreal kShare = 0.28;
    const QRectF rail(0, splash::kHeight - 3, splash::kWidth, 3);
    painter.fillRect(rail, QColor(255, 255, 255, 26));
    const qreal phase = eased(std::fmod(t, kPeriod) / kPeriod);
    const qreal left = (phase * (1 + kShare) - kShare) * rail.width();
    QLinearGradient glow(left, 0, left + kShare * rail.width(), 0);
    glow.setColorAt(0.0, QColor(splash::kLeftLens.red(), splash::kLeftLens.green(),
                                splash::kLeftLens.blue(), 0));
    glow.setColorAt(0.5, splash::kLeftLens);
    glow.setColorAt(1.0, splash::kRightLens);
    painter.fillRect(QRectF(left, rail.y(), kShare * rail.width(), rail.height()), glow);
}

void SplashScreen::paintCorner(QPainter& painter, qreal b) const
{
    painter.save();
    painter.setOpacity(eased(b));
    painter.setFont(splash::cornerFont(13));
    painter.setPen(QColor(176, 182, 192));
    painter.drawText(QRectF(0, 0, splash::kWidth - 24, splash::kHeight - 16),
                     Qt::AlignRight | Qt::AlignBottom,
                     "v" + QCoreApplication::applicationVersion());
    painter.restore();
}
