#pragma once

#include <functional>

#include <QImage>

#include "engine/image/image.h"

class ShellHost;

/// Turns the session into the picture on the screen: decides when a view is rendered, and which.
class RenderController
{
public:
    /// `show` puts a picture before the user.
    RenderController(ShellHost& host, std::function<void(QImage)> show);

    /// Another output view was chosen.
    void onOutputModeChanged(int view);
    /// Another document, or none, stands in the session.
    void showDocument();
    /// The whole chain, under the wait cursor; nothing without a source.
    void renderNow();
    /// Renders the current view and shows it, with its status text.
    void updatePreview();
    /// The current view at full size and with gains of 1, as it goes to a file. False without a
    /// source, or when memory runs out.
    bool renderCurrentViewFullRes(zre::Image& out);

private:
    ShellHost& m_host;
    std::function<void(QImage)> m_show;
};
