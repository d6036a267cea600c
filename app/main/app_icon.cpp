#include "app/main/app_icon.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

// A resource in a static library is registered only when its initialiser is named, which the macro
// can do only outside any namespace.
static void registerResources()
{
    Q_INIT_RESOURCE(zerrith);
}

QIcon appIcon()
{
    registerResources();
    QSvgRenderer drawing(QString(":/zerrith-studio.svg"));
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64, 128, 256}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        drawing.render(&painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}
