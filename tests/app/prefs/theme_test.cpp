#include <utility>

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "app/persist/appcfg.h"
#include "app/prefs/theme_manager.h"
#include "app/prefs/theme_palette.h"
#include "app/prefs/theme_style_sheet.h"
#include "tests/app/private_settings.h"

namespace {

constexpr QRgb kAccents[] = {0xff2b78b8, 0xffff0000, 0xffffffff, 0xff000000,
                             0xff777777, 0xff00ff00, 0xffffd700, 0xff4b0082};

struct Theme : testing::Test
{
    PrivateSettings own;
    ThemeManager& manager = ThemeManager::instance();

    void SetUp() override { manager.init(); }
};

} // namespace

// Published pairs: the grey that just passes on white, and the extremes.
TEST(ThemeContrast, AgreesWithPublishedRatios)
{
    EXPECT_NEAR(theme::contrastRatio(Qt::white, Qt::black), 21.0, 1e-6);
    EXPECT_NEAR(theme::contrastRatio(QColor(0x76, 0x76, 0x76), Qt::white), 4.54, 0.005);
    EXPECT_NEAR(theme::contrastRatio(Qt::white, QColor(0x95, 0x95, 0x95)), 3.0, 0.01);
    EXPECT_NEAR(theme::contrastRatio(Qt::red, Qt::white), 4.0, 0.005);
}

TEST(ThemeContrast, TextReadsOnWhatItStandsOn)
{
    using P = QPalette;
    const std::pair<P::ColorRole, P::ColorRole> pairs[] = {{P::WindowText, P::Window},
                                                           {P::Text, P::Base},
                                                           {P::Text, P::AlternateBase},
                                                           {P::ButtonText, P::Button},
                                                           {P::ToolTipText, P::ToolTipBase},
                                                           {P::PlaceholderText, P::Base},
                                                           {P::Link, P::Base},
                                                           {P::Link, P::Window},
                                                           {P::LinkVisited, P::Base},
                                                           {P::WindowText, P::Button}};
    for (const bool dark : {true, false}) {
        const QPalette colours = theme::palette(dark, QColor(kAccents[0]));
        for (const auto& [text, ground] : pairs)
            EXPECT_GE(theme::contrastRatio(colours.color(text), colours.color(ground)), 4.5)
                << (dark ? "dark " : "light ") << text << " on " << ground;
        for (const P::ColorRole ground : {P::Window, P::Base, P::AlternateBase}) {
            EXPECT_GE(theme::contrastRatio(theme::mutedText(dark), colours.color(ground)), 4.5);
            EXPECT_GE(theme::contrastRatio(theme::controlEdge(), colours.color(ground)), 3.0);
        }
        EXPECT_GE(theme::contrastRatio(QColor(kAccents[0]), colours.color(P::Window)), 3.0)
            << "the accent marks focus and selection";
    }
}

TEST(ThemeContrast, SelectedTextReadsOnAnyAccent)
{
    for (const QRgb accent : kAccents) {
        const QPalette colours = theme::palette(true, QColor(accent));
        EXPECT_GE(theme::contrastRatio(colours.color(QPalette::HighlightedText), QColor(accent)),
                  4.5);
    }
}

TEST(ThemePalette, ItsGreysCarryNoTint)
{
    for (const bool dark : {true, false})
        for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base, QPalette::Button,
                                               QPalette::Mid, QPalette::Dark, QPalette::Light})
            EXPECT_EQ(theme::palette(dark, Qt::red).color(role).saturation(), 0) << role;
}

