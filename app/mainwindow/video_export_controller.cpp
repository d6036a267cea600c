#include "app/mainwindow/video_export_controller.h"

#include <utility>

#include <QFileInfo>

#include "app/export/frame_farm.h"
#include "app/export/motion_pictures.h"
#include "app/export/spatial_video.h"
#include "app/mainwindow/export_place.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/shell_host.h"
#include "app/persist/appcfg.h"
#include "app/session/render_pipeline.h"
#include "app/session/session.h"
#include "app/video/encode_dialog.h"

namespace {

constexpr const char* kExportFailed = "Export failed";
constexpr const char* kCanceled = "Export canceled.";

struct MotionWords
{
    const char* title;
    const char* name; ///< in statuses, and of the file
    const char* fileName;
};

constexpr MotionWords kWiggleWords{"Export Parallax Motion", "parallax motion", "parallax"};
constexpr MotionWords kFlybyWords{"Export Flyby", "flyby", "flyby"};

const MotionWords& wordsOf(bool flyby)
{
    return flyby ? kFlybyWords : kWiggleWords;
}

FlybyOptions flybyOptions()
{
    return {appcfg::ongoingFlybyWiggle(), appcfg::flybyContinuousLoop()};
}

} // namespace

VideoExportController::VideoExportController(ShellHost& host, QWidget& window, Hooks hooks)
    : m_host(host)
    , m_window(window)
    , m_hooks(std::move(hooks))
{
    if (m_hooks.ask)
        return;
    m_hooks.ask = [this](bool flyby, const MotionFacts& facts) {
        const zre::Image& source = m_host.session().source;
        ExportDialog dialog(flyby, facts.fps, static_cast<double>(source.width) / source.height,
                            &m_window);
        dialog.setMotion(facts.frame, facts.frames);
        dialog.exec();
        return dialog.results();
    };
}

MotionFacts VideoExportController::facts(bool flyby) const
{
    return motionFacts(m_host.session(), flyby, flybyOptions());
}

QString VideoExportController::requireFfmpeg(const QString& text, const QString& help)
{
    QString ffmpeg = appcfg::ffmpegResolved();
    if (!ffmpeg.isEmpty())
        return ffmpeg;
    if (m_host.prompter().choose("ffmpeg required", text + "\n" + help, {"Open Preferences..."}))
        m_hooks.showPreferences();
    return appcfg::ffmpegResolved();
}

bool VideoExportController::confirmFlyby(const MotionFacts& facts, const QString& title)
{
    if (facts.path.errors.empty())
        return true;
    const zre::ZRFlybyError& first = facts.path.errors.front();
    return m_host.prompter()
        .choose(title,
                QString("The flyby script has an error in line %1: %2\n\nThe built-in flyby would "
                        "be exported in its place.")
                    .arg(first.line)
                    .arg(QString::fromStdString(first.message)),
                {"Export Built-in Flyby"})
        .has_value();
}

static bool hasSuffix(const QString& path, const QString& suffix)
{
    const QString has = QFileInfo(path).suffix().toLower();
    return has == suffix || (has == "jpeg" && suffix == "jpg");
}

QString VideoExportController::askPath(const QString& title, const QString& name,
                                       const QString& filter)
{
    const QString suffix = QFileInfo(name).suffix();
    Prompter& prompter = m_host.prompter();
    QString path = prompter.saveFile(
        title, exportStartPath(m_host.session(), exportName(m_host.session(), name)), filter);
    if (path.isEmpty())
        return path;
    if (!hasSuffix(path, suffix)) {
        path += "." + suffix;
        // The file dialog has asked about another name.
        if (QFileInfo::exists(path) &&
            !prompter.choose(title, QFileInfo(path).fileName() + " exists already.", {"Replace"}))
            return {};
    }
    rememberExportPath(path);
    return path;
}

/// What the frames are made of. False, with the user told, where there is nothing to draw.
bool VideoExportController::prepare(bool flyby, MotionInputs& inputs, const QString& failureTitle)
{
    const char* title = wordsOf(flyby).title;
    RenderPipeline& pipeline = m_host.pipeline();
    pipeline.setTrueColor(appcfg::starTrueColor());
    if (!m_host.busyRun([&] {
            const ProgressScope progress(m_host, title, "Preparing the frames...");
            inputs = motionInputs(m_host.session(), pipeline, flyby, flybyOptions());
        }))
        return false;
    if (inputs.depth && inputs.frames() > 0)
        return true;
    m_host.prompter().warn(failureTitle, "No flyby frames to export.");
    return false;
}

bool VideoExportController::run(const VideoJob& job, const Words& words, VideoResult& result)
{
    return m_host.busyRun([&] {
        EncodeDialog dialog(words.title, words.text, job.frames, &m_window);
        result = ::encodeVideo(
            job, [&](const VideoProgress& progress) { return dialog.advance(progress); });
    });
}

