#pragma once

#include <functional>

#include <QString>

#include "engine/image/image.h"

class ShellHost;
struct Session;

/// Writes the view on the screen to a file, at full size.
class StillController
{
public:
    /// Renders the current view as it goes to a file; false when there is none.
    using Render = std::function<bool(zre::Image&)>;

    /// Receives the path of each file written.
    using Made = std::function<void(const QString& path)>;

    StillController(ShellHost& host, Render render, Made made);

    /// Asks for a file and writes the current view to it.
    void saveImage();

private:
    ShellHost& m_host;
    Render m_render;
    Made m_made;
};

/// The name suggested for the current view: the source's base name and the view's key.
QString suggestedStillName(const Session& session);
