#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <stdexcept>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include "app/export/frame_farm.h"
#include "app/export/image_pool.h"
#include "app/export/motion_frame.h"
#include "app/export/motion_pictures.h"
#include "app/export/spatial_video.h"
#include "app/export/video_encoder.h"
#include "app/export/video_plan.h"
#include "app/persist/appcfg.h"
#include "app/session/carry_over.h"
#include "app/session/motion.h"
#include "app/session/render_pipeline.h"
#include "tools/render/command_line.h"
#include "tools/render/render_request.h"
#include "tools/render/still_output.h"

namespace zrrender {

namespace {

constexpr int kDepthPercent = 30; // the depth map is there, and the frames begin
constexpr int kMostFps = 240;
constexpr int kFolder = -1;

/// What the command line asks for.
struct Request
{
    QString output;
    int format = kFolder; ///< a row of `kVideoFormats`, or `kFolder`
    int stereo3d = kFlat;
    QSize box;
    int fps = 0; ///< 0 for the motion's own
    int first = 0;
    int end = -1; ///< -1 for the last
    int bits = 8;
    bool flyby = false;
    bool vr180 = false;
    bool appleSpatial = false;
    bool resume = false;
    QSize scriptSize; ///< that the script was written for; empty for that of the image

    bool isSpatial() const { return vr180 || appleSpatial; }
};

int formatOf(const QString& output)
{
    const QString suffix = QFileInfo(output).suffix().toLower();
    for (std::size_t row = 0; row < kVideoFormats.size(); ++row)
        if (suffix == QLatin1String(kVideoFormats[row].suffix))
            return static_cast<int>(row);
    return kFolder;
}

int stereoOf(const QString& key)
{
    for (std::size_t row = 0; row < kStereoFormats.size(); ++row)
        if (key == QLatin1String(kStereoFormats[row].key))
            return static_cast<int>(row);
    return kFlat;
}

Outcome readRange(const QString& text, Request& request)
{
    const QStringList ends = text.split(QLatin1Char(':'));
    bool fine = ends.size() == 2;
    if (fine && !ends[0].isEmpty())
        request.first = ends[0].toInt(&fine);
    if (fine && !ends[1].isEmpty())
        request.end = ends[1].toInt(&fine);
    if (fine && request.first >= 0 && (ends[1].isEmpty() || request.end > request.first))
        return Outcome::done();
    return Outcome::usage(
        QStringLiteral("--frames takes A:B, whole numbers with A before B, not %1").arg(text));
}

/// Options that exclude each other.
Outcome checkTogether(const Invocation& invocation, const Request& request)
{
    const bool isFolder = request.format == kFolder;
    if (invocation.has(Option::Wiggle) == request.flyby)
        return Outcome::usage(QStringLiteral("motion needs either --wiggle or --flyby SCRIPT"));
    if (request.vr180 && request.appleSpatial)
        return Outcome::usage(QStringLiteral("--vr180 and --apple-spatial exclude each other"));
    if (request.isSpatial() && request.format != kMp4)
        return Outcome::usage(QStringLiteral("--vr180 and --apple-spatial make .mp4 files only"));
    if (request.isSpatial() && request.stereo3d != kSideBySide)
        return Outcome::usage(QStringLiteral("--vr180 and --apple-spatial take --stereo sbs only"));
    if (request.format == kGif && request.stereo3d >= kSideBySide)
        return Outcome::usage(QStringLiteral("a GIF takes --stereo 2d or anaglyph only"));
    if (!request.flyby && invocation.has(Option::ScriptSize))
        return Outcome::usage(QStringLiteral("--script-size is for --flyby"));
    if (!isFolder && (request.resume || invocation.has(Option::Bits)))
        return Outcome::usage(QStringLiteral("--resume and --bits are for folders of frames"));
    return Outcome::done();
}

Outcome readRequest(const Invocation& invocation, Request& request)
{
    request.output = invocation.value(Option::Output);
    request.format = formatOf(request.output);
    request.flyby = invocation.has(Option::Flyby);
    request.vr180 = invocation.has(Option::Vr180);
    request.appleSpatial = invocation.has(Option::AppleSpatial);
    request.resume = invocation.has(Option::Resume);
    request.stereo3d = request.isSpatial() ? kSideBySide : kFlat;
    if (invocation.has(Option::Stereo))
        request.stereo3d = stereoOf(invocation.value(Option::Stereo));
    if (invocation.has(Option::Bits))
        request.bits = invocation.value(Option::Bits).toInt();
    if (invocation.has(Option::Fps)) {
        bool ok = false;
        request.fps = invocation.value(Option::Fps).toInt(&ok);
        if (!ok || request.fps < 1 || request.fps > kMostFps)
            return Outcome::usage(QStringLiteral("--fps takes 1 to %1, not %2")
                                      .arg(kMostFps)
                                      .arg(invocation.value(Option::Fps)));
    }
    Outcome outcome = checkTogether(invocation, request);
    if (outcome.isDone() && invocation.has(Option::Frames))
        outcome = readRange(invocation.value(Option::Frames), request);
    if (outcome.isDone() && invocation.has(Option::Size))
        outcome = readSize(invocation, request.box.rwidth(), request.box.rheight());
    if (outcome.isDone() && invocation.has(Option::ScriptSize)) {
        QSize& size = request.scriptSize;
        outcome = readSize(invocation, size.rwidth(), size.rheight(), Option::ScriptSize);
    }
    return outcome;
}

QString framePath(const QString& folder, int frame)
{
    return QDir(folder).filePath(
        QStringLiteral("frame_%1.png").arg(frame, 5, 10, QLatin1Char('0')));
}

/// Before anything is read: long work need not be done for nothing.
Outcome checkTarget(const Request& request)
{
    QString error;
    if (request.format != kFolder) {
        if (appcfg::ffmpegResolved().isEmpty())
            return Outcome::failed(QStringLiteral(
                "ffmpeg was not found: install it, or name a folder to get the frames"));
        return StagedOutputs::isWritable(request.output, &error) ? Outcome::done()
                                                                 : Outcome::failed(error);
    }
    const QFileInfo info(request.output);
    if (info.exists() && !info.isDir())
        return Outcome::failed(QStringLiteral("%1 is not a folder").arg(request.output));
    if (info.exists() && !request.resume &&
        !QDir(request.output)
             .isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot))
        return Outcome::failed(QStringLiteral("the folder %1 is not empty (--resume keeps its "
                                              "frames and renders the others)")
                                   .arg(request.output));
    return Outcome::done();
}

/// A file under its final name was complete when it got there; its head tells whether it belongs
/// to this flight, and its tail that no copy of it was cut short.
bool isCompleteFrame(const QString& path, QSize size, int bits)
{
    static const QByteArray kSignature("\x89PNG\r\n\x1a\n", 8);
    static const QByteArray kTrailer("\0\0\0\0IEND\xae\x42\x60\x82", 12);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() < 45)
        return false;
    const QByteArray head = file.read(25);
    const auto number = [&](int at) { return qFromBigEndian<quint32>(head.constData() + at); };
    return head.startsWith(kSignature) && number(16) == static_cast<quint32>(size.width()) &&
           number(20) == static_cast<quint32>(size.height()) && head[24] == bits &&
           file.seek(file.size() - kTrailer.size()) && file.readAll() == kTrailer;
}

