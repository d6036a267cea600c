#pragma once

#include <functional>

#include <QImage>
#include <QTimer>

#include "engine/image/image.h"
#include "engine/params/params.h"

class ShellHost;

/// Turns the session into the picture on the screen: decides when a view is rendered, and which.
class RenderController
{
public:
    /// How long the controls rest before a picture follows them.
    static constexpr int kDelayMs = 120;

    /// What rendering takes from the rest of the window.
    struct Hooks
    {
        /// Puts a picture before the user; `processed` unless it is the source itself.
        std::function<void(QImage picture, bool processed)> show;
        std::function<void()> syncParams;     ///< the session's parameters from the controls
        std::function<int()> activeColorRows; ///< colour rows that are switched on
        /// A picture stands before the user with its status text; empty for nothing to do then.
        std::function<void()> shown = {};
        /// Whether more than the view needs the depth map and the stars; empty for no.
        std::function<bool()> depthInUse = {};
        /// While a motion plays it takes the change over, and no still view is rendered.
        std::function<bool()> refreshPlayback = {};
    };

    RenderController(ShellHost& host, Hooks hooks);

    /// A control changed: a picture follows once the controls rest, one for all changes till then.
    void onParamsChanged();
    /// Another output view was chosen.
    void onOutputModeChanged(int view);
    /// Another document, or none, stands in the session.
    void showDocument();
    /// The whole chain, under the wait cursor; nothing without a source.
    void renderNow();
    /// Renders the current view and shows it, with its status text.
    void updatePreview();
    /// Whether the view shown is made with the depth map.
    bool viewNeedsDepth() const;
    /// Whether the depth view shows colours instead of greys, on the screen only.
    void setDepthInColor(bool inColor);
    /// The current view at full size and with gains of 1, as it goes to a file. False without a
    /// source, or when memory runs out.
    bool renderCurrentViewFullRes(zre::Image& out);

private:
    void onRenderTimer();
    bool deservesProgress() const;

    ShellHost& m_host;
    Hooks m_hooks;
    QTimer m_timer;
    bool m_depthInColor = false;
};

/// Whether building the depth takes so long that the user is to see its stages: with many colour
/// rows at work.
bool paintsManyColors(const zre::ZRParams& params, int activeRows);
