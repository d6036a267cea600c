#include "app/panel/anaglyph_glasses.h"

#include <algorithm>
#include <cmath>

#include <QPainter>
#include <QPainterPath>

#include "engine/stereo/views.h"

namespace {

// The design is drawn on a sheet of this size and scaled to the widget.
constexpr int kSheetWidth = 320;
constexpr int kSheetHeight = 158;
const QRectF kFrame{14, 10, 292, 138};
const QRectF kLeftLens{36, 32, 106, 88};
const QRectF kRightLens{178, 32, 106, 88};
constexpr double kFrameRadius = 26.0;
constexpr double kLensRadius = 18.0;

/// Bright enough to tell tints apart, and dark enough that the largest gain does not clip it.
constexpr float kGrey = 0.6f;

bool same(double a, double b)
{
    constexpr double kTolerance = 1e-12;
    return std::fabs(a - b) <= kTolerance * std::max(std::fabs(a), std::fabs(b));
}

zre::Image grey(float value)
{
    zre::Image eye(1, 1, 1);
    std::fill(eye.data.begin(), eye.data.end(), value);
    return eye;
}

/// The cut-out for the nose.
QPainterPath nose()
{
    QPainterPath path({132, kFrame.bottom() + 1});
    path.cubicTo({146, 88}, {174, 88}, {188, kFrame.bottom() + 1});
    path.closeSubpath();
    return path;
}

QPainterPath rounded(const QRectF& rect, double radius)
{
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    return path;
}

} // namespace

QColor lensTint(bool leftEye, int mode, double gainR, double gainG, double gainB)
{
    zre::Image out;
    zre::makeAnaglyph(grey(leftEye ? kGrey : 0.0f), grey(leftEye ? 0.0f : kGrey), out, mode, gainR,
                      gainG, gainB);
    return QColor::fromRgbF(out.data[0], out.data[1], out.data[2]);
}

AnaglyphGlasses::AnaglyphGlasses(QWidget* parent)
    : QWidget(parent)
{
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

QSize AnaglyphGlasses::sizeHint() const
{
    return {kSheetWidth, kSheetHeight};
}

int AnaglyphGlasses::heightForWidth(int width) const
{
    return width * kSheetHeight / kSheetWidth;
}

void AnaglyphGlasses::setState(int mode, double gainR, double gainG, double gainB)
{
    if (mode == m_mode && same(gainR, m_gainR) && same(gainG, m_gainG) && same(gainB, m_gainB))
        return;
    m_mode = mode;
    m_gainR = gainR;
    m_gainG = gainG;
    m_gainB = gainB;
    update();
}

void AnaglyphGlasses::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double scale = std::min(width() / double(kSheetWidth), height() / double(kSheetHeight));
    painter.translate((width() - kSheetWidth * scale) / 2, (height() - kSheetHeight * scale) / 2);
    painter.scale(scale, scale);
    const QPainterPath lenses =
        rounded(kLeftLens, kLensRadius).united(rounded(kRightLens, kLensRadius));
    painter.setPen(QPen(palette().color(QPalette::Mid), 1.5));
    painter.setBrush(palette().color(QPalette::Light));
    painter.drawPath(rounded(kFrame, kFrameRadius).subtracted(nose()).subtracted(lenses));
    for (const bool left : {true, false}) {
        painter.setBrush(lensTint(left, m_mode, m_gainR, m_gainG, m_gainB));
        painter.drawPath(rounded(left ? kLeftLens : kRightLens, kLensRadius));
    }
}
