#include "app/mainwindow/spatial_export_controller.h"

#include <utility>

#include <QDir>
#include <QTemporaryFile>

#include "app/export/still_file.h"
#include "app/export/vr180.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/shell_host.h"
#include "app/mainwindow/video_export_controller.h"
#include "app/persist/appcfg.h"
#include "app/session/motion.h"
#include "app/session/output_view.h"
#include "app/session/render_pipeline.h"
#include "app/session/session.h"
#include "engine/qt/zre_qt.h"

static constexpr int kLoopSeconds = 3;

SpatialExportController::SpatialExportController(ShellHost& host, QWidget& window,
                                                 VideoExportController& videos, Ask ask)
    : m_host(host)
    , m_videos(videos)
    , m_ask(std::move(ask))
{
    if (m_ask)
        return;
    m_ask = [&window](const SpatialWords& words,
                      const SpatialDialog::Eyes& eyes) -> std::optional<SpatialChoice> {
        SpatialDialog dialog(words, eyes, &window);
        if (dialog.exec() != QDialog::Accepted)
            return std::nullopt;
        return dialog.choice();
    };
}

void SpatialExportController::exportAs(const SpatialWords& words)
{
    if (m_host.isBusy())
        return;
    if (!m_host.session().hasSource()) {
        m_host.showStatus("Open an image first.");
        return;
    }
    m_host.stopPlayback(words.reason);
    m_videos.syncParams();
    const MotionFacts flyby = m_videos.facts(true);
    const zre::Image& source = m_host.session().source;
    const QSize flybyFrame = flyby.frames > 0 ? flyby.frame : QSize();
    const std::optional<SpatialChoice> choice =
        m_ask(words, {QSize(source.width, source.height), flybyFrame});
    if (!choice)
        return;
    if (choice->content == SpatialContent::Flyby && !m_videos.confirmFlyby(flyby, words.title))
        return;
    QString ffmpeg;
    if (choice->isVideo()) {
        ffmpeg = m_videos.requireFfmpeg(words.noFfmpeg, words.noFfmpegHelp);
        if (ffmpeg.isEmpty())
            return;
    }
    const QString path = askPath(words, *choice);
    if (path.isEmpty())
        return;
    if (choice->content == SpatialContent::Still)
        exportStill(words, *choice, ffmpeg, path);
    else
        exportMotion(words, *choice, ffmpeg, path);
}

QString SpatialExportController::askPath(const SpatialWords& words, const SpatialChoice& choice)
{
    const SpatialContentRow& content = words.contents[static_cast<std::size_t>(choice.content)];
    const bool isPicture = !choice.isVideo();
    const SpatialStillRow& still = kSpatialStills[static_cast<std::size_t>(choice.still)];
    const QString suffix = isPicture ? still.suffix : "mp4";
    return m_videos.askPath(words.title, QString("%1.%2").arg(content.name, suffix),
                            isPicture ? still.filter : words.mp4Filter);
}

void SpatialExportController::exportMotion(const SpatialWords& words, const SpatialChoice& choice,
                                           const QString& ffmpeg, const QString& path)
{
    VideoExportController::PairStream stream;
    stream.ffmpeg = ffmpeg;
    stream.path = path;
    stream.flyby = choice.content == SpatialContent::Flyby;
    stream.extraArgs = spatialArguments(words.kind);
    stream.failureTitle = words.failed;
    stream.width = choice.width;
    if (m_videos.encodeSbsMotionMp4(stream))
        finishVideo(words, path);
}

bool SpatialExportController::renderPair(const SpatialWords& words, zre::Image& pair)
{
    m_host.showStatus(words.rendering);
    bool rendered = false;
    const bool ended = m_host.busyRun([&] {
        const ProgressScope progress(m_host, words.title, words.rendering);
        m_host.pipeline().setTrueColor(appcfg::starTrueColor());
        rendered = m_host.pipeline().renderView(kPairView, {}, pair, nullptr);
    });
    if (rendered)
        return true;
    m_host.showStatus({});
    if (ended) // else the user was told why not
        m_host.prompter().warn(words.failed, "Could not render the stereo pair");
    return false;
}

void SpatialExportController::exportStill(const SpatialWords& words, const SpatialChoice& choice,
                                          const QString& ffmpeg, const QString& path)
{
    zre::Image pair;
    if (!renderPair(words, pair))
        return;
    if (!choice.isVideo())
        savePicture(words, choice.still, pair, path);
    else if (saveLoop(words, choice.width, pair, ffmpeg, path))
        finishVideo(words, path);
}

void SpatialExportController::savePicture(const SpatialWords& words, SpatialStill form,
                                          const zre::Image& pair, const QString& path)
{
    StillOptions options;
    options.bits = 8;
    QString error;
    bool written = false;
    bool injected = false;
    m_host.busyRun([&] {
        written = writeStill(path, pair, options, &error);
        const std::string name = path.toStdString();
        if (written)
            injected = form == SpatialStill::Png
                           ? vr180::injectXmpPng(name, pair.width, pair.height)
                           : vr180::injectXmpJpeg(name, pair.width, pair.height);
    });
    if (!written) {
        m_host.showStatus({});
        m_host.prompter().warn(words.failed, error);
        return;
    }
    const QString text =
        (injected ? "VR180 image saved: " : "VR180 image saved (metadata not injected): ") + path;
    m_host.showStatus(text);
    m_host.prompter().showMade(words.title, text, path);
}

bool SpatialExportController::saveLoop(const SpatialWords& words, int width, const zre::Image& pair,
                                       const QString& ffmpeg, const QString& path)
{
    constexpr int kQuality = 98; // it is compressed a second time
    QTemporaryFile frame(QDir::tempPath() + words.frameTemplate);
    bool saved = false;
    m_host.busyRun([&] {
        saved =
            frame.open() && zre_qt::toQImage(pair).save(&frame, "JPG", kQuality) && frame.flush();
    });
    if (!saved) {
        m_host.showStatus({});
        m_host.prompter().warn(words.failed, words.noTempFrame);
        return false;
    }
    VideoJob job;
    job.encoder = ffmpeg;
    job.path = path;
    job.arguments = [&](const QString& to) {
        return loopedStillArguments(frame.fileName(), kLoopSeconds,
                                    spatialTarget({pair.width, pair.height}, width),
                                    spatialArguments(words.kind), to);
    };
    return m_videos.encodeTo(job, {words.title, "Encoding the stereo pair..."}, words.failed);
}

void SpatialExportController::finishVideo(const SpatialWords& words, const QString& path)
{
    bool injected = false;
    m_host.busyRun([&] { injected = injectSpatial(words.kind, path); });
    const QString text = (injected ? words.saved : words.savedPlain) + path;
    m_host.showStatus(text);
    m_host.prompter().showMade(words.title, text, path);
}
