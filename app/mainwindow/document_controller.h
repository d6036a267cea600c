#pragma once

#include <functional>

#include <QString>

class ShellHost;
struct Session;

/// Opens documents: asks, decodes into locals, and only then changes the session.
class DocumentController
{
public:
    explicit DocumentController(ShellHost& host)
        : m_host(host)
    {
    }

    /// Asks for an image file and opens it.
    void openImage();
    /// False, with a message to the user and the session as it was, when the file cannot be read.
    bool loadImageFromPath(const QString& path);
    void openBuiltInScene();
    /// Opens `path` when it is an existing image file; any other path is ignored in silence.
    void openProjectFromCommandLine(const QString& path);

private:
    /// Fills a record of its own; false with a message.
    using Load = std::function<bool(Session&, QString* error)>;
    bool openWith(const Load& load);

    ShellHost& m_host;
    QString m_folder; ///< last opened from
};

/// The document's name for titles; empty without a document.
QString documentName(const Session& session);

/// What the status bar says of a document just opened: its name and size, the scale of its solution
/// and the stretch its linear data got.
QString openedText(const Session& session);
