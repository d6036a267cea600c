#include "app/mainwindow/color_profile_controller.h"

#include <QFileInfo>

#include "app/mainwindow/prompter.h"
#include "app/mainwindow/shell_host.h"
#include "app/persist/color_profile.h"
#include "app/persist/recent_files.h"
#include "app/session/session.h"
#include "engine/params/param_ranges.h"

static constexpr const char* kDialog = appcfg::kSettings.colorDepthDialog.key;
static constexpr const char* kFilter = "Color depth profiles (*.zrcol);;All files (*)";
static constexpr const char* kLoadTitle = "Load Color Depth Profile";
static constexpr const char* kSaveTitle = "Save Color Depth Profile";

static void bindToRanges(zre::ZRParams& params)
{
    const auto bind = [](const char* name, float& value) {
        value = static_cast<float>(zre::clampParam(name, static_cast<double>(value)));
    };
    bind("colorDepthWeight", params.colorDepthWeight);
    bind("colorDepthGamma", params.colorDepthGamma);
    bind("colorDepthSmoothness", params.colorDepthSmoothness);
    bind("colorDepthGaussian", params.colorDepthGaussian);
}

void ColorProfileController::loadColorProfile()
{
    if (!m_host.session().hasSource())
        return;
    const QString path = m_host.prompter().openFile(
        kLoadTitle, appcfg::dialogStartPath(kDialog, {}, appcfg::Preferred::WorkFolder), kFilter);
    if (!path.isEmpty())
        loadColorProfileFile(path);
}

bool ColorProfileController::loadColorProfileFile(const QString& path)
{
    if (m_host.isBusy() || !m_host.session().hasSource())
        return false;
    zre::ZRParams params = m_host.session().params;
    QString error;
    if (!zrcol::load(path, params, &error)) {
        m_host.prompter().warn(kLoadTitle, error);
        return false;
    }
    bindToRanges(params);
    params.colorDepthEnabled = true;
    m_host.documentChanged(params, "Load color depth profile");
    appcfg::rememberDialogPath(kDialog, path);
    recent::pushFile(appcfg::RecentCategory::ColorDepth, path);
    m_host.showStatus("Color depth profile loaded: " + QFileInfo(path).fileName());
    return true;
}

void ColorProfileController::saveColorProfile()
{
    const Session& session = m_host.session();
    if (m_host.isBusy() || !session.hasSource())
        return;
    const QString name = QFileInfo(session.sourcePath).completeBaseName();
    const QString path = m_host.prompter().saveFile(
        kSaveTitle,
        appcfg::dialogStartPath(kDialog, (name.isEmpty() ? QString("colors") : name) + ".zrcol",
                                appcfg::Preferred::WorkFolder),
        kFilter);
    if (path.isEmpty())
        return;
    QString error;
    if (!zrcol::save(path, session.params, &error)) {
        m_host.prompter().warn(kSaveTitle, error);
        return;
    }
    appcfg::rememberDialogPath(kDialog, path);
    recent::pushFile(appcfg::RecentCategory::ColorDepth, path);
    m_host.showStatus("Color depth profile saved: " + QFileInfo(path).fileName());
}
