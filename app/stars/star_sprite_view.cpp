#include "app/stars/star_sprite_view.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr QColor kGround(0x1c, 0x1c, 0x1e); // neutral, so that it tints no judgement of colour
constexpr QColor kHalo(0, 0, 0, 150);
constexpr QColor kPlainWords(0xc8, 0xc8, 0xc8);
constexpr QPointF kPixelMiddle(0.5, 0.5);
constexpr double kLargestScale = 64.0;
constexpr double kLargestFit = 24.0;
constexpr double kWheelNotch = 1.25;
constexpr double kNotchDegrees = 120.0; // eighths of a degree, as the toolkit counts them
constexpr double kReach = 6.0;          // widget pixels within which a small disc can be hit

/// A disc's mode is told by its line too, not by colour alone.
struct DiscLook
{
    QColor color;
    Qt::PenStyle line;
};

const DiscLook& discLook(int mode)
{
    static const std::array<DiscLook, startable::kEraseModes.size()> kLooks{{
        {QColor(0xff, 0x6b, 0x6b), Qt::SolidLine},
        {QColor(0x5c, 0xc8, 0xff), Qt::DashLine},
        {QColor(0xff, 0xd1, 0x66), Qt::DashDotLine},
    }};
    const bool known = mode >= 0 && mode < static_cast<int>(kLooks.size());
    return kLooks[known ? static_cast<std::size_t>(mode) : 0];
}

/// A ring that can be seen on any ground.
void paintRing(QPainter& painter, QPointF middle, double radius, const QPen& pen)
{
    painter.setPen(QPen(kHalo, pen.widthF() + 2.0));
    painter.drawEllipse(middle, radius, radius);
    painter.setPen(pen);
    painter.drawEllipse(middle, radius, radius);
}

} // namespace

StarSpriteView::StarSpriteView(QWidget* parent)
    : QWidget(parent)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(120, 100);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(tr("Sprite of the selected star"));
    setAccessibleDescription(tr("Arrow keys move the eraser, Return erases, the keys [ and ] set "
                                "its radius, Del deletes the selected erasure."));
}

void StarSpriteView::setPicture(startable::StarPicture picture, bool same)
{
    const QPoint before = std::exchange(m_picture, std::move(picture)).origin;
    if (!same)
        m_pointer.reset();
    if (!same || m_fitted)
        fit();
    else
        m_origin += QPointF(m_picture.origin - before) * m_scale;
    setCursor(m_picture.image.isNull() ? Qt::ArrowCursor : Qt::CrossCursor);
    update();
}

void StarSpriteView::setErasures(startable::Erasures erasures, int selected)
{
    m_erasures = std::move(erasures);
    m_selected = selected;
    update();
}

void StarSpriteView::setEraser(const startable::Eraser& eraser)
{
    m_eraser = eraser;
    update();
}

void StarSpriteView::setSmooth(bool smooth)
{
    m_smooth = smooth;
    update();
}

QPointF StarSpriteView::toImage(QPointF inWidget) const
{
    return (inWidget - m_origin) / m_scale + m_picture.origin - kPixelMiddle;
}

QPointF StarSpriteView::toWidget(QPointF inImage) const
{
    return (inImage + kPixelMiddle - m_picture.origin) * m_scale + m_origin;
}

void StarSpriteView::fit()
{
    m_fitted = true;
    if (m_picture.image.isNull())
        return;
    const QSizeF picture = m_picture.image.size();
    m_scale = std::min({kLargestFit, width() / picture.width(), height() / picture.height()});
    const QSizeF shown = picture * m_scale;
    m_origin = {(width() - shown.width()) / 2.0, (height() - shown.height()) / 2.0};
    update();
}

void StarSpriteView::zoomAt(QPointF inWidget, double factor)
{
    if (m_picture.image.isNull())
        return;
    const QSizeF picture = m_picture.image.size();
    const double whole = std::min({1.0, width() / picture.width(), height() / picture.height()});
    const double scale = std::clamp(m_scale * factor, whole, kLargestScale);
    m_origin = inWidget - (inWidget - m_origin) * (scale / m_scale);
    m_scale = scale;
    m_fitted = false;
    update();
}

void StarSpriteView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), kGround);
    if (m_picture.image.isNull()) {
        painter.setPen(kPlainWords);
        painter.drawText(rect().adjusted(8, 8, -8, -8), Qt::AlignCenter | Qt::TextWordWrap,
                         tr("Select a star to see its sprite."));
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, m_smooth);
    painter.drawImage(QRectF(m_origin, QSizeF(m_picture.image.size()) * m_scale), m_picture.image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(255, 255, 255, 90), 1.0, Qt::DotLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(toWidget(QPointF(m_picture.box.topLeft()) - kPixelMiddle),
                            QSizeF(m_picture.box.size()) * m_scale));
    for (std::size_t i = 0; i < m_erasures.size(); ++i)
        paintDisc(painter, {m_erasures[i].x, m_erasures[i].y}, m_erasures[i].radius,
                  m_erasures[i].feather, m_erasures[i].mode, static_cast<int>(i) == m_selected);
    paintEraser(painter);
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2.0));
        painter.drawRect(rect().adjusted(1, 1, -1, -1));
    }
}

