#include "app/mainwindow/flyby_script_controller.h"

#include <optional>
#include <utility>

#include <QWidget>

#include "app/flyby/script_editor.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/shell_host.h"
#include "app/persist/appcfg.h"
#include "app/persist/recent_files.h"
#include "app/session/flyby_path.h"
#include "app/session/session.h"

FlybyScriptController::FlybyScriptController(ShellHost& host, QWidget& window,
                                             std::function<void()> play,
                                             std::function<void()> scriptChanged)
    : m_host(host)
    , m_window(window)
    , m_play(std::move(play))
    , m_scriptChanged(std::move(scriptChanged))
{
}

void FlybyScriptController::buildEditor()
{
    Prompter& prompter = m_host.prompter();
    m_editor =
        new ScriptEditor({[&](const QString& title, const QString& startAt, const QString& filter) {
                              return prompter.openFile(title, startAt, filter);
                          },
                          [&](const QString& title, const QString& startAt, const QString& filter) {
                              return prompter.saveFile(title, startAt, filter);
                          }},
                         &m_window);
    QObject::connect(m_editor, &ScriptEditor::applyRequested, m_editor,
                     [this](const QString& text, bool play) { apply(text, play); });
    QObject::connect(m_editor, &ScriptEditor::fileUsed, m_editor, [](const QString& path) {
        recent::pushFile(appcfg::RecentCategory::Scripts, path);
    });
}

void FlybyScriptController::showScriptEditor()
{
    if (!m_editor) {
        buildEditor();
        showContext();
        showDocumentScript();
    }
    m_editor->show();
    refresh();
    m_editor->raise();
    m_editor->activateWindow();
}

void FlybyScriptController::closeScriptEditor()
{
    if (m_editor)
        m_editor->close();
}

bool FlybyScriptController::mayClose()
{
    if (!m_editor || !m_editor->isOnlyHere())
        return true;
    const std::optional<int> choice = m_host.prompter().choose(
        "Flyby Script",
        "The flyby script was not saved to a file. It is lost when the window closes.",
        {"Save...", "Close Without Saving"});
    return choice == 0 ? m_editor->saveScript() : choice.has_value();
}

void FlybyScriptController::showContext()
{
    const Session& session = m_host.session();
    const ScriptContext now{session.source.width, session.source.height, session.params.wiggleFps};
    m_context = now;
    m_editor->setContext(now.width, now.height, now.fps);
    m_editor->setPlayable(m_play && session.hasSource());
}

void FlybyScriptController::showDocumentScript()
{
    if (!m_editor)
        return;
    m_shown = m_host.session().flybyScript;
    m_editor->setScript(m_shown);
}

void FlybyScriptController::noteStored(const QString& script)
{
    if (m_editor && m_editor->scriptText() == script)
        m_editor->markStored();
}

void FlybyScriptController::refresh()
{
    if (!m_editor || !m_editor->isVisible())
        return;
    const Session& session = m_host.session();
    if (m_context !=
        ScriptContext{session.source.width, session.source.height, session.params.wiggleFps})
        showContext();
    if (m_shown != session.flybyScript && !m_editor->isEdited())
        showDocumentScript();
}

void FlybyScriptController::apply(const QString& text, bool play)
{
    if (m_host.isBusy()) {
        m_editor->showStatus("Busy - try again when the work is done.");
        return;
    }
    Session& session = m_host.session();
    session.flybyScript = m_shown = text;
    session.flybyScriptSize = QSize(session.source.width, session.source.height);
    m_editor->markSaved();
    if (!session.hasSource()) {
        m_host.showStatus("The flyby script is kept; open an image to play it.");
        return;
    }
    const FlybyOptions options{appcfg::ongoingFlybyWiggle(), appcfg::flybyContinuousLoop()};
    const QString status =
        compileFlyby(text, session.params, session.source.width, session.source.height, options)
            .status;
    m_editor->showStatus("Applied.  " + status);
    if (play && m_play)
        m_play();
    else
        m_scriptChanged();
    m_host.showStatus(status);
}
