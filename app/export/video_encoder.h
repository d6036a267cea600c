#pragma once

#include <functional>

#include <QImage>
#include <QSize>
#include <QString>
#include <QStringList>

/// Feeds frames, rendered on several threads, to an encoder process.
struct VideoJob
{
    QString encoder; ///< the executable
    /// The encoder's arguments for a file to write.
    std::function<QStringList(const QString& path)> arguments;
    QString path;
    QSize packed;                            ///< of each frame
    int frames = 0;                          ///< 0 where the arguments name all that is read
    std::function<QImage(int frame)> render; ///< called on several threads at once
};

/// What becomes of the frames while they go out: called after each, and while something is awaited.
struct VideoProgress
{
    int done = 0; ///< frames written
    int frames = 0;
    const QImage* shown = nullptr; ///< the frame just written; null while waiting
};

enum class VideoEnd
{
    Done,
    Canceled,
    Failed
};

struct VideoResult
{
    VideoEnd end = VideoEnd::Failed;
    QString error; ///< for the user, where it failed
    QString said;  ///< the encoder's last words, where it was the one that failed
};

/// Runs `job` on the caller's thread. `goesOn` keeps the user informed and says whether to go on.
///
/// The file is made beside its place under another name and moved there when complete: what stood
/// there before stays until then, and after a failure or a cancel nothing of the new file is left. A
/// link is followed.
VideoResult encodeVideo(const VideoJob& job,
                        const std::function<bool(const VideoProgress&)>& goesOn);
