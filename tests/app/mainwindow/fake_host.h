#pragma once

#include <QStringList>

#include "app/mainwindow/busy_guard.h"
#include "app/mainwindow/shell_host.h"
#include "app/session/render_pipeline.h"
#include "app/session/session.h"
#include "tests/app/mainwindow/scripted_prompter.h"

/// The program as a controller sees it, without a window.
class FakeHost final : public ShellHost
{
public:
    Session document;
    Script script;
    QStringList statuses;
    QStringList steps; ///< labels of the changes made to the open document
    QStringList stops; ///< reasons why playback was to end
    int replaced = 0;

    Session& session() override { return document; }
    RenderPipeline& pipeline() override { return m_pipeline; }
    Prompter& prompter() override { return m_prompter; }
    bool busyRun(const std::function<void()>& work) override { return m_busy.run(work); }
    bool isBusy() const override { return m_busy.active(); }
    void showStatus(const QString& text) override { statuses << text; }
    void stageStatus(int, const QString& text) override { statuses << text; }
    void installProgress(const QString&, const QString& text) override { statuses << text; }
    void removeProgress() override {}
    void documentReplaced() override { ++replaced; }
    void documentChanged(const zre::ZRParams& params, const QString& label) override
    {
        document.params = params;
        steps << label;
    }
    void stopPlayback(const QString& reason) override { stops << reason; }

private:
    RenderPipeline m_pipeline{document};
    ScriptedPrompter m_prompter{script};
    BusyGuard m_busy;
};
