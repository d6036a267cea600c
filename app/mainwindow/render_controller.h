#pragma once

#include <functional>

#include <QImage>

#include "engine/image/image.h"

class ShellHost;

/// Turns the session into the picture on the screen: decides when a view is rendered, and which.
class RenderController
{
public:
    /// Puts a picture before the user; `processed` unless it is the source itself.
    using Show = std::function<void(QImage picture, bool processed)>;

    RenderController(ShellHost& host, Show show);

    /// Another output view was chosen.
    void onOutputModeChanged(int view);
    /// Another document, or none, stands in the session.
    void showDocument();
    /// The whole chain, under the wait cursor; nothing without a source.
    void renderNow();
    /// Renders the current view and shows it, with its status text.
    void updatePreview();
    /// Whether the depth view shows colours instead of greys, on the screen only.
    void setDepthInColor(bool inColor);
    /// The current view at full size and with gains of 1, as it goes to a file. False without a
    /// source, or when memory runs out.
    bool renderCurrentViewFullRes(zre::Image& out);

private:
    ShellHost& m_host;
    Show m_show;
    bool m_depthInColor = false;
};
