#include <array>

#include <QActionGroup>
#include <QMenu>
#include <QMenuBar>

#include "app/mainwindow/main_window.h"
#include "app/persist/appcfg.h"
#include "app/session/output_view.h"

/// One menu entry. A row without a name is a separator, or with a text a menu within the menu.
struct MainWindow::ActionRow
{
    const char* menu;
    const char* name; ///< the action's object name
    const char* text;
    QKeySequence::StandardKey standardKeys;
    const char* furtherKeys; ///< separated by "; "
    Gate gate;
    void (MainWindow::*trigger)();
    void (MainWindow::*toggle)(bool) = nullptr; ///< instead of `trigger`: an action to be checked
};

static constexpr const char* kFile = "&File";
static constexpr const char* kMotion = "Export &Motion";
static constexpr const char* kEdit = "&Edit";
static constexpr const char* kView = "&View";
static constexpr const char* kPlay = "&Play";
static constexpr const char* kFlyby = "F&lyby";
static constexpr const char* kHelp = "&Help";

void MainWindow::buildFileMenu()
{
    using Key = QKeySequence;
    static constexpr std::array kRows{
        ActionRow{kFile, "newDocument", "&New", Key::New, "Ctrl+N", Gate::Always,
                  &MainWindow::newDocument},
        ActionRow{kFile, "openImage", "&Open Image...", Key::Open, "Ctrl+O", Gate::Always,
                  &MainWindow::openImage},
        ActionRow{kFile, "openPair", "Open Starless + &Stars Pair...", Key::UnknownKey,
                  "Ctrl+Shift+O", Gate::Always, &MainWindow::openPair},
        ActionRow{kFile, "openBuiltInScene", "Open &Built-in Scene", Key::UnknownKey, "",
                  Gate::Always, &MainWindow::openBuiltInScene},
        ActionRow{kFile, nullptr, "", Key::UnknownKey, "", Gate::Always, nullptr},
        ActionRow{kFile, "loadDepthMap", "Load &Depth Map...", Key::UnknownKey, "Ctrl+D",
                  Gate::NeedsImage, &MainWindow::loadDepthMap},
        ActionRow{kFile, "viewDepthMap", "&View Depth Map", Key::UnknownKey, "",
                  Gate::NeedsDepthMap, &MainWindow::viewDepthMap},
        ActionRow{kFile, "clearDepthMap", "C&lear Depth Map", Key::UnknownKey, "",
                  Gate::NeedsDepthMap, &MainWindow::clearDepthMap},
        ActionRow{kFile, "loadColorProfile", "Load &Color Depth Profile...", Key::UnknownKey, "",
                  Gate::NeedsImage, &MainWindow::loadColorProfile},
        ActionRow{kFile, "saveColorProfile", "Save C&olor Depth Profile...", Key::UnknownKey, "",
                  Gate::NeedsImage, &MainWindow::saveColorProfile},
        ActionRow{kFile, nullptr, "", Key::UnknownKey, "", Gate::Always, nullptr},
        ActionRow{kFile, "saveImage", "&Export View...", Key::UnknownKey, "Ctrl+E",
                  Gate::NeedsImage, &MainWindow::saveImage},
        ActionRow{kFile, nullptr, kMotion, Key::UnknownKey, "", Gate::Always, nullptr},
        ActionRow{kMotion, "exportWiggle", "&Parallax Motion...", Key::UnknownKey, "Ctrl+M",
                  Gate::NeedsImage, &MainWindow::exportWiggle},
        ActionRow{kMotion, "exportFlyby", "&Flyby...", Key::UnknownKey, "Ctrl+Shift+M",
                  Gate::NeedsImage, &MainWindow::exportFlyby},
        ActionRow{kMotion, nullptr, "", Key::UnknownKey, "", Gate::Always, nullptr},
        ActionRow{kMotion, "exportVR180", "&VR180...", Key::UnknownKey, "", Gate::NeedsImage,
                  &MainWindow::exportVR180},
        ActionRow{kMotion, "exportAppleSpatial", "&Apple Spatial...", Key::UnknownKey, "",
                  Gate::NeedsImage, &MainWindow::exportAppleSpatial},
        ActionRow{kFile, nullptr, "", Key::UnknownKey, "", Gate::Always, nullptr},
        ActionRow{kFile, "quit", "&Quit", Key::Quit, "Ctrl+Q", Gate::Always, &MainWindow::quit},
    };
    for (const ActionRow& row : kRows)
        addRow(row);
    m_recentMenu = new QMenu(tr("Open &Recent"), this);
    m_recentMenu->setObjectName("recentMenu");
    menuTitled(kFile).insertMenu(findChild<QAction*>("openBuiltInScene"), m_recentMenu);
    connect(m_recentMenu, &QMenu::aboutToShow, this, &MainWindow::buildRecentMenu);
}