/// Tells how far the frames are.
class FrameReport
{
public:
    FrameReport(Console& console, int frames)
        : m_console(console)
        , m_frames(frames)
    {
    }

    void tell(int done)
    {
        if (done == m_done)
            return;
        m_done = done;
        using Seconds = std::chrono::duration<double>;
        const double elapsed = Seconds(std::chrono::steady_clock::now() - m_start).count();
        QString text = QStringLiteral("Rendering frame %1 of %2").arg(done).arg(m_frames);
        if (done > 0 && elapsed > 0) {
            const double rate = done / elapsed;
            text += QStringLiteral(", %1 frames a second, %2 s left")
                        .arg(rate, 0, 'f', 1)
                        .arg((m_frames - done) / rate, 0, 'f', 0);
        }
        m_console.progress(kDepthPercent + (100 - kDepthPercent) * done / std::max(m_frames, 1),
                           text);
    }

private:
    Console& m_console;
    int m_frames;
    int m_done = -1;
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

/// What was made, for the last line.
struct Made
{
    int frames = 0; ///< of the range
    int kept = 0;
    int fps = 0;
    QSize size;    ///< of the frames as they are rendered
    QSize written; ///< as they stand in the output
};

Outcome renderFolder(const Request& request, const MotionInputs& inputs, RunContext& context,
                     Made& made)
{
    VideoPlan plan;
    plan.stereo3d = request.stereo3d;
    plan.box = request.box;
    plan.frame = inputs.frameSize();
    const VideoFit fit = videoFit(plan);
    if (!request.box.isEmpty())
        made.written = fit.video;
    std::vector<int> missing;
    for (int frame = request.first; frame < request.end; ++frame)
        if (!isCompleteFrame(framePath(request.output, frame), made.written, request.bits))
            missing.push_back(frame);
    made.kept = made.frames - static_cast<int>(missing.size());
    QString error;
    if (!context.outputs.makeFolder(request.output, &error))
        return Outcome::failed(error);
    const auto existing =
        request.resume ? StagedOutputs::Existing::Replaced : StagedOutputs::Existing::Kept;
    ImagePool pool;
    // The frame itself stays with the worker: what the farm hands on only says that it is written.
    const auto renderOne = [&](int index) {
        const int frame = missing[static_cast<std::size_t>(index)];
        const QString path = framePath(request.output, frame);
        ImagePool::Loan image(pool);
        renderMotionFrame(inputs, frame, request.stereo3d, *image, &image.scratch());
        if (!request.box.isEmpty())
            fitFrame(fit, *image);
        const Outcome written =
            writeStaged(path, *image, nullptr, QString::number(request.bits), context.outputs);
        QString why = written.message;
        if (!written.isDone() || !context.outputs.commitFile(path, &why, existing))
            throw std::runtime_error(why.toStdString());
        return QImage(1, 1, QImage::Format_Mono);
    };
    const int count = static_cast<int>(missing.size());
    const int threads = FrameFarm::threadsFor(count);
    FrameReport report(context.console, count);
    FrameFarm farm({count, threads, count + 1}, renderOne);
    for (int taken = 0; taken < count;) {
        if (farm.waitForNext(200)) {
            farm.takeNext();
            ++taken;
        } else if (farm.failed()) {
            farm.stop();
            return Outcome::failed(farm.error());
        }
        report.tell(farm.done());
    }
    farm.stop();
    return context.outputs.commit(&error) ? Outcome::done() : Outcome::failed(error);
}

std::optional<SpatialKind> spatialKind(const Request& request)
{
    if (request.vr180)
        return SpatialKind::Vr180;
    return request.appleSpatial ? std::optional(SpatialKind::Apple) : std::nullopt;
}

QStringList argumentsFor(const Request& request, const VideoPlan& plan, const QString& path)
{
    const std::optional<SpatialKind> kind = spatialKind(request);
    if (!kind)
        return encoderArguments(plan, path);
    return sideBySideArguments(packedSize(kSideBySide, plan.frame),
                               spatialTargetIn(plan.frame, plan.box), plan.fps,
                               spatialArguments(*kind), path);
}

Outcome renderVideo(const Request& request, const MotionInputs& inputs, RunContext& context,
                    Made& made)
{
    QString error;
    const std::optional<QString> staged = context.outputs.stage(request.output, &error);
    if (!staged)
        return Outcome::failed(error);
    VideoPlan plan{request.format, request.stereo3d,   request.box,
                   made.fps,       inputs.frameSize(), inputs.stars && !inputs.stars->empty()};
    made.written = videoFit(plan).video;
    if (request.isSpatial()) {
        const QSize target = spatialTargetIn(plan.frame, plan.box);
        made.written = target.isEmpty() ? made.size : target;
    }
    VideoJob job;
    job.encoder = appcfg::ffmpegResolved();
    job.arguments = [&](const QString& path) { return argumentsFor(request, plan, path); };
    job.path = *staged;
    job.packed = made.size;
    job.frames = made.frames;
    job.render = motionPictures(inputs, request.first, request.stereo3d, QImage::Format_RGB888);
    FrameReport report(context.console, made.frames);
    const VideoResult result = encodeVideo(job, [&](const VideoProgress& progress) {
        report.tell(progress.done);
        return true;
    });
    if (result.end != VideoEnd::Done)
        return Outcome::failed(QString(result.error).replace(*staged, request.output));
    // A video without what tells players of its kind still plays, side by side.
    const std::optional<SpatialKind> kind = spatialKind(request);
    if (kind && !injectSpatial(*kind, *staged))
        context.console.warn(QStringLiteral("spatial metadata not injected"));
    return context.outputs.commit(&error) ? Outcome::done() : Outcome::failed(error);
}

/// A script with errors is no flight: what stands in for it in the window nobody asked for here.
Outcome checkScript(const Invocation& invocation, const FlybyPath& path)
{
    if (path.errors.empty())
        return Outcome::done();
    return Outcome::failed(QStringLiteral("%1: line %2: %3")
                               .arg(invocation.value(Option::Flyby))
                               .arg(path.errors.front().line)
                               .arg(QString::fromStdString(path.errors.front().message)));
}

Outcome renderMotion(Request& request, const MotionFacts& facts, Session& session,
                     RunContext& context, Made& made)
{
    RenderPipeline pipeline(session);
    pipeline.setStageReporter(
        [&, first = pipeline.firstPercent()](int percent, const QString& text) {
            context.console.progress(percentWithin(percent, first, kDepthPercent), text);
        });
    const MotionInputs inputs = motionInputs(session, pipeline, request.flyby, {});
    warnOfFailures(pipeline, context.console);
    const int frames = inputs.frames();
    // Parts of equal length go over the end of a motion that they do not divide.
    request.end = request.end < 0 ? frames : std::min(request.end, frames);
    if (request.first >= request.end)
        return Outcome::usage(QStringLiteral("--frames: there are the frames 0:%1").arg(frames));
    made.frames = request.end - request.first;
    made.fps = request.fps > 0 ? request.fps : facts.fps;
    made.size = packedSize(request.stereo3d, inputs.frameSize());
    made.written = made.size;
    return request.format == kFolder ? renderFolder(request, inputs, context, made)
                                     : renderVideo(request, inputs, context, made);
}

} // namespace

