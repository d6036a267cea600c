#pragma once

#include <functional>

#include <QString>

#include "engine/params/params.h"

class Prompter;
class RenderPipeline;
struct Session;

/// All that a controller sees of the program.
class ShellHost
{
public:
    virtual Session& session() = 0;
    virtual RenderPipeline& pipeline() = 0;
    virtual Prompter& prompter() = 0;

    /// Runs `work` under the wait cursor; a nested call just runs it. Running out of memory ends
    /// `work` with a message to the user; the result tells whether it came to its end.
    virtual bool busyRun(const std::function<void()>& work) = 0;
    virtual bool isBusy() const = 0;

    virtual void showStatus(const QString& text) = 0;
    /// The stage of a long step: to the progress dialog while one is installed, else to the status
    /// bar. Painted at once, without taking user input.
    virtual void stageStatus(int percent, const QString& text) = 0;
    virtual void installProgress(const QString& title, const QString& text) = 0;
    virtual void removeProgress() = 0;

    /// Another image, or none, stands in the session: shows the whole of it and enables what has a
    /// subject.
    virtual void documentReplaced() = 0;
    /// The open document goes on with a part of it changed and with `params` as its parameters,
    /// which the user knows as the one step `label`: shows all of it and renders.
    virtual void documentChanged(const zre::ZRParams& params, const QString& label) = 0;

    /// Ends what plays, if anything does, with a word to the user: it was for `reason`.
    virtual void stopPlayback(const QString& reason) = 0;

protected:
    ~ShellHost() = default;
};

/// Shows the modal progress dialog, if the work takes long enough, for its own lifetime.
class ProgressScope
{
public:
    ProgressScope(ShellHost& host, const QString& title, const QString& text)
        : m_host(host)
    {
        m_host.installProgress(title, text);
    }
    ~ProgressScope() { m_host.removeProgress(); }
    ProgressScope(const ProgressScope&) = delete;
    ProgressScope& operator=(const ProgressScope&) = delete;

private:
    ShellHost& m_host;
};
