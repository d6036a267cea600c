#include "app/mainwindow/split_line.h"

#include <algorithm>
#include <cmath>

static constexpr double kGrip = 8.0;
static constexpr double kHandleRadius = 11.0;
static constexpr double kEdgeShare = 0.02;

double SplitLine::x(double viewWidth) const
{
    return std::round(m_share * viewWidth);
}

bool SplitLine::isNear(QPointF at, double viewWidth) const
{
    return m_on && std::abs(at.x() - x(viewWidth)) <= kGrip;
}

void SplitLine::moveTo(double x, double viewWidth)
{
    m_share = std::clamp(x / std::max(1.0, viewWidth), kEdgeShare, 1.0 - kEdgeShare);
}

void SplitLine::paint(QPainter& painter, QSizeF view) const
{
    const QPointF middle(x(view.width()), std::round(view.height() / 2));
    painter.save();
    painter.fillRect(QRectF(middle.x() - 1.5, 0, 3, view.height()), QColor(0, 0, 0, 110));
    painter.fillRect(QRectF(middle.x() - 0.5, 0, 1, view.height()), Qt::white);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::white, 1.5));
    painter.setBrush(QColor(0, 0, 0, 170));
    painter.drawEllipse(middle, kHandleRadius, kHandleRadius);
    for (const double side : {-1.0, 1.0}) {
        const QPointF tip = middle + QPointF(side * 7, 0);
        painter.drawLine(tip, tip + QPointF(-side * 4, -4));
        painter.drawLine(tip, tip + QPointF(-side * 4, 4));
    }
    painter.restore();
}
