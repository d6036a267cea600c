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
    /// Asks about a script of the user's that no file holds; false when the window has to stay.
    bool mayClose();
    /// The document, its size or its frame rate may be another: an open editor follows. A text that
    /// was not applied stays.
    void refresh();
    /// The user put another script into the document: the editor shows it in place of its text,
    /// which can be undone.
    void showDocumentScript();
    /// `script` need not be asked about when the window closes.
    void noteStored(const QString& script);

private:
    void buildEditor();
    void showContext();
    void apply(const QString& text, bool play);

    ShellHost& m_host;
    QWidget& m_window;
    std::function<void()> m_play;
    std::function<void()> m_scriptChanged;
    ScriptEditor* m_editor = nullptr; ///< owned by the window; made when first shown
    QString m_shown;                  ///< the document's script as the editor got it last
    ScriptContext m_context;          ///< as the editor knows it
};
