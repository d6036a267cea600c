// How fast a parallax motion of 1080p becomes a video, beside the two things an export is made of:
// the frames drawn without an encoder, and the encoder fed with ready frames from a file. A program
// of its own, because it waits for another one.
//
// usage: export_road [ROUNDS]

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "app/export/frame_farm.h"
#include "app/export/motion_pictures.h"
#include "app/export/video_encoder.h"
#include "app/export/video_plan.h"
#include "engine/demo/demo_scene.h"
#include "engine/image/raster.h"

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr int kFrames = 96;
constexpr double kLeastShare = 0.85;

struct Motion
{
    zre::DemoScene scene;
    zre::Image depth;
    MotionInputs inputs;
    VideoPlan plan;

    Motion()
    {
        zre::DemoSceneOptions options;
        options.width = kWidth;
        options.height = kHeight;
        scene = zre::makeDemoScene(options);
        zre::getLightness(scene.picture, depth);
        inputs.working = &scene.picture;
        inputs.depth = &depth;
        inputs.params.wiggleFrames = kFrames;
        plan.frame = {kWidth, kHeight};
        plan.fps = 24;
    }

    std::function<QImage(int)> pictures() const
    {
        return motionPictures(inputs, 0, kFlat, QImage::Format_RGB888);
    }
};

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

/// Of this process and of the encoders that have ended.
double processorSeconds()
{
    double sum = 0.0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage used{};
        getrusage(who, &used);
        sum += seconds(used.ru_utime) + seconds(used.ru_stime);
    }
    return sum;
}

/// What one way to make the frames takes. The processor time is the same on a busy machine.
struct Way
{
    const char* name;
    std::vector<double> rates;           ///< frames a second
    std::vector<double> processorMillis; ///< a frame, of all cores together

    template <class Work>
    void run(const Work& work)
    {
        const double processor = processorSeconds();
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        rates.push_back(kFrames / taken.count());
        processorMillis.push_back((processorSeconds() - processor) * 1e3 / kFrames);
    }
};

void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "export_road: %s\n", what);
    std::exit(1);
}

void drawOnly(const Motion& motion)
{
    const int window = frameBatch(motion.plan.frame, kFrames);
    FrameFarm farm({kFrames, FrameFarm::threadsFor(window), window}, motion.pictures());
    for (int taken = 0; taken < kFrames; ++taken) {
        while (!farm.waitForNext(1000))
            require(!farm.failed(), "a frame could not be drawn");
        farm.takeNext();
    }
}

void writeRaw(const Motion& motion, const QString& path)
{
    QFile raw(path);
    require(raw.open(QIODevice::WriteOnly), "no room for the frames");
    const auto picture = motion.pictures();
    for (int i = 0; i < kFrames; ++i) {
        const QImage frame = picture(i);
        const qint64 size = frame.sizeInBytes();
        require(raw.write(reinterpret_cast<const char*>(frame.constBits()), size) == size,
                "no room for the frames");
    }
}

void encodeOnly(const Motion& motion, const QString& ffmpeg, const QString& raw, const QString& to)
{
    QProcess encoder;
    encoder.setStandardInputFile(raw);
    encoder.setStandardErrorFile(QProcess::nullDevice());
    encoder.start(ffmpeg, encoderArguments(motion.plan, to));
    require(encoder.waitForFinished(-1) && encoder.exitCode() == 0, "the encoder failed");
}

void exportVideo(const Motion& motion, const QString& ffmpeg, const QString& to)
{
    VideoJob job;
    job.encoder = ffmpeg;
    job.arguments = [&](const QString& path) { return encoderArguments(motion.plan, path); };
    job.path = to;
    job.packed = motion.plan.frame;
    job.frames = kFrames;
    job.render = motion.pictures();
    const VideoResult result = encodeVideo(job, [](const VideoProgress&) { return true; });
    require(result.end == VideoEnd::Done, qPrintable(result.error));
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication::setDesktopSettingsAware(false);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const int rounds = argc > 1 ? std::max(std::atoi(argv[1]), 1) : 3;
    const QString ffmpeg = QStandardPaths::findExecutable("ffmpeg");
    require(!ffmpeg.isEmpty(), "ffmpeg is not installed");
    const QTemporaryDir folder;
    const QString raw = folder.filePath("frames.rgb");
    const QString video = folder.filePath("video.mp4");
    const Motion motion;
    writeRaw(motion, raw);
    Way drawn{"drawn without an encoder", {}, {}};
    Way encoded{"encoded from a file", {}, {}};
    Way exported{"export of 1080p wiggle", {}, {}};
    std::vector<double> shares;
    for (int i = 0; i < rounds; ++i) {
        drawn.run([&] { drawOnly(motion); });
        encoded.run([&] { encodeOnly(motion, ffmpeg, raw, video); });
        exported.run([&] { exportVideo(motion, ffmpeg, video); });
        shares.push_back(exported.rates.back() /
                         std::min(drawn.rates.back(), encoded.rates.back()));
    }
    std::printf("medians of %d rounds      frames a second  processor ms a frame\n", rounds);
    for (const Way* way : {&drawn, &encoded, &exported})
        std::printf("  %-24s %12.1f %18.1f\n", way->name, median(way->rates),
                    median(way->processorMillis));
    const double share = median(shares);
    std::printf("  share of the slower rate %12.2f  (at least %.2f)  %s\n", share, kLeastShare,
                share >= kLeastShare ? "met" : "MISSED");
    return share >= kLeastShare ? 0 : 1;
}
