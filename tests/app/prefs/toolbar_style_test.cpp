#include "app/prefs/toolbar_style.h"

#include <set>

#include <QAction>
#include <QImage>
#include <QMenu>
#include <QToolBar>
#include <QToolButton>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include "app/prefs/theme_palette.h"
#include "app/prefs/toolbar_icons.h"

namespace {

struct Ink
{
    double share = 0.0; ///< of pixels that are not clear
    QColor strongest;
    QRect bounds;
};

Ink inkOf(const QImage& picture)
{
    Ink ink;
    int strongest = -1;
    int drawn = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const QColor colour = picture.pixelColor(x, y);
            if (colour.alpha() == 0)
                continue;
            ++drawn;
            ink.bounds |= QRect(x, y, 1, 1);
            if (colour.alpha() > strongest) {
                strongest = colour.alpha();
                ink.strongest = colour;
            }
        }
    ink.share = drawn / double(picture.width() * picture.height());
    return ink;
}

} // namespace

TEST(ToolbarIcons, EachIsAWellFormedDrawingOfItsOwn)
{
    std::set<QString> names;
    std::set<QString> drawings;
    for (const ToolbarIcon& icon : kToolbarIcons) {
        EXPECT_TRUE(names.insert(icon.action).second) << icon.action;
        EXPECT_TRUE(drawings.insert(icon.svg).second) << icon.action;
        QXmlStreamReader reader(icon.svg);
        while (!reader.atEnd())
            reader.readNext();
        EXPECT_FALSE(reader.hasError()) << icon.action << reader.errorString().toStdString();
    }
}

// A path that the renderer cannot parse ends in silence: little is drawn, or beyond the edge.
TEST(ToolbarIcons, EachFillsItsSquareInTheColourOfTheTheme)
{
    for (const ToolbarIcon& icon : kToolbarIcons)
        for (const bool dark : {true, false}) {
            const QPixmap pixmap = ToolbarStyle::svgPixmap(icon.svg, 24, dark);
            EXPECT_EQ(pixmap.deviceIndependentSize(), QSizeF(24, 24));
            const Ink ink = inkOf(pixmap.toImage());
            EXPECT_GT(ink.share, 0.06) << icon.action;
            EXPECT_LT(ink.share, 0.75) << icon.action;
            EXPECT_GT(ink.bounds.width(), pixmap.width() / 3) << icon.action;
            EXPECT_TRUE(pixmap.toImage().rect().adjusted(1, 1, -1, -1).contains(ink.bounds))
                << icon.action;
            EXPECT_GE(theme::contrastRatio(ink.strongest,
                                           theme::palette(dark, Qt::blue).color(QPalette::Window)),
                      3.0)
                << icon.action;
        }
}

TEST(ToolbarButtons, ChangeTheirPictureWithTheTheme)
{
    QToolBar bar;
    QAction action("&Open");
    action.setObjectName("openImage");
    QToolButton* button = ToolbarStyle::makeButton(&action, &bar);
    QMenu menu;
    QToolButton* arrow = ToolbarStyle::makeMenuArrow(&menu, "Recent files", &bar);
    bar.addWidget(ToolbarStyle::pairWithArrow(button, arrow, &bar));
    for (QToolButton* each : {button, arrow}) {
        ToolbarStyle::applyTheme(&bar, true);
        const QColor onDark = inkOf(each->icon().pixmap(22, 22).toImage()).strongest;
        ToolbarStyle::applyTheme(&bar, false);
        const QColor onLight = inkOf(each->icon().pixmap(22, 22).toImage()).strongest;
        EXPECT_GT(onDark.lightness(), 150);
        EXPECT_LT(onLight.lightness(), 100);
    }
    EXPECT_EQ(button->toolTip().isEmpty(), false);
    action.setEnabled(false);
    EXPECT_FALSE(button->isEnabled());
}