void MainWindow::buildMenus()
{
    using Key = QKeySequence;
    static constexpr std::array kRows{
        ActionRow{kEdit, "preferences", "&Preferences...", Key::Preferences, "Ctrl+,", Gate::Always,
                  &MainWindow::showPreferences},
        ActionRow{kView, nullptr, "", Key::UnknownKey, "", Gate::Always, nullptr},
        ActionRow{kView, "zoomIn", "Zoom &In", Key::ZoomIn, "Ctrl+=", Gate::NeedsImage,
                  &MainWindow::zoomIn},
        ActionRow{kView, "zoomOut", "Zoom &Out", Key::ZoomOut, "", Gate::NeedsImage,
                  &MainWindow::zoomOut},
        ActionRow{kView, "zoomToFit", "Fit in &Window", Key::UnknownKey, "F; Ctrl+0",
                  Gate::NeedsImage, &MainWindow::zoomToFit},
        ActionRow{kView, "zoomToPixels", "Actual &Pixels (1:1)", Key::UnknownKey, "Ctrl+1",
                  Gate::NeedsImage, &MainWindow::zoomToPixels},
        ActionRow{kView, nullptr, "", Key::UnknownKey, "", Gate::Always, nullptr},
        ActionRow{kView, "compare", "&Compare with Source", Key::UnknownKey, "C", Gate::NeedsImage,
                  nullptr, &MainWindow::compareWithSource},
        ActionRow{kView, "depthInColor", "Depth in C&olor", Key::UnknownKey, "D", Gate::NeedsImage,
                  nullptr, &MainWindow::showDepthInColor},
        ActionRow{kView, "showFoundStars", "Show &Found Stars", Key::UnknownKey, "O",
                  Gate::NeedsImage, nullptr, &MainWindow::showFoundStars},
        ActionRow{kView, "showStarTable", "Star &Table...", Key::UnknownKey, "Ctrl+T",
                  Gate::NeedsImage, &MainWindow::showStarTable},
        ActionRow{kPlay, "playWiggle", "Play Parallax &Motion", Key::UnknownKey, "P",
                  Gate::NeedsImage, nullptr, &MainWindow::onPlayWiggleToggled},
        ActionRow{kPlay, "playFlyby", "Play &Flyby", Key::UnknownKey, "Shift+P", Gate::NeedsImage,
                  nullptr, &MainWindow::onPlayFlybyToggled},
        ActionRow{kPlay, "pausePlayback", "Pause / &Resume", Key::UnknownKey, "K",
                  Gate::NeedsPlayback, &MainWindow::pausePlayback},
        ActionRow{kPlay, "previousFrame", "Pre&vious Frame", Key::UnknownKey, ",",
                  Gate::NeedsPlayback, &MainWindow::previousFrame},
        ActionRow{kPlay, "nextFrame", "&Next Frame", Key::UnknownKey, ".", Gate::NeedsPlayback,
                  &MainWindow::nextFrame},
        ActionRow{kPlay, "stopPlayback", "&Stop", Key::UnknownKey, "Esc", Gate::NeedsPlayback,
                  &MainWindow::onStopClicked},
        ActionRow{kFlyby, "showScriptEditor", "Script &Editor...", Key::UnknownKey, "Ctrl+Shift+E",
                  Gate::Always, &MainWindow::showScriptEditor},
        ActionRow{kFlyby, "loadScript", "&Load Script...", Key::UnknownKey, "", Gate::NeedsImage,
                  &MainWindow::loadScript},
        ActionRow{kFlyby, "saveScript", "&Save Script...", Key::UnknownKey, "", Gate::NeedsImage,
                  &MainWindow::saveScript},
        ActionRow{kFlyby, "rescaleScript", "Rescale flyby &coordinates...", Key::UnknownKey, "",
                  Gate::NeedsImage, &MainWindow::rescaleFlybyScript},
        ActionRow{kFlyby, nullptr, "", Key::UnknownKey, "", Gate::Always, nullptr},
        ActionRow{kFlyby, "ongoingWiggle", "Ongoing &Wiggle", Key::UnknownKey, "", Gate::Always,
                  nullptr, &MainWindow::setOngoingWiggle},
        ActionRow{kFlyby, "continuousLoop", "Continuous L&oop", Key::UnknownKey, "", Gate::Always,
                  nullptr, &MainWindow::setContinuousLoop},
        ActionRow{kHelp, "showTabHelp", "Help for This &Tab", Key::HelpContents, "F1", Gate::Always,
                  &MainWindow::showTabHelp},
        ActionRow{kHelp, "showShortcuts", "&Keyboard Shortcuts", Key::UnknownKey, "Ctrl+/",
                  Gate::Always, &MainWindow::showShortcuts},
        ActionRow{kHelp, "showAbout", "&About Zerrith Studio", Key::UnknownKey, "", Gate::Always,
                  &MainWindow::showAbout},
    };
    buildFileMenu();
    addHistoryActions(menuTitled(kEdit));
    addViewActions(menuTitled(kView));
    for (const ActionRow& row : kRows)
        addRow(row);
    buildFlybyMenu();
}