std::optional<VideoExportController::Wanted> VideoExportController::askForVideo(bool flyby)
{
    const MotionWords& words = wordsOf(flyby);
    const MotionFacts facts = this->facts(flyby);
    if (!confirmFlyby(facts, words.title))
        return std::nullopt;
    const ExportResults chosen = m_hooks.ask(flyby, facts);
    if (!chosen.accepted)
        return std::nullopt;
    Wanted wanted;
    wanted.plan.format = chosen.format;
    wanted.plan.stereo3d = stereoFormatFor(chosen.format, chosen.stereo3d);
    wanted.plan.box = QSize(chosen.width, chosen.height);
    wanted.plan.fps = chosen.fps;
    const VideoFormat& format = kVideoFormats[static_cast<std::size_t>(wanted.plan.format)];
    const StereoFormat& stereo = kStereoFormats[static_cast<std::size_t>(wanted.plan.stereo3d)];
    wanted.path =
        askPath(words.title, QString("%1%2.%3").arg(words.fileName, stereo.suffix, format.suffix),
                format.filter);
    return wanted.path.isEmpty() ? std::nullopt : std::optional(wanted);
}

void VideoExportController::encodeVideo(bool flyby)
{
    if (m_host.isBusy()) // a menu of the desktop, or a screen reader, reaches past dialogs
        return;
    const QString ffmpeg = requireFfmpeg("Video export needs ffmpeg, which is not configured.",
                                         "Set its location in Edit > Preferences.");
    if (ffmpeg.isEmpty())
        return;
    if (!m_host.session().hasSource()) {
        m_host.showStatus("Open an image first.");
        return;
    }
    m_host.stopPlayback("video export");
    m_hooks.syncParams();
    std::optional<Wanted> wanted = askForVideo(flyby);
    MotionInputs inputs;
    if (!wanted || !prepare(flyby, inputs, kExportFailed))
        return;
    VideoPlan& plan = wanted->plan;
    plan.frame = inputs.frameSize();
    plan.hasStars = inputs.stars && !inputs.stars->empty();
    VideoJob job;
    job.encoder = ffmpeg;
    job.arguments = [&plan](const QString& to) { return encoderArguments(plan, to); };
    job.path = wanted->path;
    job.packed = packedSize(plan.stereo3d, plan.frame);
    job.frames = inputs.frames();
    job.render = motionPictures(inputs, 0, plan.stereo3d, QImage::Format_RGB888);
    const QString name = wordsOf(flyby).name;
    const int threads = FrameFarm::threadsFor(frameBatch(job.packed, job.frames));
    m_host.showStatus(QString("Saving %1 using %2 thread%3...")
                          .arg(name)
                          .arg(threads)
                          .arg(threads == 1 ? "" : "s"));
    VideoResult result;
    if (run(job, {"Exporting video", QString("Encoding %1...").arg(name)}, result))
        tellEnd(flyby, job, result);
}

void VideoExportController::tellEnd(bool flyby, const VideoJob& job, const VideoResult& result)
{
    if (result.end == VideoEnd::Canceled) {
        m_host.showStatus(kCanceled);
    } else if (result.end == VideoEnd::Failed) {
        m_host.showStatus({});
        m_host.prompter().warn(kExportFailed, result.error);
    } else {
        const QString done = QString("Exported %1 frames -> %2").arg(job.frames).arg(job.path);
        m_host.showStatus(done);
        m_host.prompter().showMade(wordsOf(flyby).title, done, job.path);
    }
}

bool VideoExportController::encodeSbsMotionMp4(const PairStream& stream)
{
    MotionInputs inputs;
    if (!prepare(stream.flyby, inputs, stream.failureTitle))
        return false;
    const int fps = facts(stream.flyby).fps;
    VideoJob job;
    job.encoder = stream.ffmpeg;
    job.path = stream.path;
    job.packed = packedSize(kSideBySide, inputs.frameSize());
    job.frames = inputs.frames();
    job.render = motionPictures(inputs, 0, kSideBySide, QImage::Format_RGB888);
    job.arguments = [&](const QString& to) {
        return sideBySideArguments(job.packed, spatialTarget(job.packed, stream.width), fps,
                                   stream.extraArgs, to);
    };
    return encodeTo(job,
                    {"Exporting stereo video",
                     QString("Encoding stereo %1...").arg(wordsOf(stream.flyby).name)},
                    stream.failureTitle);
}

bool VideoExportController::encodeTo(const VideoJob& job, const Words& words,
                                     const QString& failureTitle)
{
    VideoResult result;
    if (!run(job, words, result))
        return false;
    m_host.showStatus(result.end == VideoEnd::Canceled ? kCanceled : "");
    if (result.end == VideoEnd::Failed)
        m_host.prompter().warn(
            failureTitle, result.said.isEmpty() ? result.error : "ffmpeg failed:\n" + result.said);
    return result.end == VideoEnd::Done;
}
