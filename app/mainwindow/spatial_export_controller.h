#pragma once

#include <functional>
#include <optional>

#include "app/video/spatial_dialog.h"
#include "engine/image/image.h"

class QWidget;
class ShellHost;
class VideoExportController;

/// Writes stills and motions that headsets show in depth.
class SpatialExportController
{
public:
    /// Asks what a file of the kind is to hold; nothing when the user cancels.
    using Ask = std::function<std::optional<SpatialChoice>(const SpatialWords&,
                                                           const SpatialDialog::Eyes&)>;

    /// Videos go through `videos`. Dialogs stand above `window`; an empty `ask` asks by one.
    SpatialExportController(ShellHost& host, QWidget& window, VideoExportController& videos,
                            Ask ask = {});

    void exportVR180() { exportAs(kVr180Words); }
    void exportAppleSpatial() { exportAs(kAppleSpatialWords); }

private:
    void exportAs(const SpatialWords& words);
    QString askPath(const SpatialWords& words, const SpatialChoice& choice);
    void exportMotion(const SpatialWords& words, const SpatialChoice& choice, const QString& ffmpeg,
                      const QString& path);
    void exportStill(const SpatialWords& words, const SpatialChoice& choice, const QString& ffmpeg,
                     const QString& path);
    bool renderPair(const SpatialWords& words, zre::Image& pair);
    void savePicture(const SpatialWords& words, SpatialStill form, const zre::Image& pair,
                     const QString& path);
    bool saveLoop(const SpatialWords& words, int width, const zre::Image& pair,
                  const QString& ffmpeg, const QString& path);
    void finishVideo(const SpatialWords& words, const QString& path);

    ShellHost& m_host;
    VideoExportController& m_videos;
    Ask m_ask;
};
