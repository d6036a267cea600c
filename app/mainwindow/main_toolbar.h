#pragma once

#include <array>

#include <QToolBar>

class QToolButton;

/// The main toolbar: the actions of the window as buttons, in groups that the user can switch off.
class MainToolbar final : public QToolBar
{
public:
    /// Takes the actions and menus of `window` by their object names.
    explicit MainToolbar(QWidget& window);

    /// Redraws the buttons for the theme.
    void applyIconColors();
    /// Shows the groups that the settings have switched on.
    void applyGroups();

private:
    QWidget* withArrow(QToolButton* button, QMenu& menu);

    std::array<QList<QAction*>, 6> m_groups; ///< places of the buttons, by `appcfg::ToolbarGroup`
};
