#pragma once

#include <functional>

#include "app/panel/param_history.h"
#include "engine/image/image.h"

class ControlPanel;
class QUndoStack;
class QWidget;
class ShellHost;

/// The parameters under the user's hands: takes over what the panel changes, remembers it for undo,
/// and shows what comes from elsewhere.
class ParamsController
{
public:
    /// `changed` is told that another picture is due.
    ParamsController(ShellHost& host, std::function<void()> changed);

    /// The panel, once, as a child of `parent`.
    ControlPanel& buildControlPanel(QWidget* parent);
    /// The session's parameters from the controls.
    void syncParamsFromUi();
    /// The controls from the session's parameters. Renders nothing.
    void syncUiFromParams();
    int activeColorRows() const;
    /// The controls that depend on the stars follow those that the pipeline has.
    void syncStarControls();
    void setImageGatedSectionsEnabled(bool enabled);
    /// The setting for percent or raw numbers may have changed.
    void refreshValueTexts();
    /// A row gets a colour that the user picked, as an edit of its own.
    void setPickedColor(int row, const QColor& color);

    /// Shows how the depths of a rendering are spread.
    void showDepth(const zre::Image& depth);
    /// Another document, or none, stands in the session: shows it, and forgets the past.
    void documentReplaced();
    /// Takes over `params` as the one step `label`.
    void takeStep(const zre::ZRParams& params, const QString& label);

    QUndoStack& history() { return m_history.stack(); }

private:
    void onEdited(const QString& label, int gesture);
    void chooseColor(int row, const QColor& current);
    void apply(const zre::ZRParams& params);

    ShellHost& m_host;
    std::function<void()> m_changed;
    ControlPanel* m_panel = nullptr; ///< owned by its parent
    ParamHistory m_history;
    QObject m_context; ///< of the connections: what the panel still says when it goes is not heard
};
