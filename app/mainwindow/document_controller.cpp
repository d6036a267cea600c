#include "app/mainwindow/document_controller.h"

#include <utility>

#include <QCoreApplication>
#include <QFileInfo>
#include <QScopedValueRollback>

#include "app/mainwindow/openable_file.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/run_aside.h"
#include "app/mainwindow/shell_host.h"
#include "app/mainwindow/thumbnail_store.h"
#include "app/persist/recent_files.h"
#include "app/session/carry_over.h"
#include "app/session/open_document.h"
#include "app/session/render_pipeline.h"
#include "app/session/session.h"
#include "engine/demo/demo_scene.h"

static constexpr const char* kDialog = appcfg::kSettings.imageDialog.key;
static constexpr int kPreparingPercent = 30;

QString documentName(const Session& session)
{
    if (!session.hasSource())
        return {};
    return session.sourcePath.isEmpty() ? QString("Built-in scene")
                                        : QFileInfo(session.sourcePath).fileName();
}

QString windowTitleFor(const Session& session)
{
    const QString program = QCoreApplication::applicationName();
    return session.hasSource() ? documentName(session) + " - " + program : program;
}

QString openedText(const Session& session)
{
    QString text = QString("%1  -  %2 x %3")
                       .arg(documentName(session))
                       .arg(session.source.width)
                       .arg(session.source.height);
    if (session.wcs.valid)
        text += QString("  -  WCS: %1 arcsec/px").arg(session.wcs.resolutionArcsec, 0, 'f', 3);
    const zre::MidtonesStretch& stretch = session.sourceFile.stretch;
    if (!stretch.isIdentity())
        text += QString("  -  linear data, shown stretched (shadows %1, midtones %2)")
                    .arg(stretch.shadows, 0, 'f', 4)
                    .arg(stretch.midtones, 0, 'f', 4);
    return text;
}

void DocumentController::newDocument()
{
    if (m_host.isBusy())
        return;
    m_host.session().clear();
    m_host.pipeline().clear();
    m_host.documentReplaced();
    m_host.showStatus("New. Open an image to begin.");
}

void DocumentController::openImage()
{
    const QString path = m_host.prompter().openFile(
        "Open Image", appcfg::dialogStartPath(kDialog, {}, appcfg::Preferred::WorkFolder),
        imageFileFilter());
    if (!path.isEmpty())
        loadImageFromPath(path);
}

bool DocumentController::loadImageFromPath(const QString& path)
{
    const bool opened = openWith([&path](Session& loaded, QString* error) {
        return openSource(path, StretchMode::Auto, loaded, nullptr, error);
    });
    if (opened) {
        appcfg::rememberDialogPath(kDialog, path);
        addRecentFile(path);
    }
    return opened;
}

void DocumentController::addRecentFile(const QString& path)
{
    recent::pushFile(appcfg::RecentCategory::Images, path);
    const ThumbnailStore thumbnails;
    thumbnails.add(path, m_host.session().source);
    thumbnails.keepOnly(recent::entries(appcfg::RecentCategory::Images));
}

void DocumentController::openBuiltInScene()
{
    openWith([](Session& loaded, QString*) {
        zre::DemoScene scene = zre::makeDemoScene({});
        loaded.installSource({}, std::move(scene.picture), std::move(scene.wcs), {});
        return true;
    });
}

void DocumentController::openProjectFromCommandLine(const QString& path)
{
    if (isOpenableImage(path))
        loadImageFromPath(path);
}

static QSize sizeOf(const zre::Image& image)
{
    return {image.width, image.height};
}

int DocumentController::askCarrySession(int newWidth, int newHeight)
{
    const Session& session = m_host.session();
    const QSize oldSize = sizeOf(session.source);
    const QSize newSize(newWidth, newHeight);
    const QStringList items = carryableItems(session);
    if (!session.hasSource() || items.isEmpty() || !sameProportions(oldSize, newSize))
        return kStartFresh;
    return m_host.prompter()
        .choose("Zerrith", carryOverQuestion(oldSize, newSize, items),
                {"Carry over", "Start fresh"})
        .value_or(kCancel);
}

bool DocumentController::openWith(const Load& load)
{
    if (m_host.isBusy() || m_asking)
        return false;
    Session loaded;
    if (!decode(load, loaded))
        return false;
    const QScopedValueRollback<bool> asking(m_asking, true);
    const int answer = askCarrySession(loaded.source.width, loaded.source.height);
    if (answer == kCancel)
        return false;
    return m_host.busyRun([&] { install(std::move(loaded), answer == kCarryOver); });
}

bool DocumentController::decode(const Load& load, Session& loaded)
{
    bool done = false;
    QString error;
    m_host.busyRun([&] {
        const ProgressScope progress(m_host, "Opening image", "Loading image...");
        runAside([&] { done = load(loaded, &error); });
        if (done)
            m_host.stageStatus(kPreparingPercent, "Preparing image...");
    });
    if (!error.isEmpty())
        m_host.prompter().warn("Open Image", error);
    return done;
}

void DocumentController::install(Session loaded, bool carryOver)
{
    const ProgressScope progress(m_host, "Opening image", "Preparing image...");
    m_host.stageStatus(kPreparingPercent, "Preparing image...");
    Session& session = m_host.session();
    if (carryOver)
        rescaleSession(session, sizeOf(session.source), sizeOf(loaded.source));
    else
        startFresh(session);
    session.installSource(std::move(loaded.sourcePath), std::move(loaded.source),
                          std::move(loaded.wcs), std::move(loaded.sourceFile));
    m_host.stageStatus(kPreparingPercent, "Rendering...");
    m_host.documentReplaced();
    m_host.showStatus(openedText(session));
}
