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

    /// Whether a session goes on with a new image.
    enum Carry
    {
        kCarryOver,
        kStartFresh,
        kCancel
    };

    /// An empty session with the parameters' defaults.
    void newDocument();
    /// Asks for an image file and opens it.
    void openImage();
    /// False, with a message to the user and the session as it was, when the file cannot be read.
    bool loadImageFromPath(const QString& path);
    void openBuiltInScene();
    /// Opens `path` when it is an existing image file; any other path is ignored in silence.
    void openProjectFromCommandLine(const QString& path);
    /// A `Carry`: asks whether what the session holds goes on with an image of the size given. Not
    /// asked when nothing is worth it or the proportions differ: then it starts fresh.
    int askCarrySession(int newWidth, int newHeight);

private:
    /// Fills a record of its own; false with a message.
    using Load = std::function<bool(Session&, QString* error)>;
    /// The session's image was read from `path`.
    void addRecentFile(const QString& path);
    bool openWith(const Load& load);
    bool decode(const Load& load, Session& loaded);
    void install(Session loaded, bool carryOver);

    ShellHost& m_host;
    bool m_asking = false; ///< a decoded image waits for an answer
};

/// The document's name for titles; empty without a document.
QString documentName(const Session& session);

/// The document's name before the program's.
QString windowTitleFor(const Session& session);

/// What the status bar says of a document just opened: its name and size, the scale of its solution
/// and the stretch its linear data got.
QString openedText(const Session& session);
