#include "app/mainwindow/document_controller.h"

#include <exception>
#include <memory>
#include <utility>

#include <QEventLoop>
#include <QFileInfo>
#include <QThread>

#include "app/mainwindow/openable_file.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/shell_host.h"
#include "app/session/open_document.h"
#include "app/session/session.h"
#include "engine/demo/demo_scene.h"

static constexpr int kPreparingPercent = 30;

/// Runs `work` on a thread of its own while the window stays painted; user input waits. An
/// exception of `work` comes out here.
static void runAside(const std::function<void()>& work)
{
    std::exception_ptr failure;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
    }));
    QEventLoop loop;
    QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
    thread->start();
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    thread->wait();
    if (failure)
        std::rethrow_exception(failure);
}

QString documentName(const Session& session)
{
    if (!session.hasSource())
        return {};
    return session.sourcePath.isEmpty() ? QString("Built-in scene")
                                        : QFileInfo(session.sourcePath).fileName();
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

void DocumentController::openImage()
{
    const QString path = m_host.prompter().openFile("Open Image", m_folder, imageFileFilter());
    if (!path.isEmpty())
        loadImageFromPath(path);
}

bool DocumentController::loadImageFromPath(const QString& path)
{
    const bool opened = openWith([&path](Session& loaded, QString* error) {
        return openSource(path, StretchMode::Auto, loaded, nullptr, error);
    });
    if (opened)
        m_folder = QFileInfo(path).absolutePath();
    return opened;
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

bool DocumentController::openWith(const Load& load)
{
    if (m_host.isBusy())
        return false;
    bool opened = false;
    QString error;
    m_host.busyRun([&] {
        const ProgressScope progress(m_host, "Opening image", "Loading image...");
        Session loaded;
        runAside([&] { opened = load(loaded, &error); });
        if (!opened)
            return;
        m_host.stageStatus(kPreparingPercent, "Preparing image...");
        m_host.session().installSource(loaded.sourcePath, std::move(loaded.source),
                                       std::move(loaded.wcs), std::move(loaded.sourceFile));
        m_host.stageStatus(kPreparingPercent, "Rendering...");
        m_host.documentReplaced();
        m_host.showStatus(openedText(m_host.session()));
    });
    if (!error.isEmpty())
        m_host.prompter().warn("Open Image", error);
    return opened;
}
