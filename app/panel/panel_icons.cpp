#include "app/panel/panel_icons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>

namespace {

class Crosshair final : public QIconEngine
{
public:
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const double side = std::min(rect.width(), rect.height());
        const QPointF centre = QRectF(rect).center();
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(
            QPen(QGuiApplication::palette().color(group, QPalette::ButtonText), side / 12));
        painter->setBrush(Qt::NoBrush);
        painter->drawEllipse(centre, side * 0.27, side * 0.27);
        for (const QPointF arm : {QPointF(1, 0), QPointF(-1, 0), QPointF(0, 1), QPointF(0, -1)})
            painter->drawLine(centre + arm * side * 0.14, centre + arm * side * 0.45);
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        paint(&painter, drawn.rect(), mode, state);
        return drawn;
    }
    QIconEngine* clone() const override { return new Crosshair(*this); }
};

} // namespace

QIcon crosshairIcon()
{
    return QIcon(new Crosshair);
}
