#include "app/prefs/splash_fonts.h"

#include <utility>

#include <QFile>
#include <QFontDatabase>
#include <QStringList>

namespace splash {

void loadFonts()
{
    static bool done = false;
    if (std::exchange(done, true))
        return;
    for (const char* face : {"Light", "ExtraLight", "Bold", "Black"}) {
        const QString path = QString(":/fonts/Raleway-%1.ttf").arg(face);
        if (QFile::exists(path))
            QFontDatabase::addApplicationFont(path);
    }
}

static QFont face(const QStringList& families, QFont::StyleHint hint, qreal pixelSize)
{
    QFont font;
    font.setFamilies(families);
    font.setStyleHint(hint);
    font.setPixelSize(static_cast<int>(pixelSize));
    return font;
}

QFont textFont(qreal pixelSize, QFont::Weight weight)
{
    static const QStringList kFamilies{"Raleway", "Candara", "Segoe UI", "Noto Sans", "sans-serif"};
    QFont font = face(kFamilies, QFont::SansSerif, pixelSize);
    font.setWeight(weight);
    return font;
}

QFont cornerFont(qreal pixelSize)
{
    static const QStringList kFamilies{"Cascadia Code", "Consolas", "Courier New"};
    return face(kFamilies, QFont::Monospace, pixelSize);
}

} // namespace splash
