#pragma once

#include <functional>
#include <optional>

#include <QSize>
#include <QString>

class QMenu;
class ShellHost;

/// The flyby script of the session: files, examples, its coordinates, and how every flyby is
/// played.
class FlybyController
{
public:
    /// Sizes between which a script is rescaled.
    struct Rescale
    {
        QSize from;
        QSize to;
    };

    struct Hooks
    {
        /// Asks the user, with what is known as the suggestion; nothing when they cancel.
        std::function<std::optional<Rescale>(const Rescale& suggested)> askRescale;
        /// The path of the flyby is another one now.
        std::function<void()> pathChanged;
        /// The user has put another script into the session.
        std::function<void()> scriptReplaced;
        /// A file holds this script, or it can be had again as it is.
        std::function<void(const QString& script)> scriptStored;
    };

    FlybyController(ShellHost& host, Hooks hooks);

    /// Asks for a script file and loads it.
    void loadScript();
    /// False without an image, or, with a word to the user, when the file cannot be read.
    bool loadScriptFile(const QString& path);
    /// Asks for a file and writes the script to it.
    void saveScript();
    /// Brings the script's coordinates from one image size to another, as the user says.
    void rescaleFlybyScript();
    /// Fills `menu` with the scripts that come with the program.
    void buildExamplesMenu(QMenu& menu);

    /// The settings of every flyby.
    void setOngoingWiggle(bool on);
    void setContinuousLoop(bool on);

    /// Takes over a script written for the open image and tells how it compiled.
    void applyScript(const QString& script);

private:
    QString compileText() const;
    void remember(const QString& path);

    ShellHost& m_host;
    Hooks m_hooks;
};
