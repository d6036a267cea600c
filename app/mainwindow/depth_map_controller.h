#pragma once

#include <QString>

class ShellHost;
struct Session;

/// The depth map from outside, beside the image.
class DepthMapController
{
public:
    explicit DepthMapController(ShellHost& host)
        : m_host(host)
    {
    }

    /// Asks for a file and loads it.
    void loadDepthMap();
    /// Makes the file's picture the external depth map and lets it count. False without an image,
    /// or, with a message to the user, when the file cannot be read; the session then stays as it
    /// was.
    bool loadDepthMapFile(const QString& path);
    void clearDepthMap();
    /// Shows the map as it was loaded, before any blending.
    void viewDepthMap();

private:
    ShellHost& m_host;
};

/// The name of the session's external depth map; empty without one.
QString depthMapName(const Session& session);
