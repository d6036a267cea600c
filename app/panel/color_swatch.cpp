#include "app/panel/color_swatch.h"

#include <QPainter>

ColorSwatch::ColorSwatch(QWidget* parent)
    : QAbstractButton(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ColorSwatch::setColor(const QColor& color)
{
    m_color = color;
    update();
}

QSize ColorSwatch::sizeHint() const
{
    const int height = fontMetrics().height() + 6;
    return {height * 3 / 2, height};
}

void ColorSwatch::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor fill = m_color;
    if (!isEnabled())
        fill.setAlphaF(0.3f);
    const bool lit = hasFocus() || underMouse();
    painter.setPen(QPen(palette().color(lit ? QPalette::Highlight : QPalette::Mid), lit ? 2 : 1));
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 3, 3);
}
