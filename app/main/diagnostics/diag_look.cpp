#include <algorithm>
#include <utility>

#include <QFontInfo>
#include <QFontMetrics>
#include <QPainter>

#include "app/main/diagnostics/checks.h"
#include "app/main/diagnostics/diagnostics.h"
#include "app/prefs/splash_fonts.h"
#include "app/prefs/splash_screen.h"
#include "app/prefs/theme_manager.h"
#include "app/prefs/toolbar_icons.h"
#include "app/prefs/toolbar_style.h"

/// Different colours in `picture`, counted up to `enough`.
static qsizetype coloursOf(const QImage& picture, qsizetype enough)
{
    QList<QRgb> seen;
    for (int y = 0; y < picture.height(); y += 3)
        for (int x = 0; x < picture.width() && seen.size() < enough; x += 3)
            if (const QRgb colour = picture.pixel(x, y); !seen.contains(colour))
                seen << colour;
    return seen.size();
}

static void checkWritten(Checks& checks, const QImage& picture, const QString& path)
{
    const bool saved = picture.save(path);
    checks.that(saved, QString("%1, %2 x %3").arg(path).arg(picture.width()).arg(picture.height()));
    checks.that(saved && QImage(path).size() == picture.size(), "the file reads back");
}

int diag::splash(const QStringList& arguments)
{
    constexpr qsizetype kColours = 300;
    Checks checks;
    SplashScreen splash(false);
    const QImage shown = splash.grab().toImage();
    checks.that(coloursOf(shown, kColours) == kColours, "a picture is painted");
    checkWritten(checks, shown, arguments[0]);
    return checks.verdict();
}

int diag::fonts(const QStringList&)
{
    Checks checks;
    ::splash::loadFonts();
    const std::pair<QFont, QString> texts[] = {
        {::splash::textFont(54, QFont::Black), "Z"},
        {::splash::textFont(54, QFont::Bold), "errith"},
        {::splash::textFont(54, QFont::Light), " Studio"},
        {::splash::textFont(20, QFont::Light), "stereoscopic  from a single photo"},
        {::splash::textFont(20, QFont::Bold), "real depth"},
        {::splash::cornerFont(13), "v0123456789."},
    };
    for (const auto& [font, text] : texts) {
        const QFontMetrics metrics(font);
        const bool whole = std::all_of(text.begin(), text.end(),
                                       [&metrics](QChar letter) { return metrics.inFont(letter); });
        const QFontInfo info(font);
        checks.that(whole && metrics.horizontalAdvance(text) > 0,
                    QString("\"%1\": %2, weight %3").arg(text, info.family()).arg(info.weight()));
    }
    return checks.verdict();
}

int diag::icons(const QStringList& arguments)
{
    constexpr int kSide = 32;
    constexpr int kCell = 48;
    Checks checks;
    ThemeManager& theme = ThemeManager::instance();
    const int columns = static_cast<int>(kToolbarIcons.size());
    QImage sheet(columns * kCell, 2 * kCell, QImage::Format_RGB32);
    QPainter painter(&sheet);
    for (const bool dark : {true, false}) {
        const int top = dark ? 0 : kCell;
        painter.fillRect(0, top, sheet.width(), kCell,
                         theme.basePaletteFor(dark).color(QPalette::Window));
        for (int i = 0; i < columns; ++i) {
            const ToolbarIcon& icon = kToolbarIcons[static_cast<std::size_t>(i)];
            const QPixmap drawn = ToolbarStyle::svgPixmap(icon.svg, kSide, dark);
            painter.drawPixmap(i * kCell + (kCell - kSide) / 2, top + (kCell - kSide) / 2, drawn);
            checks.that(coloursOf(drawn.toImage(), 3) == 3,
                        QString("%1, %2").arg(icon.action, dark ? "dark" : "light"));
        }
    }
    painter.end();
    checkWritten(checks, sheet, arguments[0]);
    return checks.verdict();
}
