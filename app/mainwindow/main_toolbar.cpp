#include "app/mainwindow/main_toolbar.h"

#include <cstddef>

#include <QMenu>
#include <QToolButton>

#include "app/persist/appcfg.h"
#include "app/prefs/theme_manager.h"
#include "app/prefs/toolbar_style.h"

using appcfg::ToolbarGroup;

namespace {

struct ButtonRow
{
    const char* action;
    ToolbarGroup group;
    bool named;                 ///< shows its text beside its picture
    const char* menu = nullptr; ///< object name of the menu that an arrow beside it opens
};

constexpr std::array kButtons{
    ButtonRow{"openImage", ToolbarGroup::LoadSave, false, "recentMenu"},
    ButtonRow{"saveImage", ToolbarGroup::Export, false, "exportMenu"},
    ButtonRow{"undo", ToolbarGroup::Tools, false},
    ButtonRow{"redo", ToolbarGroup::Tools, false},
    ButtonRow{"view.source", ToolbarGroup::View, true},
    ButtonRow{"view.depth", ToolbarGroup::View, true},
    ButtonRow{"view.anaglyph", ToolbarGroup::View, true},
    ButtonRow{"view.sbs", ToolbarGroup::View, true},
    ButtonRow{"zoomOut", ToolbarGroup::View, false},
    ButtonRow{"zoomIn", ToolbarGroup::View, false},
    ButtonRow{"zoomToFit", ToolbarGroup::View, false},
    ButtonRow{"zoomToPixels", ToolbarGroup::View, false},
    ButtonRow{"playWiggle", ToolbarGroup::Play, false},
    ButtonRow{"playFlyby", ToolbarGroup::Play, false},
    ButtonRow{"preferences", ToolbarGroup::Tools, false},
};

QString toolTipOf(const QAction& action)
{
    const QString text = action.text().remove('&').remove("...");
    const QString keys = action.shortcut().toString(QKeySequence::NativeText);
    return keys.isEmpty() ? text : QString("%1 (%2)").arg(text, keys);
}

} // namespace

MainToolbar::MainToolbar(QWidget& window)
    : QToolBar(tr("Main toolbar"), &window)
{
    setObjectName("mainToolbar");
    setMovable(false);
    setContextMenuPolicy(Qt::PreventContextMenu);
    const ButtonRow* before = nullptr;
    for (const ButtonRow& row : kButtons) {
        QList<QAction*>& places = m_groups[static_cast<std::size_t>(row.group)];
        if (before && (before->group != row.group || before->named != row.named))
            places << addSeparator();
        auto* action = window.findChild<QAction*>(row.action);
        action->setToolTip(toolTipOf(*action));
        QToolButton* button = ToolbarStyle::makeButton(action, this);
        if (row.named)
            ToolbarStyle::showText(button);
        if (row.menu)
            places << addWidget(withArrow(button, *window.findChild<QMenu*>(row.menu)));
        else
            places << addWidget(button);
        before = &row;
    }
    applyIconColors();
    applyGroups();
}

QWidget* MainToolbar::withArrow(QToolButton* button, QMenu& menu)
{
    const QString title = menu.title().remove('&');
    return ToolbarStyle::pairWithArrow(button, ToolbarStyle::makeMenuArrow(&menu, title, this),
                                       this);
}

void MainToolbar::applyIconColors()
{
    ToolbarStyle::applyTheme(this, ThemeManager::instance().effectiveDark());
}

void MainToolbar::applyGroups()
{
    bool any = false;
    for (std::size_t group = 0; group < m_groups.size(); ++group) {
        const bool shown = appcfg::toolbarGroupShown(static_cast<ToolbarGroup>(group));
        any = any || (shown && !m_groups[group].isEmpty());
        for (QAction* place : m_groups[group])
            place->setVisible(shown);
    }
    setVisible(any);
}
