#include "app/mainwindow/star_table_controller.h"

#include <utility>

#include <QAction>
#include <QFileInfo>
#include <QWidget>

#include "app/mainwindow/preview_view.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/readout.h"
#include "app/mainwindow/shell_host.h"
#include "app/persist/appcfg.h"
#include "app/session/render_pipeline.h"
#include "app/session/session.h"
#include "app/session/star_csv.h"
#include "app/stars/star_table_window.h"

static constexpr const char* kExportTitle = "Export Stars";
static constexpr const char* kFilter = "Comma-separated values (*.csv);;All files (*)";

StarTableController::StarTableController(ShellHost& host, QWidget& window, PreviewView& preview,
                                         std::function<void()> renderNow)
    : m_host(host)
    , m_window(window)
    , m_preview(preview)
    , m_renderNow(std::move(renderNow))
{
    QObject::connect(&preview, &PreviewView::clickedInPicture, &preview,
                     [this](QPointF inPicture) { clickedInPicture(inPicture); });
}

void StarTableController::buildWindow()
{
    m_table = new StarTableWindow([this] { return scene(); }, &m_window);
    for (const char* shared : {"undo", "redo"})
        if (auto* action = m_window.findChild<QAction*>(shared))
            m_table->addAction(action);
    QObject::connect(m_table, &StarTableWindow::starSelected, &m_preview,
                     [this](int star) { ring(star); });
    QObject::connect(m_table, &StarTableWindow::erasuresEdited, &m_preview,
                     [this](const startable::Erasures& erasures, const QString& label) {
                         takeErasures(erasures, label);
                     });
    QObject::connect(m_table, &StarTableWindow::spotlightChanged, &m_preview,
                     [this](bool on) { setSpotlight(on); });
    QObject::connect(m_table, &StarTableWindow::exportRequested, &m_preview,
                     [this] { exportStars(); });
    QObject::connect(m_table, &StarTableWindow::closed, &m_preview, [this] { ring(-1); });
}

bool StarTableController::isOpen() const
{
    return m_table && m_table->isVisible();
}

void StarTableController::showStarTable()
{
    if (m_host.isBusy() || !m_host.session().hasSource())
        return;
    if (!m_table)
        buildWindow();
    m_table->show();
    m_table->raise();
    m_table->activateWindow();
    m_renderNow(); // with an open table, also what the view itself has no use for
    ring(m_table->selectedStar());
}

void StarTableController::closeStarTable()
{
    if (m_table)
        m_table->close();
}

startable::Scene StarTableController::scene() const
{
    const Session& session = m_host.session();
    const RenderPipeline& pipeline = m_host.pipeline();
    if (!session.hasSource())
        return {};
    return {pipeline.activeStars(), &session.source, &pipeline.working(), session.wcs,
            session.params.starErasures};
}

static QString whyEmpty(const Session& session)
{
    if (!session.hasSource())
        return "Open an image to see its stars.";
    if (!session.params.starSeparationEnabled)
        return "The stars stay part of the picture.\nSwitch on \"Star separation\" in the Stars "
               "tab to find them.";
    return "No stars were found.\nA lower \"Threshold\" or \"Min brightness\" in the Stars tab "
           "finds more.";
}

void StarTableController::refreshStarTableWindow()
{
    if (!isOpen())
        return;
    m_table->setEmptyText(whyEmpty(m_host.session()));
    m_table->refresh();
}

void StarTableController::documentReplaced()
{
    if (m_table)
        m_table->selectStar(-1);
    if (!m_host.session().hasSource())
        refreshStarTableWindow(); // with an image the rendering that follows does it
}

/// The ring, at once or as soon as the preview knows the stars of the picture it shows.
void StarTableController::ring(int star)
{
    const bool another = star != m_ringed;
    m_ringed = star;
    m_preview.setRingedStar(star, appcfg::starRingSpotlight());
    if (star < 0 || !another)
        return;
    const startable::Row& row = m_table->stars().row(star);
    m_preview.reveal({row.x + 0.5, row.y + 0.5}); // a picture counts pixels from their corners
}

void StarTableController::setSpotlight(bool on)
{
    appcfg::setStarRingSpotlight(on);
    ring(m_ringed);
}

void StarTableController::clickedInPicture(QPointF inPicture)
{
    constexpr double kReachPixels = 8.0; // on the screen
    if (!isOpen() || m_host.isBusy())
        return;
    const auto place = placeInSource(m_host.session(), inPicture);
    if (!place)
        return;
    const double scale = m_preview.transform().scale() / m_preview.devicePixelRatioF();
    const int star = m_table->stars().nearest(*place - QPointF(0.5, 0.5), kReachPixels / scale);
    if (star >= 0)
        m_table->selectStar(star);
}

void StarTableController::takeErasures(const startable::Erasures& erasures, const QString& label)
{
    if (m_host.isBusy() || !m_host.session().hasSource())
        return;
    zre::ZRParams params = m_host.session().params;
    params.starErasures = erasures;
    m_host.documentChanged(params, label);
}

void StarTableController::exportStars()
{
    static constexpr const char* kDialog = appcfg::kSettings.exportDialog.key;
    const Session& session = m_host.session();
    const std::vector<zre::Star>* stars = m_host.pipeline().activeStars();
    if (m_host.isBusy() || !stars)
        return;
    const QString name = QFileInfo(session.sourcePath).completeBaseName();
    const QString path = m_host.prompter().saveFile(
        kExportTitle,
        appcfg::dialogStartPath(kDialog, (name.isEmpty() ? QString("image") : name) + "-stars.csv",
                                appcfg::Preferred::WorkFolder),
        kFilter);
    if (path.isEmpty())
        return;
    QString error;
    if (!saveStarsCsv(path, *stars, session.wcs, &error)) {
        m_host.prompter().warn(kExportTitle, error);
        return;
    }
    appcfg::rememberDialogPath(kDialog, path);
    m_host.showStatus("Stars exported: " + QFileInfo(path).fileName());
}
