#include "app/mainwindow/main_window.h"

#include <array>
#include <cmath>

#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>

#include "app/flyby/scc_dialog.h"
#include "app/mainwindow/empty_state.h"
#include "app/mainwindow/help_text.h"
#include "app/mainwindow/main_toolbar.h"
#include "app/mainwindow/preview_view.h"
#include "app/mainwindow/readout.h"
#include "app/panel/control_panel.h"
#include "app/persist/appcfg.h"
#include "app/playback/transport_bar.h"
#include "app/prefs/theme_manager.h"
#include "app/session/output_view.h"
#include "engine/qt/zre_qt.h"

MainWindow::MainWindow(std::unique_ptr<Prompter> prompter)
    : m_prompter(prompter ? std::move(prompter) : std::make_unique<DesktopPrompter>(this))
    , m_stages(*statusBar(), *this)
    , m_preview(new PreviewView(this))
    , m_starOverlay(*this, *m_preview)
    , m_render(*this, {[this](QImage picture, bool processed) {
                           m_preview->setPreview(std::move(picture), processed);
                       },
                       [this] { syncParamsFromUi(); }, [this] { return activeColorRows(); },
                       [this] { pictureShown(); }, [this] { return depthInUse(); },
                       [this] { return refreshPlayback(); }})
    , m_params(*this, [this] { onParamsChanged(); })
    , m_colorPick(*this, *m_preview,
                  [this](int row, const QColor& color) { m_params.setPickedColor(row, color); })
    , m_playback(*this, *this,
                 {[this](QImage frame) { showPlaybackFrame(std::move(frame)); },
                  [this] { return m_preview->size() * m_preview->devicePixelRatioF(); },
                  [this] { syncParamsFromUi(); }, [this] { renderNow(); },
                  [this] { updateGates(); }})
    , m_flyby(*this, {[this](const FlybyController::Rescale& from) { return askRescale(from); },
                      [this] {
                          m_flybyScript.refresh();
                          refreshPlayback();
                      },
                      [this] { m_flybyScript.showDocumentScript(); },
                      [this](const QString& script) { m_flybyScript.noteStored(script); }})
    , m_recent(*this, opener(&MainWindow::loadImageFromPath), pairOpener(),
               opener(&MainWindow::loadDepthMapFile), opener(&MainWindow::loadColorProfileFile),
               opener(&MainWindow::loadFlybyScriptFile))
    , m_drops(
          *this, [this](const QString& path) { m_documents.openWithPartner(path); },
          opener(&MainWindow::loadDepthMapFile), opener(&MainWindow::loadColorProfileFile),
          pairOpener())
    , m_stills(
          *this, [this](zre::Image& out) { return renderCurrentViewFullRes(out); },
          [this](const QString& path) { addRecentFile(path); })
    , m_videos(*this, *this, {[this] { syncParamsFromUi(); }, [this] { showPreferences(); }})
    , m_spatial(*this, *this, m_videos)
    , m_starTable(*this, *this, *m_preview, [this] { renderNow(); })
    , m_flybyScript(
          *this, *this, [this] { m_playback.playFlyby(); }, [this] { refreshPlayback(); })
    , m_preferences(
          *this, *this, [this] { settingsChanged(); }, [this] { modelsChanged(); })
{
    m_pipeline.setTrueColor(m_starTrueColor);
    m_pipeline.setStageReporter([this](int percent, const QString& text) { //
        stageStatus(percent, text);
    });
    m_preview->setDropOffer([this](const QList<QUrl>& urls) {
        // A question about the open document must not end on another one.
        return QApplication::activeModalWidget() ? QString() : m_drops.offer(urls);
    });
    const auto takeDrop = [this](const QList<QUrl>& urls) { m_drops.take(urls); };
    connect(m_preview, &PreviewView::filesDropped, this, takeDrop,
            Qt::QueuedConnection); // a box must not hold up the program dragged from
    connect(m_preview, &PreviewView::zoomChanged, this, &MainWindow::showZoom);
    connect(m_preview, &PreviewView::cursorMoved, this, &MainWindow::showReadout);
    connect(m_preview, &PreviewView::cursorLeft, this, [this] { m_stages.showReadout({}); });
    buildMenus();
    m_playback.setActions({findChild<QAction*>("playWiggle"), findChild<QAction*>("playFlyby")});
    m_toolbar = new MainToolbar(*this);
    addToolBar(m_toolbar);
    connect(&ThemeManager::instance(), &ThemeManager::themeChanged, this,
            &MainWindow::applyIconColors);
    m_preview->setEmptyState(
        new EmptyState({findChild<QAction*>("openImage"), findChild<QAction*>("openPair"),
                        findChild<QAction*>("openBuiltInScene")},
                       {[this](const QString& path) { openRecentFile(path); },
                        [this](const QString& entry) { openRecentPair(entry); }},
                       m_preview));
    buildControlPanel();
    setWindowTitle(windowTitleFor(m_session));
    resize(1280, 800);
    restoreGeometry(appcfg::windowGeometry());
    updateGates();
    showStatus("Open an image to begin.");
}