void StarSpriteView::paintDisc(QPainter& painter, QPointF middle, double radius, double feather,
                               int mode, bool bold) const
{
    const DiscLook& look = discLook(mode);
    const QPointF at = toWidget(middle);
    paintRing(painter, at, radius * m_scale, QPen(look.color, bold ? 3.0 : 1.5, look.line));
    if (feather > 0.0) {
        QColor faint = look.color;
        faint.setAlpha(130);
        painter.setPen(QPen(faint, 1.0, Qt::DotLine));
        painter.drawEllipse(at, (radius + feather) * m_scale, (radius + feather) * m_scale);
    }
    if (!bold)
        return;
    constexpr QPointF kAcross(4.0, 0.0);
    constexpr QPointF kDown(0.0, 4.0);
    painter.setPen(QPen(look.color, 1.5));
    painter.drawLine(at - kAcross, at + kAcross);
    painter.drawLine(at - kDown, at + kDown);
}

void StarSpriteView::paintEraser(QPainter& painter) const
{
    if (m_pointer)
        paintDisc(painter, *m_pointer, m_eraser.radius, m_eraser.feather(), m_eraser.mode, false);
}

void StarSpriteView::resizeEvent(QResizeEvent*)
{
    if (m_fitted)
        fit();
}

void StarSpriteView::wheelEvent(QWheelEvent* event)
{
    // With Alt held some desktops turn the wheel sideways.
    const int turned = event->angleDelta().y() != 0 ? event->angleDelta().y() //
                                                    : event->angleDelta().x();
    const double notches = turned / kNotchDegrees;
    if (event->modifiers() & Qt::ControlModifier) {
        if (notches != 0.0)
            emit radiusChanged(m_eraser.turned(notches));
    } else {
        zoomAt(event->position(), std::pow(kWheelNotch, notches));
    }
    event->accept();
}

/// Erases at a place, unless a disc lies there already, which is then selected.
void StarSpriteView::act(QPointF inImage, bool always)
{
    const int under = always ? -1 : startable::erasureAt(m_erasures, inImage, kReach / m_scale);
    if (under >= 0)
        emit erasureSelected(under);
    else if (QRectF(m_picture.origin - kPixelMiddle, QSizeF(m_picture.image.size()))
                 .contains(inImage))
        emit eraseRequested(inImage);
    else
        emit erasureSelected(-1);
}

void StarSpriteView::mousePressEvent(QMouseEvent* event)
{
    if (m_picture.image.isNull())
        return;
    if (event->button() == Qt::MiddleButton)
        m_dragFrom = event->position();
    else if (event->button() == Qt::LeftButton)
        act(toImage(event->position()), event->modifiers() & Qt::ShiftModifier);
}

void StarSpriteView::mouseMoveEvent(QMouseEvent* event)
{
    if (m_picture.image.isNull())
        return;
    if (m_dragFrom && (event->buttons() & Qt::MiddleButton)) {
        m_origin += event->position() - *m_dragFrom;
        m_dragFrom = event->position();
        m_fitted = false;
    }
    m_pointer = toImage(event->position());
    update();
}

void StarSpriteView::mouseReleaseEvent(QMouseEvent*)
{
    m_dragFrom.reset();
}

void StarSpriteView::leaveEvent(QEvent*)
{
    m_pointer.reset();
    update();
}

void StarSpriteView::moveEraser(QPointF by)
{
    const QRect shown(m_picture.origin, m_picture.image.size());
    const QPointF from = m_pointer.value_or(QPointF(m_picture.box.center()) - by);
    m_pointer = QPointF(std::clamp(from.x() + by.x(), 1.0 * shown.left(), 1.0 * shown.right()),
                        std::clamp(from.y() + by.y(), 1.0 * shown.top(), 1.0 * shown.bottom()));
    update();
}

void StarSpriteView::keyPressEvent(QKeyEvent* event)
{
    struct Arrow
    {
        int key;
        QPointF by;
    };
    static constexpr std::array kArrows{Arrow{Qt::Key_Left, {-1, 0}}, Arrow{Qt::Key_Right, {1, 0}},
                                        Arrow{Qt::Key_Up, {0, -1}}, Arrow{Qt::Key_Down, {0, 1}}};
    if (m_picture.image.isNull()) {
        QWidget::keyPressEvent(event);
        return;
    }
    for (const Arrow& arrow : kArrows)
        if (event->key() == arrow.key) {
            moveEraser(arrow.by);
            return;
        }
    const int key = event->key();
    if (key == Qt::Key_Delete || key == Qt::Key_Backspace)
        emit deleteRequested();
    else if ((key == Qt::Key_Return || key == Qt::Key_Enter) && m_pointer)
        act(*m_pointer, event->modifiers() & Qt::ShiftModifier);
    else if (key == Qt::Key_BracketLeft || key == Qt::Key_BracketRight)
        emit radiusChanged(m_eraser.turned(key == Qt::Key_BracketLeft ? -1.0 : 1.0));
    else
        QWidget::keyPressEvent(event);
}
