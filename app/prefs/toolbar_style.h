#pragma once

#include <QPixmap>
#include <QString>

class QAction;
class QMenu;
class QToolButton;
class QWidget;

/// Tool buttons whose pictures are drawn from SVG text in the colour of the theme.
class ToolbarStyle
{
public:
    /// A button for `action`, wearing the drawing of its name where there is one, else its text.
    static QToolButton* makeButton(QAction* action, QWidget* parent);
    /// Shows the action's text beside its drawing.
    static void showText(QToolButton* button);
    /// A narrow button that opens `menu`.
    static QToolButton* makeMenuArrow(QMenu* menu, const QString& toolTip, QWidget* parent);
    /// Both side by side without a gap, as one control of a toolbar.
    static QWidget* pairWithArrow(QToolButton* button, QToolButton* arrow, QWidget* parent);

    /// Draws `svg`, `side` pixels of the layout a side, in the lines of the dark or light theme and
    /// sharp at every pixel density in use.
    static QPixmap svgPixmap(const char* svg, int side, bool dark);

    /// Brings `bar` with all its buttons and arrows to the theme.
    static void applyTheme(QWidget* bar, bool dark);
    static QString lightStyle();
    static QString darkStyle();
};
