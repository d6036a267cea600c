#include "app/prefs/theme_manager.h"

#include <QApplication>
#include <QDir>
#include <QStandardPaths>
#include <QStyle>
#include <QStyleFactory>
#include <QTemporaryDir>

#include "app/persist/appcfg.h"
#include "app/prefs/theme_palette.h"
#include "app/prefs/theme_style_sheet.h"

/// A desktop that says nothing about colours leaves the application with the style's own palette,
/// which is light; it then counts as having no wish.
static bool desktopIsLight()
{
    const QColor window = QApplication::palette().color(QPalette::Window);
    const std::unique_ptr<QStyle> fusion(QStyleFactory::create("Fusion"));
    return window.lightness() > 127 && window != fusion->standardPalette().color(QPalette::Window);
}

ThemeManager::ThemeManager()
    : m_systemLight(desktopIsLight())
{
}

ThemeManager::~ThemeManager() = default;

ThemeManager& ThemeManager::instance()
{
    static ThemeManager manager;
    return manager;
}

void ThemeManager::init()
{
    load();
    apply();
}

void ThemeManager::load()
{
    m_mode = static_cast<Mode>(appcfg::themeMode());
    m_accent = QColor(appcfg::themeAccent());
    m_sectionTitle = QColor(appcfg::themeSectionTitleColor());
}

void ThemeManager::save() const
{
    const auto text = [](const QColor& color) {
        return color.isValid() ? color.name() : QString();
    };
    appcfg::setThemeMode(static_cast<int>(m_mode));
    appcfg::setThemeAccent(text(m_accent));
    appcfg::setThemeSectionTitleColor(text(m_sectionTitle));
}

void ThemeManager::apply()
{
    const bool dark = effectiveDark();
    QApplication::setStyle("Fusion");
    QApplication::setPalette(basePaletteFor(dark));
    qApp->setStyleSheet(theme::styleSheet({dark, accent(), sectionTitleColor(), marksFolder()}));
    emit themeChanged();
}

void ThemeManager::saveAndApply()
{
    save();
    apply();
}

void ThemeManager::setMode(Mode mode)
{
    m_mode = mode;
    saveAndApply();
}

void ThemeManager::setModeTransient(Mode mode)
{
    m_mode = mode;
    apply();
}

bool ThemeManager::effectiveDark() const
{
    return m_mode == Mode::Dark || (m_mode == Mode::System && !m_systemLight);
}

QColor ThemeManager::accent() const
{
    return m_accent.isValid() ? m_accent : defaultAccent();
}

void ThemeManager::setAccent(const QColor& accent)
{
    m_accent = accent;
    saveAndApply();
}

QColor ThemeManager::sectionTitleColor() const
{
    return m_sectionTitle.isValid() ? m_sectionTitle : defaultSectionTitleColor();
}

void ThemeManager::setSectionTitleColor(const QColor& color)
{
    m_sectionTitle = color;
    saveAndApply();
}

void ThemeManager::restoreDefaults()
{
    m_mode = Mode::System;
    m_accent = QColor();
    m_sectionTitle = QColor();
    saveAndApply();
}

QColor ThemeManager::defaultAccent() const
{
    return QColor(0x2b, 0x78, 0xb8);
}

QColor ThemeManager::defaultSectionTitleColor() const
{
    return effectiveDark() ? QColor(0x8f, 0xc3, 0xec) : QColor(0x1d, 0x5f, 0x96);
}

QPalette ThemeManager::basePaletteFor(bool dark) const
{
    return theme::palette(dark, accent());
}

QColor ThemeManager::mutedTextColor(bool dark) const
{
    return theme::mutedText(dark);
}

QString ThemeManager::mutedLabelStyle(bool dark, int pixelSize) const
{
    const QString size = pixelSize > 0 ? QString(" font-size: %1px;").arg(pixelSize) : QString();
    return QString("color: %1;").arg(mutedTextColor(dark).name()) + size;
}

/// The user's own folder; another user must not be able to put pictures or links there.
QString ThemeManager::marksFolder()
{
    if (!m_marksFolder.isEmpty())
        return m_marksFolder;
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    const QString own = cache + "/theme";
    if (!cache.isEmpty() && QDir().mkpath(own) && theme::writeMarks(own))
        return m_marksFolder = own;
    m_temporaryMarks = std::make_unique<QTemporaryDir>();
    if (m_temporaryMarks->isValid() && theme::writeMarks(m_temporaryMarks->path()))
        m_marksFolder = m_temporaryMarks->path();
    return m_marksFolder;
}
