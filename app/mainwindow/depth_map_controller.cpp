#include "app/mainwindow/depth_map_controller.h"

#include <utility>

#include <QFileInfo>

#include "app/mainwindow/openable_file.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/run_aside.h"
#include "app/mainwindow/shell_host.h"
#include "app/persist/recent_files.h"
#include "app/session/open_document.h"
#include "app/session/session.h"
#include "engine/qt/zre_qt.h"

static constexpr const char* kDialog = appcfg::kSettings.depthMapDialog.key;
static constexpr const char* kTitle = "Load Depth Map";

QString depthMapName(const Session& session)
{
    return session.externalDepth.usable() ? QFileInfo(session.depthMapPath).fileName() : QString();
}

void DepthMapController::loadDepthMap()
{
    if (!m_host.session().hasSource())
        return;
    const QString path = m_host.prompter().openFile(
        kTitle, appcfg::dialogStartPath(kDialog, {}, appcfg::Preferred::WorkFolder),
        imageFileFilter());
    if (!path.isEmpty())
        loadDepthMapFile(path);
}

bool DepthMapController::loadDepthMapFile(const QString& path)
{
    Session& session = m_host.session();
    if (m_host.isBusy() || !session.hasSource())
        return false;
    bool loaded = false;
    QString error;
    m_host.busyRun([&] {
        const ProgressScope progress(m_host, "Opening depth map", "Loading depth map...");
        Session file;
        runAside([&] { loaded = openDepthMap(path, file, &error); });
        if (!loaded)
            return;
        session.installExternalDepth(path, std::move(file.externalDepth));
        zre::ZRParams params = session.params;
        switchDepthMapOn(params);
        m_host.documentChanged(params, "Load depth map");
    });
    if (!error.isEmpty())
        m_host.prompter().warn(kTitle, error);
    if (!loaded)
        return false;
    appcfg::rememberDialogPath(kDialog, path);
    recent::pushFile(appcfg::RecentCategory::DepthMaps, path);
    m_host.showStatus(QString("Depth map loaded: %1  -  %2 x %3")
                          .arg(depthMapName(session))
                          .arg(session.externalDepth.width)
                          .arg(session.externalDepth.height));
    return true;
}

void DepthMapController::clearDepthMap()
{
    Session& session = m_host.session();
    if (m_host.isBusy() || !session.externalDepth.usable())
        return;
    session.installExternalDepth({}, {});
    m_host.documentChanged(session.params, "Clear depth map");
    m_host.showStatus("Depth map cleared.");
}

void DepthMapController::viewDepthMap()
{
    const Session& session = m_host.session();
    if (session.externalDepth.usable())
        m_host.prompter().showPicture("Depth map  -  " + depthMapName(session),
                                      zre_qt::toQImage(session.externalDepth));
}
