#include "app/mainwindow/flyby_controller.h"

#include <utility>

#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QSaveFile>

#include "app/flyby/flyby_examples.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/shell_host.h"
#include "app/persist/appcfg.h"
#include "app/persist/recent_files.h"
#include "app/session/carry_over.h"
#include "app/session/flyby_path.h"
#include "app/session/session.h"

static constexpr const char* kDialog = appcfg::kSettings.scriptDialog.key;
static constexpr const char* kFilter =
    "Zerrith script (*.zrsc);;Flyby script (*.txt *.flyby);;All files (*)";
static constexpr const char* kLoadTitle = "Load Flyby Script";
static constexpr const char* kSaveTitle = "Save Flyby Script";
static constexpr qint64 kLargestScript = 4 << 20; // bytes

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
    m_hooks.pathChanged(); // what plays says so, too
    m_host.showStatus(compileText());
}

void FlybyController::loadScript()
{
    if (m_host.isBusy() || !m_host.session().hasSource())
        return;
    const QString path = m_host.prompter().openFile(
        kLoadTitle, appcfg::dialogStartPath(kDialog, {}, appcfg::Preferred::LastUsed), kFilter);
    if (!path.isEmpty())
        loadScriptFile(path);
}

bool FlybyController::loadScriptFile(const QString& path)
{
    if (m_host.isBusy() || !m_host.session().hasSource())
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > kLargestScript) {
        m_host.prompter().warn(kLoadTitle, "Could not read: " + path);
        return false;
    }
    const QByteArray text = file.read(kLargestScript); // a device may hold more than it says
    if (file.error() != QFileDevice::NoError) {
        m_host.prompter().warn(kLoadTitle, "Could not read: " + path);
        return false;
    }
    applyScript(QString::fromUtf8(text));
    appcfg::rememberDialogPath(kDialog, path);
    recent::pushFile(appcfg::RecentCategory::Scripts, path);
    return true;
}

void FlybyController::saveScript()
{
    const Session& session = m_host.session();
    if (session.flybyScript.trimmed().isEmpty()) {
        m_host.showStatus("There is no flyby script to save yet. Load one or open an example.");
        return;
    }
    const QString base = QFileInfo(session.sourcePath).completeBaseName();
    QString path = m_host.prompter().saveFile(
        kSaveTitle,
        appcfg::dialogStartPath(kDialog, (base.isEmpty() ? QString("flyby") : base) + ".zrsc",
                                appcfg::Preferred::LastUsed),
        kFilter);
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += ".zrsc";
    const QByteArray text = session.flybyScript.toUtf8();
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit()) {
        m_host.prompter().warn(kSaveTitle, "Could not write: " + path);
        return;
    }
    appcfg::rememberDialogPath(kDialog, path);
    recent::pushFile(appcfg::RecentCategory::Scripts, path);
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
            if (!m_host.isBusy() && m_host.session().hasSource())
                applyScript(flybyExampleScript(example, sizeOfSource(m_host.session())));
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
