#include "app/mainwindow/help_text.h"

#include <array>

#include <QAction>
#include <QCoreApplication>
#include <QKeySequence>

namespace {

struct Gesture
{
    const char* gesture;
    const char* effect;
};

constexpr std::array kGestures{
    Gesture{"Wheel", "Zoom to the cursor"},
    Gesture{"Drag", "Move the picture"},
    Gesture{"Arrow keys", "Move the picture"},
    Gesture{"Space, held", "Look at the source"},
    Gesture{"Double click", "Whole picture, or actual pixels"},
};

QString row(const QString& keys, const QString& effect)
{
    return QString("<tr><td><b>%1</b></td><td style=\"padding-left:24px\">%2</td></tr>")
        .arg(keys.toHtmlEscaped(), effect.toHtmlEscaped());
}

} // namespace

QString aboutText()
{
    return QString("<h3>Zerrith Studio %1</h3>"
                   "<p>Turns one deep-sky photograph into a three-dimensional picture.</p>"
                   "<p>Corvelle Works. Free software under the MIT licence.</p>"
                   "<p>Built on Qt %2 (LGPL 3), CFITSIO and libtiff (their own free licences), "
                   "zlib (zlib licence), LZ4 and Zstandard (BSD), Expat (MIT).</p>")
        .arg(QCoreApplication::applicationVersion(), qVersion());
}

QString shortcutsText(const QList<QAction*>& actions)
{
    QString rows;
    for (const QAction* action : actions) {
        const QString keys = QKeySequence::listToString(action->shortcuts(), //
                                                        QKeySequence::NativeText);
        if (!keys.isEmpty())
            rows += row(QString(keys).replace("; ", " or "), action->text().remove('&'));
    }
    for (const Gesture& gesture : kGestures)
        rows += row(gesture.gesture, gesture.effect);
    return "<table>" + rows + "</table>";
}