MainWindow::~MainWindow() = default;

std::function<void(const QString&)> MainWindow::opener(bool (MainWindow::*open)(const QString&))
{
    return [this, open](const QString& path) { (this->*open)(path); };
}

std::function<void(const QString&, const QString&)> MainWindow::pairOpener()
{
    return [this](const QString& stars, const QString& starless) {
        loadStarlessStarsPair(stars, starless);
    };
}

std::optional<FlybyController::Rescale>
MainWindow::askRescale(const FlybyController::Rescale& suggested)
{
    SccDialog dialog(suggested.from.width(), suggested.from.height(), this);
    dialog.setNewSize(suggested.to.width(), suggested.to.height());
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return FlybyController::Rescale{{dialog.oldW(), dialog.oldH()}, {dialog.newW(), dialog.newH()}};
}

void MainWindow::buildControlPanel()
{
    constexpr int kPanelWidth = 360;
    m_splitter = new QSplitter(this);
    ControlPanel& panel = m_params.buildControlPanel(m_splitter);
    m_splitter->addWidget(&panel);
    m_splitter->addWidget(buildPreviewPane());
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setSizes({kPanelWidth, width() - kPanelWidth});
    m_splitter->restoreState(appcfg::splitterState());
    setCentralWidget(m_splitter);
    m_preview->takeDropsOf(*this);
    for (QLineEdit* field : panel.findChildren<QLineEdit*>())
        field->setAcceptDrops(false); // it would take a file's name for text
    connect(&panel, &ControlPanel::viewDepthMapRequested, this, &MainWindow::viewDepthMap);
    connect(&panel, &ControlPanel::loadDepthMapRequested, this, &MainWindow::loadDepthMap);
    connect(&panel, &ControlPanel::clearDepthMapRequested, this, &MainWindow::clearDepthMap);
    connect(&panel, &ControlPanel::loadColorProfileRequested, this, &MainWindow::loadColorProfile);
    connect(&panel, &ControlPanel::saveColorProfileRequested, this, &MainWindow::saveColorProfile);
    connect(&panel, &ControlPanel::pickColorRequested, this, &MainWindow::pickColor);
}

/// The preview with the controls of what plays below it.
QWidget* MainWindow::buildPreviewPane()
{
    auto* pane = new QWidget(m_splitter);
    auto* column = new QVBoxLayout(pane);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(m_preview, 1);
    m_transport = &m_playback.buildTransportBar(pane);
    column->addWidget(m_transport);
    return pane;
}

void MainWindow::applyIconColors()
{
    m_toolbar->applyIconColors();
}

void MainWindow::runStartupNotices()
{
    raise();
    activateWindow();
    warnIfNoFfmpeg();
}

void MainWindow::updateGates()
{
    for (const GatedAction& row : m_actions)
        row.action->setEnabled(isOpen(row.gate));
    m_transport->setVisible(m_session.hasSource());
}

bool MainWindow::isOpen(Gate gate) const
{
    switch (gate) {
    case Gate::NeedsImage:
        return m_session.hasSource();
    case Gate::NeedsDepthMap:
        return m_session.externalDepth.usable();
    case Gate::NeedsPlayback:
        return m_playback.isActive();
    case Gate::Always:
        break;
    }
    return true;
}

void MainWindow::documentReplaced()
{
    m_preview->setReference([this] { return zre_qt::toQImage(m_session.source); });
    m_preview->zoomToFit();
    setWindowTitle(windowTitleFor(m_session));
    for (QAction* view : m_views->actions())
        view->setChecked(view->data().toInt() == m_session.outputMode);
    m_playback.documentReplaced();
    m_params.documentReplaced();
    m_starOverlay.documentReplaced();
    m_starTable.documentReplaced();
    m_flybyScript.refresh();
    m_render.showDocument();
    updateGates();
}

