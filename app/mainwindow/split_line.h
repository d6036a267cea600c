#pragma once

#include <QPainter>
#include <QPointF>

/// The line that parts the preview: one picture to its left, another to its right. Points are those
/// of the widget.
class SplitLine
{
public:
    bool isOn() const { return m_on; }
    void setOn(bool on) { m_on = on; }

    double x(double viewWidth) const;
    bool isNear(QPointF at, double viewWidth) const;
    /// Takes the line to `x`, short of the view's edges.
    void moveTo(double x, double viewWidth);
    void paint(QPainter& painter, QSizeF view) const;

private:
    bool m_on = false;
    double m_share = 0.5; ///< of the view's width
};