// A mistyped placeholder would stand in the sheet, and the toolkit would ignore the rule in
// silence.
TEST(ThemeStyleSheet, EveryPlaceholderIsFilledAndEveryPictureIsThere)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(theme::writeMarks(folder.path()));
    for (const QRgb accent : kAccents)
        for (const bool dark : {true, false}) {
            const QString sheet = theme::styleSheet({dark, QColor(accent), Qt::red, folder.path()});
            EXPECT_FALSE(QString(sheet).remove(folder.path()).contains('@'));
            EXPECT_EQ(sheet.count('{'), sheet.count('}'));
            QRegularExpressionMatchIterator urls =
                QRegularExpression("url\\(\"([^\"]+)\"\\)").globalMatch(sheet);
            EXPECT_TRUE(urls.hasNext());
            while (urls.hasNext()) {
                const QString path = urls.next().captured(1);
                const QImage plain(path);
                const QImage dense(QString(path).replace(".png", "@2x.png"));
                EXPECT_EQ(plain.size(), QSize(14, 14)) << path.toStdString();
                EXPECT_EQ(dense.size(), QSize(28, 28)) << path.toStdString();
            }
        }
    for (const char* name : {"check_black.png", "check_white.png", "check_menu.png",
                             "dot_black.png", "dot_white.png", "dot_menu.png"})
        EXPECT_TRUE(QFile::exists(QDir(folder.path()).filePath(name))) << name;
}

TEST(ThemeStyleSheet, AMarkIsBlackOnABrightAccentAlone)
{
    EXPECT_EQ(theme::markColour(QColor::fromHslF(0.5f, 1.0f, 0.6f)), "black");
    EXPECT_EQ(theme::markColour(QColor::fromHslF(0.5f, 1.0f, 0.5f)), "white");
}

TEST(ThemeStyleSheet, AFolderThatCannotBeWrittenIsToldSo)
{
    EXPECT_FALSE(theme::writeMarks("/nowhere/at/all"));
}

TEST_F(Theme, SwitchingChangesThePaletteAndTellsOnce)
{
    int told = 0;
    const QObject listener;
    QObject::connect(&manager, &ThemeManager::themeChanged, &listener, [&told] { ++told; });
    manager.setMode(ThemeManager::Mode::Light);
    EXPECT_GT(QApplication::palette().color(QPalette::Window).lightness(), 200);
    EXPECT_FALSE(manager.effectiveDark());
    manager.setMode(ThemeManager::Mode::Dark);
    EXPECT_LT(QApplication::palette().color(QPalette::Window).lightness(), 80);
    EXPECT_TRUE(manager.effectiveDark());
    EXPECT_EQ(told, 2);
}

TEST_F(Theme, TheChoiceIsRememberedUnlessItIsTransient)
{
    manager.setMode(ThemeManager::Mode::Light);
    manager.setAccent(QColor("#aa3311"));
    manager.setSectionTitleColor(QColor("#112233"));
    manager.setModeTransient(ThemeManager::Mode::Dark);
    manager.load();
    EXPECT_EQ(manager.mode(), ThemeManager::Mode::Light);
    EXPECT_EQ(manager.accent(), QColor("#aa3311"));
    EXPECT_EQ(manager.sectionTitleColor(), QColor("#112233"));
    manager.restoreDefaults();
    manager.load();
    EXPECT_EQ(manager.mode(), ThemeManager::Mode::System);
    EXPECT_EQ(manager.accent(), manager.defaultAccent());
}

TEST_F(Theme, TheDefaultSectionColourReadsInEitherTheme)
{
    for (const ThemeManager::Mode mode : {ThemeManager::Mode::Light, ThemeManager::Mode::Dark}) {
        manager.setModeTransient(mode);
        EXPECT_GE(theme::contrastRatio(manager.sectionTitleColor(),
                                       QApplication::palette().color(QPalette::Window)),
                  4.5);
    }
}

// The picture in the sheet must reach the screen: a wrong path shows an empty box.
TEST_F(Theme, ACheckedBoxShowsTheAccentAndItsMark)
{
    manager.setModeTransient(ThemeManager::Mode::Dark);
    manager.setAccent(QColor("#204080"));
    QCheckBox box("text");
    box.setChecked(true);
    const QImage shown = box.grab().toImage();
    bool accent = false;
    bool mark = false;
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < 18; ++x) {
            accent = accent || shown.pixelColor(x, y) == QColor("#204080");
            mark = mark || shown.pixelColor(x, y).lightness() > 220;
        }
    EXPECT_TRUE(accent);
    EXPECT_TRUE(mark);
}