void MainWindow::buildFlybyMenu()
{
    findChild<QAction*>("ongoingWiggle")->setChecked(appcfg::ongoingFlybyWiggle());
    findChild<QAction*>("continuousLoop")->setChecked(appcfg::flybyContinuousLoop());
    auto* examples = new QMenu(tr("&Examples"), this);
    examples->setObjectName("flybyExamples");
    m_flyby.buildExamplesMenu(*examples);
    m_actions.push_back({examples->menuAction(), Gate::NeedsImage});
    menuTitled("F&lyby").insertMenu(findChild<QAction*>("rescaleScript"), examples);
}

void MainWindow::addViewActions(QMenu& menu)
{
    m_views = new QActionGroup(this);
    for (const OutputView& view : kOutputViews) {
        QAction* action = m_views->addAction(view.label);
        action->setObjectName(QString("view.") + view.key);
        action->setData(view.id);
        action->setCheckable(true);
        action->setChecked(view.id == m_session.outputMode);
        action->setShortcut(QString::number(menu.actions().size() + 1));
        menu.addAction(action);
        m_actions.push_back({action, Gate::NeedsImage});
    }
    connect(m_views, &QActionGroup::triggered, this, [this](const QAction* action) { //
        onOutputModeChanged(action->data().toInt());
    });
}

/// The desktop's own keys for the action, then the further ones it lacks.
static QList<QKeySequence> shortcutsOf(QKeySequence::StandardKey standard, const char* further)
{
    QList<QKeySequence> all;
    for (const QKeySequence& each :
         QKeySequence::keyBindings(standard) + QKeySequence::listFromString(further))
        if (!each.isEmpty() && !all.contains(each))
            all << each;
    return all;
}

void MainWindow::addHistoryActions(QMenu& menu)
{
    QAction* undo = m_params.history().createUndoAction(this, tr("&Undo"));
    undo->setObjectName("undo");
    undo->setShortcuts(shortcutsOf(QKeySequence::Undo, "Ctrl+Z"));
    QAction* redo = m_params.history().createRedoAction(this, tr("&Redo"));
    redo->setObjectName("redo");
    redo->setShortcuts(shortcutsOf(QKeySequence::Redo, "Ctrl+Shift+Z"));
    menu.addActions({undo, redo});
    menu.addSeparator();
}

void MainWindow::addRow(const ActionRow& row)
{
    QMenu& menu = menuTitled(row.menu);
    if (!row.name) {
        if (*row.text)
            menu.addMenu(row.text)->setObjectName("exportMenu");
        else
            menu.addSeparator();
        return;
    }
    auto* action = new QAction(row.text, this);
    action->setObjectName(row.name);
    action->setShortcuts(shortcutsOf(row.standardKeys, row.furtherKeys));
    action->setCheckable(row.toggle);
    if (row.toggle)
        connect(action, &QAction::toggled, this, row.toggle);
    else
        connect(action, &QAction::triggered, this, row.trigger);
    menu.addAction(action);
    m_actions.push_back({action, row.gate});
}

QMenu& MainWindow::menuTitled(const QString& title)
{
    for (QMenu* menu : menuBar()->findChildren<QMenu*>())
        if (menu->title() == title)
            return *menu;
    return *menuBar()->addMenu(title);
}
