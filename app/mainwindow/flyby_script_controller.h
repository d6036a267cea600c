#pragma once

#include <functional>

#include <QString>

#include "app/flyby/script_status.h"

class QWidget;
class ScriptEditor;
class ShellHost;

/// The script editor: opens it, keeps it in step with the document and makes its text the
/// document's flyby.
class FlybyScriptController
{
public:
    /// The editor stands beside `window`, which must outlive the controller. `play` starts the
    /// flyby of the document anew; `scriptChanged` follows every other change of it.
    FlybyScriptController(ShellHost& host, QWidget& window, std::function<void()> play,
                          std::function<void()> scriptChanged);

    /// Opens the editor with the document's script, or brings it to the front.
    void showScriptEditor();
    void closeScriptEditor();
    /// The document, its size or its frame rate may be another: an open editor follows. A text that
    /// was not applied stays.
    void refresh();

private:
    void buildEditor();
    void showContext();
    void showDocumentScript();
    void apply(const QString& text, bool play);

    ShellHost& m_host;
    QWidget& m_window;
    std::function<void()> m_play;
    std::function<void()> m_scriptChanged;
    ScriptEditor* m_editor = nullptr; ///< owned by the window; made when first shown
    QString m_shown;                  ///< the document's script as the editor got it last
    ScriptContext m_context;          ///< as the editor knows it
};