void MainWindow::documentChanged(const zre::ZRParams& params, const QString& label)
{
    m_params.takeStep(params, label);
    updateGates();
    renderNow();
}

void MainWindow::showPlaybackFrame(QImage frame)
{
    m_preview->setStarMarks({}); // they stand elsewhere in it
    m_stages.showReadout({});
    m_preview->setPreview(std::move(frame));
}

void MainWindow::onOutputModeChanged(int view)
{
    m_playback.dropPlayback();
    m_render.onOutputModeChanged(view);
}

void MainWindow::showZoom(double scale, bool fitted)
{
    const QString percent = QString::number(std::lround(scale * 100)) + " %";
    m_stages.showZoom(scale > 0 ? (fitted ? "Fit  " + percent : percent) : QString());
}

void MainWindow::showReadout(QPointF inPicture)
{
    if (m_playback.isActive())
        return; // the frame's pixels are not the picture's
    m_stages.showReadout(readoutText(m_session, m_pipeline.standingDepth(), inPicture));
}

void MainWindow::installProgress(const QString& title, const QString& text)
{
    m_stages.installProgress(title, text);
}

bool MainWindow::busyRun(const std::function<void()>& work)
{
    const bool done = m_busy.run(work);
    if (!done)
        m_prompter->warn("Zerrith", "There is not enough memory for this image.");
    return done;
}

// The work under way would go on in a window that is gone.
void MainWindow::closeEvent(QCloseEvent* event)
{
    event->setAccepted(!m_busy.active() && m_flybyScript.mayClose());
    if (!event->isAccepted())
        return;
    m_starTable.closeStarTable();
    m_flybyScript.closeScriptEditor();
    appcfg::setWindowGeometry(saveGeometry());
    appcfg::setSplitterState(m_splitter->saveState());
}

// Keys come here that no focused control has a use for.
void MainWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Space)
        m_preview->holdReference(true);
    else
        QMainWindow::keyPressEvent(event);
}

void MainWindow::keyReleaseEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Space && !event->isAutoRepeat())
        m_preview->holdReference(false);
    else
        QMainWindow::keyReleaseEvent(event);
}

void MainWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ActivationChange)
        m_preview->holdReference(false); // the release goes to another window
    QMainWindow::changeEvent(event);
}

bool MainWindow::renderCurrentViewFullRes(zre::Image& out)
{
    return m_render.renderCurrentViewFullRes(out);
}

void MainWindow::openProjectFromCommandLine(const QString& path)
{
    m_documents.openProjectFromCommandLine(path);
}

void MainWindow::buildRecentMenu()
{
    m_recent.buildRecentMenu(*m_recentMenu);
}

void MainWindow::compareWithSource(bool on)
{
    m_preview->setSplit(on);
}

void MainWindow::quit()
{
    close();
}
void MainWindow::zoomIn()
{
    m_preview->zoomIn();
}
void MainWindow::zoomOut()
{
    m_preview->zoomOut();
}
void MainWindow::zoomToFit()
{
    m_preview->zoomToFit();
}
void MainWindow::zoomToPixels()
{
    m_preview->zoomToPixels();
}

void MainWindow::onParamsChanged()
{
    m_starOverlay.paramsEdited();
    m_render.onParamsChanged();
}

void MainWindow::pictureShown()
{
    refreshStarTableWindow(); // first: it may ring a star among those that the overlay takes over
    m_starOverlay.pictureShown();
    m_flybyScript.refresh();
    m_params.syncStarControls();
    if (const zre::Image* depth = m_pipeline.standingDepth())
        m_params.showDepth(*depth);
}

void MainWindow::settingsChanged()
{
    m_toolbar->applyGroups();
    m_params.refreshValueTexts();
    const bool trueColor = appcfg::starTrueColor();
    if (trueColor == m_starTrueColor)
        return;
    m_starTrueColor = trueColor;
    m_pipeline.setTrueColor(trueColor);
    m_render.onParamsChanged();
}

void MainWindow::modelsChanged()
{
    m_params.refreshValueTexts(); // they tell what cannot be used
    m_render.onParamsChanged();
}

void MainWindow::showTabHelp()
{
    m_prompter->tell("Help", tabHelpText(findChild<ControlPanel*>()->currentTab()));
}

void MainWindow::showShortcuts()
{
    m_prompter->tell("Keyboard Shortcuts", shortcutsText(findChildren<QAction*>()));
}

void MainWindow::showAbout()
{
    m_prompter->tell("About Zerrith Studio", aboutText());
}