Outcome runMotion(const Invocation& invocation, RunContext& context)
{
    Request request;
    Session session;
    MotionFacts facts;
    Made made;
    Outcome outcome = readRequest(invocation, request);
    if (outcome.isDone())
        outcome = checkTarget(request);
    if (outcome.isDone())
        outcome = readParameters(invocation, request.output, session, context.console);
    QString script;
    if (outcome.isDone() && request.flyby)
        outcome = readScript(invocation.value(Option::Flyby), script);
    if (outcome.isDone())
        outcome = openInputs(invocation, session, context.console);
    session.flybyScript = script;
    rescaleFlybyPath(session, request.scriptSize, {session.source.width, session.source.height});
    if (outcome.isDone()) {
        facts = motionFacts(session, request.flyby, {});
        outcome = checkScript(invocation, facts.path);
    }
    if (outcome.isDone())
        outcome = renderMotion(request, facts, session, context, made);
    if (!outcome.isDone())
        return outcome;
    QString line = QStringLiteral("%1: %2 frames  -  %3 x %4  -  %5 frames a second")
                       .arg(request.output)
                       .arg(made.frames)
                       .arg(made.written.width())
                       .arg(made.written.height())
                       .arg(made.fps);
    if (made.kept > 0)
        line += QStringLiteral("  -  %1 kept").arg(made.kept);
    context.console.made(line, {{"command", "motion"},
                                {"output", request.output},
                                {"first", request.first},
                                {"frames", made.frames},
                                {"kept", made.kept},
                                {"framesPerSecond", made.fps},
                                {"width", made.written.width()},
                                {"height", made.written.height()},
                                {"renderedWidth", made.size.width()},
                                {"renderedHeight", made.size.height()}});
    return Outcome::done();
}

} // namespace zrrender
