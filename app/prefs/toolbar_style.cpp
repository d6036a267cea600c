#include "app/prefs/toolbar_style.h"

#include <algorithm>
#include <cmath>

#include <QAction>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QMenu>
#include <QPainter>
#include <QSvgRenderer>
#include <QToolButton>

#include "app/prefs/theme_manager.h"
#include "app/prefs/theme_palette.h"
#include "app/prefs/toolbar_icons.h"

namespace {

constexpr int kIconSide = 22;
constexpr int kArrowSide = 11;
constexpr const char* kDrawingProperty = "drawing"; ///< name of the drawing that a button wears

QColor lineColour(bool dark)
{
    return QColor(dark ? 0xffdcdcdc : 0xff333333);
}

QPixmap drawn(const char* svg, int side, const QColor& colour, qreal density)
{
    QSvgRenderer drawing(QString(svg).replace("currentColor", colour.name()).toUtf8());
    const int pixels = static_cast<int>(std::ceil(side * density));
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    drawing.render(&painter);
    painter.end();
    pixmap.setDevicePixelRatio(density);
    return pixmap;
}

/// The drawing in its normal and its disabled colour, for plain and dense screens.
QIcon iconOf(const char* svg, int side, bool dark)
{
    const QColor faded = QColor(dark ? 0xff6e6e6e : 0xffa8a8a8);
    QIcon icon;
    for (const int density : {1, 2, 3}) {
        icon.addPixmap(drawn(svg, side, lineColour(dark), density), QIcon::Normal);
        icon.addPixmap(drawn(svg, side, faded, density), QIcon::Disabled);
    }
    return icon;
}

QToolButton* bareButton(const QString& drawing, int side, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setAutoRaise(true);
    button->setIconSize(QSize(side, side));
    button->setFocusPolicy(Qt::TabFocus);
    button->setProperty(kDrawingProperty, drawing);
    return button;
}

QString style(bool dark)
{
    const QPalette colours = ThemeManager::instance().basePaletteFor(dark);
    const QColor line = theme::separator(dark);
    const QString sheet = R"(
QToolBar { border: none; border-bottom: 1px solid %1; spacing: 1px; padding: 2px 4px; }
QToolBar::separator { background: %2; width: 1px; margin: 5px 5px; }
QToolButton { border: 1px solid transparent; border-radius: 4px; padding: 3px; }
QToolButton:hover { background: %3; }
QToolButton:pressed { background: %4; }
QToolButton:checked { background: %4; border-color: %5; }
QToolButton:focus { border-color: %6; }
QToolButton[menuArrow="true"] { padding: 3px 1px; }
QToolButton[named="true"] { padding: 3px 0px 3px 6px; }
QToolButton::menu-indicator { image: none; }
)";
    return sheet.arg(line.name(), QColor(dark ? 0xff4a4a4a : 0xffc8c8c8).name(),
                     QColor(dark ? 0xff414141 : 0xffdedede).name(),
                     QColor(dark ? 0xff4c4c4c : 0xffd0d0d0).name(),
                     colours.color(QPalette::Highlight).name(),
                     colours.color(QPalette::WindowText).name());
}

} // namespace

QToolButton* ToolbarStyle::makeButton(QAction* action, QWidget* parent)
{
    QToolButton* button = bareButton(action->objectName(), kIconSide, parent);
    button->setDefaultAction(action);
    return button;
}

void ToolbarStyle::showText(QToolButton* button)
{
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setProperty("named", true);
}

QToolButton* ToolbarStyle::makeMenuArrow(QMenu* menu, const QString& toolTip, QWidget* parent)
{
    QToolButton* arrow = bareButton("menuArrow", kArrowSide, parent);
    arrow->setProperty("menuArrow", true);
    arrow->setMenu(menu);
    arrow->setPopupMode(QToolButton::InstantPopup);
    arrow->setToolTip(toolTip);
    arrow->setAccessibleName(toolTip);
    return arrow;
}

QWidget* ToolbarStyle::pairWithArrow(QToolButton* button, QToolButton* arrow, QWidget* parent)
{
    auto* pair = new QWidget(parent);
    auto* row = new QHBoxLayout(pair);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    for (QToolButton* each : {button, arrow}) {
        each->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
        row->addWidget(each);
    }
    return pair;
}

QPixmap ToolbarStyle::svgPixmap(const char* svg, int side, bool dark)
{
    return drawn(svg, side, lineColour(dark), qApp->devicePixelRatio());
}

void ToolbarStyle::applyTheme(QWidget* bar, bool dark)
{
    bar->setStyleSheet(dark ? darkStyle() : lightStyle());
    for (QToolButton* button : bar->findChildren<QToolButton*>()) {
        const QByteArray name = button->property(kDrawingProperty).toByteArray();
        const char* svg = toolbarIconFor(name);
        if (!svg)
            continue;
        const QIcon icon = iconOf(svg, button->iconSize().width(), dark);
        if (QAction* action = button->defaultAction()) {
            action->setIcon(icon);
            action->setIconVisibleInMenu(false);
        }
        button->setIcon(icon);
    }
}

QString ToolbarStyle::lightStyle()
{
    return style(false);
}

QString ToolbarStyle::darkStyle()
{
    return style(true);
}
