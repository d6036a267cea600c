#include "app/mainwindow/flyby_controller.h"

#include <utility>

#include <QFileInfo>
#include <QMenu>

#include "app/flyby/flyby_examples.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/shell_host.h"
#include "app/persist/appcfg.h"
#include "app/persist/recent_files.h"
#include "app/session/carry_over.h"
#include "app/session/flyby_path.h"
#include "app/session/script_file.h"
#include "app/session/session.h"

static QSize sizeOfSource(const Session& session)
{
    return {session.source.width, session.source.height};
}

FlybyController::FlybyController(ShellHost& host, Hooks hooks)
    : m_host(host)
    , m_hooks(std::move(hooks))
{
}

QString FlybyController::compileText() const
{
    const Session& session = m_host.session();
    return compileFlyby(session.flybyScript, session.params, session.source.width,
                        session.source.height,
                        {appcfg::ongoingFlybyWiggle(), appcfg::flybyContinuousLoop()})
        .status;
}

void FlybyController::applyScript(const QString& script)
{
    Session& session = m_host.session();
    session.flybyScript = script;
    session.flybyScriptSize = sizeOfSource(session);
    m_hooks.scriptReplaced();
    m_hooks.pathChanged(); // what plays says so, too
    m_host.showStatus(compileText());
}

void FlybyController::loadScript()
{
    if (m_host.isBusy() || !m_host.session().hasSource())
        return;
    Prompter& prompter = m_host.prompter();
    const QString path = flybyscript::askScriptToLoad([&](const auto&... question) { //
        return prompter.openFile(question...);
    });
    if (!path.isEmpty())
        loadScriptFile(path);
}

bool FlybyController::loadScriptFile(const QString& path)
{
    if (m_host.isBusy() || !m_host.session().hasSource())
        return false;
    const std::optional<QString> text = flybyscript::readScript(path);
    if (!text) {
        m_host.prompter().warn(flybyscript::kLoadTitle, "Could not read: " + path);
        return false;
    }
    applyScript(*text);
    remember(path);
    return true;
}

void FlybyController::remember(const QString& path)
{
    appcfg::rememberDialogPath(appcfg::kSettings.scriptDialog.key, path);
    recent::pushFile(appcfg::RecentCategory::Scripts, path);
    m_hooks.scriptStored(m_host.session().flybyScript);
}

void FlybyController::saveScript()
{
    const Session& session = m_host.session();
    if (session.flybyScript.trimmed().isEmpty()) {
        m_host.showStatus("There is no flyby script to save yet. Load one or open an example.");
        return;
    }
    const QString base = QFileInfo(session.sourcePath).completeBaseName();
    Prompter& prompter = m_host.prompter();
    const QString path = flybyscript::askWhereToSave(
        [&](const auto&... question) { return prompter.saveFile(question...); },
        (base.isEmpty() ? QString("flyby") : base) + ".zrsc");
    if (path.isEmpty())
        return;
    if (!flybyscript::writeScript(path, session.flybyScript)) {
        prompter.warn(flybyscript::kSaveTitle, "Could not write: " + path);
        return;
    }
    remember(path);
    m_host.showStatus("Saved to " + path);
}

void FlybyController::rescaleFlybyScript()
{
    Session& session = m_host.session();
    if (session.flybyScript.trimmed().isEmpty()) {
        m_host.showStatus("There is no flyby path to rescale yet. Author a path first (Flyby "
                          "editor).");
        return;
    }
    if (!hasPixelPath(session)) {
        m_host.showStatus("A 3D flight has no coordinates in pixels to rescale.");
        return;
    }
    const std::optional<Rescale> asked =
        m_hooks.askRescale({session.flybyScriptSize, sizeOfSource(session)});
    if (!asked || asked->from.isEmpty() || asked->to.isEmpty() || asked->from == asked->to)
        return;
    rescaleFlybyPath(session, asked->from, asked->to);
    m_hooks.pathChanged();
    m_host.showStatus(QString("Flyby coordinates rescaled %1x%2 -> %3x%4.")
                          .arg(asked->from.width())
                          .arg(asked->from.height())
                          .arg(asked->to.width())
                          .arg(asked->to.height()));
}

void FlybyController::buildExamplesMenu(QMenu& menu)
{
    for (const FlybyExample& example : kFlybyExamples)
        menu.addAction(example.title, [this, &example] {
            if (m_host.isBusy() || !m_host.session().hasSource())
                return;
            applyScript(flybyExampleScript(example, sizeOfSource(m_host.session())));
            m_hooks.scriptStored(m_host.session().flybyScript); // the menu has it again
        });
}

void FlybyController::setOngoingWiggle(bool on)
{
    if (appcfg::ongoingFlybyWiggle() == on)
        return;
    appcfg::setOngoingFlybyWiggle(on);
    m_hooks.pathChanged();
}

void FlybyController::setContinuousLoop(bool on)
{
    if (appcfg::flybyContinuousLoop() == on)
        return;
    appcfg::setFlybyContinuousLoop(on);
    m_hooks.pathChanged();
}
