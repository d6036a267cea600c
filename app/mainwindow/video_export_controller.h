#pragma once

#include <functional>
#include <optional>

#include <QSize>
#include <QString>
#include <QStringList>

#include "app/export/video_encoder.h"
#include "app/export/video_plan.h"
#include "app/session/motion.h"
#include "app/video/export_dialog.h"

class QWidget;
class ShellHost;

/// Writes the parallax motion or the flyby to a video.
class VideoExportController
{
public:
    struct Hooks
    {
        std::function<void()> syncParams; ///< the session's parameters from the controls
        std::function<void()> showPreferences;
        /// Asks what to make of a motion; empty for the dialog.
        std::function<ExportResults(bool flyby, const MotionFacts& facts)> ask = {};
    };

    /// Dialogs stand above `window`.
    VideoExportController(ShellHost& host, QWidget& window, Hooks hooks);

    /// Asks for all that is to be known, and writes the motion.
    void encodeVideo(bool flyby);

    /// A stream of full side-by-side pairs.
    struct PairStream
    {
        QString ffmpeg;
        QString path;
        bool flyby = false;
        QStringList extraArgs; ///< of the encoder, before the path
        QString failureTitle;
        int width = 0; ///< of the pair; 0 keeps its size
    };
    /// Writes the motion as such a stream. False, with the user told, when it was not written.
    bool encodeSbsMotionMp4(const PairStream& stream);
    /// Of the dialog that stands while a video is made.
    struct Words
    {
        QString title;
        QString text;
    };
    /// Runs `job`. False, with the user told, when the video was not written.
    bool encodeTo(const VideoJob& job, const Words& words, const QString& failureTitle);

    void syncParams() const { m_hooks.syncParams(); }
    /// What the session's motion, or its flyby, comes to.
    MotionFacts facts(bool flyby) const;
    /// The encoder; empty, with the user told by `text` and `help`, when there is none.
    QString requireFfmpeg(const QString& text, const QString& help);
    /// Whether the flyby is what the user means: a script with errors plays the built-in one.
    bool confirmFlyby(const MotionFacts& facts, const QString& title);
    /// Asks for a place for the file `name`, with the image's name before it. The file gets the
    /// suffix of `name` in any case, since that tells what it holds. Empty when the user cancels.
    QString askPath(const QString& title, const QString& name, const QString& filter);

private:
    /// What the user wants of a motion, and where; nothing when there is nothing to be written.
    struct Wanted
    {
        VideoPlan plan; ///< but for the frames, which are not known yet
        QString path;
    };
    std::optional<Wanted> askForVideo(bool flyby);
    bool prepare(bool flyby, MotionInputs& inputs, const QString& failureTitle);
    void tellEnd(bool flyby, const VideoJob& job, const VideoResult& result);
    bool run(const VideoJob& job, const Words& words, VideoResult& result);

    ShellHost& m_host;
    QWidget& m_window;
    Hooks m_hooks;
};
