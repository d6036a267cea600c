#pragma once

#include <functional>

#include <QSize>
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
    /// Asks for a starless image, then for its stars, and opens both.
    void openPair();
    /// Opens a pair of images of one size as the document, whose source is their sum. False when
    /// the user cancels, or, with a message, when a file cannot be read; the session stays then.
    bool loadStarlessStarsPair(const QString& stars, const QString& starless);
    /// Opens `path`; when its name makes it one layer of a pair and the other lies beside it, the
    /// user is asked whether to open both.
    void openWithPartner(const QString& path);
    void openBuiltInScene();
    /// Opens `path` when it is an existing image file; any other path is ignored in silence.
    void openProjectFromCommandLine(const QString& path);
    /// A `Carry`: asks whether what the session holds goes on with an image of the size given. Not
    /// asked when nothing is worth it or the proportions differ: then it starts fresh.
    int askCarrySession(int newWidth, int newHeight);
    /// Whether a pair may take the place of the open document. Not asked when nothing is open or
    /// the user wants to hear of it no more.
    bool confirmPairReplace();
    /// Whether a pair of the size given may be opened although what the session holds cannot go on
    /// with it, its proportions being others. Not asked when nothing is lost.
    bool confirmPairResize(int newWidth, int newHeight);
    /// Asks whether a flyby path made for another size follows to an image of this one. False when
    /// the user cancels; not asked when there is nothing to follow.
    bool maybeRescaleFlybyForSize(QSize image, bool& rescale);
    /// The session's image was read from `path`.
    void addRecentFile(const QString& path);
    /// The session's layers were read from these files.
    void addRecentPair(const QString& stars, const QString& starless);

private:
    /// A step of the work, on the screen: the fraction of it that is done and its text.
    using Stage = std::function<void(double fraction, const QString& text)>;
    /// How one kind of document is opened.
    struct Opening
    {
        const char* progressTitle;
        const char* firstStage;
        const char* errorTitle;
        bool isPair;
        /// Fills a record of its own, on a thread of its own; false with a message.
        std::function<bool(Session&, const Stage&, QString* error)> load;
    };

    bool openWith(const Opening& opening);
    bool decode(const Opening& opening, Session& loaded);
    int askAbout(const Opening& opening, const Session& loaded);
    void install(const Opening& opening, Session loaded, bool carryOver);

    ShellHost& m_host;
    bool m_asking = false; ///< a decoded image waits for an answer
};

/// The document's name for titles; empty without a document.
QString documentName(const Session& session);

/// The document's name before the program's.
QString windowTitleFor(const Session& session);

/// What the status bar says of a document just opened: its name and size, or the names of a pair,
/// the scale of its solution and the stretch its linear data got.
QString openedText(const Session& session);
