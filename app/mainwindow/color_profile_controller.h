#pragma once

#include <QString>

class ShellHost;

/// Colour-depth profiles: the colour rows of one image, kept to be used on another.
class ColorProfileController
{
public:
    explicit ColorProfileController(ShellHost& host)
        : m_host(host)
    {
    }

    /// Asks for a file and loads it.
    void loadColorProfile();
    /// Takes over the file's colour rows, bound to their ranges, and lets them count. False without
    /// an image, or, with a message to the user, when the file cannot be read.
    bool loadColorProfileFile(const QString& path);
    /// Asks for a file and writes the session's colour rows to it.
    void saveColorProfile();

private:
    ShellHost& m_host;
};
