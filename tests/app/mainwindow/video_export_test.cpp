#include <QApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

#include "app/export/video_plan.h"
#include "app/mainwindow/spatial_export_controller.h"
#include "app/mainwindow/video_export_controller.h"
#include "app/persist/appcfg.h"
#include "app/session/motion.h"
#include "app/session/output_view.h"
#include "app/video/encode_dialog.h"
#include "engine/qt/zre_qt.h"
#include "tests/app/mainwindow/fake_host.h"
#include "tests/support/testkit.h"

namespace {

constexpr int kFrames = 6;
/// An encoder that writes down what it is fed.
constexpr const char* kRecorder = "for last; do :; done\ncat > \"$last\"";

struct Exporting : testing::Test
{
    FakeHost host;
    QWidget window;
    QTemporaryDir folder;
    ExportResults wanted;
    SpatialChoice spatial;
    SpatialDialog::Eyes eyes;
    int preferencesShown = 0;
    VideoExportController videos{host,
                                 window,
                                 {[] {}, [this] { ++preferencesShown; },
                                  [this](bool, const MotionFacts&) { return wanted; }}};
    SpatialExportController spatials{
        host, window, videos, [this](const SpatialWords&, const SpatialDialog::Eyes& offered) {
            eyes = offered;
            return std::optional(spatial);
        }};

    void SetUp() override
    {
        host.document.installSource(folder.filePath("m31.png"), zrtest::noise(61, 40, 1, 9), {},
                                    {});
        host.document.params.wiggleFrames = kFrames;
        host.document.params.wiggleFps = 12;
        appcfg::setDefaultWorkFolder(folder.path());
        wanted.accepted = true;
        wanted.fps = 12;
    }
    void TearDown() override
    {
        appcfg::setFfmpegConfigured({});
        appcfg::setDefaultWorkFolder({});
    }

    void useEncoder(const QString& body)
    {
        const QString path = folder.filePath("encoder.sh");
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + body.toUtf8() + '\n');
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        appcfg::setFfmpegConfigured(path);
    }
    bool useFfmpeg()
    {
        const QString real = QStandardPaths::findExecutable("ffmpeg");
        appcfg::setFfmpegConfigured(real);
        return !real.isEmpty() && !QStandardPaths::findExecutable("ffprobe").isEmpty();
    }
    QString answer(const char* name)
    {
        host.script.answers = {folder.filePath(name)};
        return folder.filePath(name);
    }
    /// The frames as they have to reach the encoder.
    QByteArray expected(bool flyby, int stereo3d)
    {
        const MotionInputs inputs =
            motionInputs(host.document, host.pipeline(), flyby,
                         {appcfg::ongoingFlybyWiggle(), appcfg::flybyContinuousLoop()});
        QByteArray bytes;
        for (int i = 0; i < inputs.frames(); ++i) {
            zre::Image image;
            renderMotionFrame(inputs, i, stereo3d, image);
            const QImage frame = zre_qt::toQImage(image).convertToFormat(QImage::Format_RGB888);
            for (int y = 0; y < frame.height(); ++y)
                bytes.append(reinterpret_cast<const char*>(frame.constScanLine(y)),
                             qsizetype{3} * frame.width());
        }
        return bytes;
    }
    static QByteArray contents(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static QString probe(const QString& path)
    {
        QProcess ffprobe;
        ffprobe.start("ffprobe", {"-v", "error", "-count_frames", "-show_streams", path});
        ffprobe.waitForFinished();
        return QString::fromUtf8(ffprobe.readAll());
    }
};

TEST_F(Exporting, EveryFrameOfEveryStereoFormatReachesTheEncoderInOrder)
{
    useEncoder(kRecorder);
    host.document.flybyScript = "moveto 30 20 3\nzoomto 2 2\n";
    for (const bool flyby : {false, true})
        for (std::size_t row = 0; row < kStereoFormats.size(); ++row) {
            wanted.stereo3d = static_cast<int>(row);
            const QString path = answer("out.mp4");
            videos.encodeVideo(flyby);
            EXPECT_TRUE(contents(path) == expected(flyby, wanted.stereo3d)) << row << flyby;
            EXPECT_TRUE(host.script.asked.back().startsWith(
                QString("Export %1|%2|MP4 video")
                    .arg(flyby ? "Flyby" : "Parallax Motion")
                    .arg(folder.filePath(QString("m31_%1%2.mp4")
                                             .arg(flyby ? "flyby" : "parallax")
                                             .arg(kStereoFormats[row].suffix)))))
                << qPrintable(host.script.asked.back());
        }
    EXPECT_EQ(host.stops.back(), "video export");
    EXPECT_EQ(host.statuses.back(), QString("Exported %1 frames -> %2")
                                        .arg(videos.facts(true).frames)
                                        .arg(folder.filePath("out.mp4")));
    EXPECT_EQ(host.script.made.size(), 10);
    EXPECT_TRUE(host.script.warned.isEmpty());
}

TEST_F(Exporting, WithoutAnEncoderTheUserIsLedToIt)
{
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", folder.path().toUtf8());
    host.script.choices = {0};
    videos.encodeVideo(false);
    EXPECT_EQ(host.script.questions.back(),
              "ffmpeg required|Video export needs ffmpeg, which is not configured.\n"
              "Set its location in Edit > Preferences.|Open Preferences...");
    EXPECT_EQ(preferencesShown, 1);
    spatial.content = SpatialContent::Wiggle;
    spatials.exportVR180();
    EXPECT_TRUE(host.script.questions.back().contains("or export a PNG/JPEG still instead."));
    EXPECT_EQ(preferencesShown, 1) << "cancelled";
    EXPECT_TRUE(host.script.asked.isEmpty());
    qputenv("PATH", path);
}

TEST_F(Exporting, AFailureShowsTheEncodersWordsAndKeepsTheOldFile)
{
    useEncoder("echo no such codec >&2; exit 7");
    for (int i = 0; i < 2; ++i) {
        const QString path = answer("out.mp4");
        QFile old(path);
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write("old");
        old.close();
        spatial.content = SpatialContent::Flyby;
        if (i == 0)
            videos.encodeVideo(false);
        else
            spatials.exportAppleSpatial();
        EXPECT_EQ(contents(path), "old");
    }
    EXPECT_EQ(host.script.warned,
              (QStringList{"Export failed|ffmpeg exited with code 7.\n\nno such codec",
                           "Apple Spatial export failed|ffmpeg failed:\nno such codec"}));
    EXPECT_TRUE(host.script.made.isEmpty());
    EXPECT_FALSE(host.isBusy());
}

TEST_F(Exporting, TheNameTellsWhatTheFileHolds)
{
    useEncoder(kRecorder);
    const auto made = [&](const char* name) {
        answer(name);
        host.script.made.clear();
        videos.encodeVideo(false);
        return host.script.made.value(0).section('|', 2);
    };
    EXPECT_EQ(made("film"), folder.filePath("film.mp4"));
    EXPECT_EQ(made("m31 v1.2"), folder.filePath("m31 v1.2.mp4"));
    EXPECT_EQ(made("%03d-film:\xc3\xa9.MP4"), folder.filePath("%03d-film:\xc3\xa9.MP4"));
    const QByteArray old = contents(folder.filePath("film.mp4"));
    host.document.params.wiggleFrames = 1;
    EXPECT_EQ(made("film"), "") << "the user thought better of it";
    EXPECT_TRUE(host.script.questions.back().endsWith("|film.mp4 exists already.|Replace"));
    EXPECT_TRUE(contents(folder.filePath("film.mp4")) == old);
    host.script.choices = {0};
    EXPECT_EQ(made("film"), folder.filePath("film.mp4"));
    EXPECT_FALSE(contents(folder.filePath("film.mp4")) == old);
    spatial.still = SpatialStill::Png;
    answer("pair.jpg");
    spatials.exportVR180();
    EXPECT_TRUE(contents(folder.filePath("pair.jpg.png")).startsWith("\x89PNG"));
    spatial.still = SpatialStill::Jpeg;
    answer("pair.jpeg");
    spatials.exportVR180();
    EXPECT_TRUE(
        host.script.made.back().contains("VR180 image saved: " + folder.filePath("pair.jpeg|")));
}

TEST_F(Exporting, APlaceThatCannotBeIsToldOfBeforeAnythingIsMade)
{
    const QString mark = folder.filePath("encoder-ran");
    useEncoder("touch '" + mark + "'");
    ASSERT_TRUE(QDir(folder.path()).mkdir("folder.mp4"));
    for (const QString& name :
         {QString("folder.mp4"), QString("absent/out.mp4"), QString(300, 'x') + ".mp4"}) {
        host.script.answers = {folder.filePath(name)};
        videos.encodeVideo(false);
        EXPECT_EQ(host.script.warned.takeLast(),
                  "Export failed|Could not write:\n" + folder.filePath(name));
    }
    EXPECT_FALSE(QFile::exists(mark));
}

TEST_F(Exporting, AGreyStillStaysGreyInAVideo)
{
    if (!useFfmpeg())
        GTEST_SKIP() << "ffmpeg or ffprobe is not installed";
    zre::Image grey(64, 48, 1);
    std::fill(grey.data.begin(), grey.data.end(), 0.5f);
    host.document.installSource(folder.filePath("grey.png"), std::move(grey), {}, {});
    spatial.still = SpatialStill::Mp4;
    const QString path = answer("grey.mp4");
    spatials.exportVR180();
    QProcess ffmpeg;
    ffmpeg.start("ffmpeg", {"-v", "error", "-i", path, "-frames:v", "1", "-f", "rawvideo",
                            "-pix_fmt", "rgb24", "-"});
    ffmpeg.waitForFinished();
    const QByteArray pixels = ffmpeg.readAllStandardOutput();
    ASSERT_EQ(pixels.size(), 128 * 48 * 3);
    for (const char pixel : pixels)
        ASSERT_NEAR(static_cast<unsigned char>(pixel), 128, 1);
}

TEST_F(Exporting, ACancelInTheDialogLeavesNothing)
{
    useEncoder("exec cat > /dev/null");
    host.document.params.wiggleFrames = 100000;
    QTimer press;
    QObject::connect(&press, &QTimer::timeout, [&] {
        for (QWidget* each : QApplication::topLevelWidgets())
            if (auto* dialog = qobject_cast<EncodeDialog*>(each))
                dialog->reject();
        videos.encodeVideo(true);
        spatials.exportVR180();
    });
    press.start(50);
    const QString path = answer("out.mp4");
    videos.encodeVideo(false);
    EXPECT_EQ(host.statuses.back(), "Export canceled.");
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(host.script.asked.size(), 1) << "one at a time";
    EXPECT_TRUE(host.script.warned.isEmpty() && host.script.made.isEmpty());
}

TEST_F(Exporting, AScriptWithErrorsIsNotReplacedInSilence)
{
    useEncoder(kRecorder);
    host.document.flybyScript = "moveto 30 20 3\nfrobnicate 3\n";
    answer("out.mp4");
    videos.encodeVideo(true);
    EXPECT_TRUE(host.script.asked.isEmpty()) << "the user thought better of it";
    EXPECT_TRUE(host.script.questions.back().contains("error in line 2"));
    host.script.choices = {0};
    const QString path = answer("out.mp4");
    videos.encodeVideo(true);
    EXPECT_TRUE(contents(path) == expected(true, kFlat));
}

TEST_F(Exporting, SpatialVideosAreKnownAsSuchToAnotherProgram)
{
    if (!useFfmpeg())
        GTEST_SKIP() << "ffmpeg or ffprobe is not installed";
    struct Case
    {
        SpatialContent content;
        bool apple;
        const char* name;
        int frames;
        const char* rate;
    };
    const Case cases[]{
        {SpatialContent::Still, false, "m31_VR180_SBS.mp4", 75, "25/1"},
        {SpatialContent::Wiggle, false, "m31_VR180_SBS_parallax.mp4", kFrames, "12/1"},
        {SpatialContent::Flyby, true, "m31_AppleSpatial_SBS_flyby.mp4", 0, "12/1"},
    };
    spatial.still = SpatialStill::Mp4;
    for (const Case& each : cases) {
        spatial.content = each.content;
        const QString path = answer("spatial.mp4");
        if (each.apple)
            spatials.exportAppleSpatial();
        else
            spatials.exportVR180();
        ASSERT_TRUE(host.script.warned.isEmpty()) << qPrintable(host.script.warned.join('\n'));
        EXPECT_TRUE(host.script.asked.back().contains(folder.filePath(each.name)))
            << qPrintable(host.script.asked.back());
        EXPECT_TRUE(host.script.made.back().contains(
            QString(each.apple ? "Apple Spatial" : "VR180") + " MP4 saved: " + path))
            << qPrintable(host.script.made.back());
        const QString said = probe(path);
        EXPECT_TRUE(said.contains("width=122\nheight=40\n")) << qPrintable(said);
        EXPECT_TRUE(said.contains(QString("r_frame_rate=%1\n").arg(each.rate)));
        EXPECT_TRUE(!each.frames || said.contains(QString("nb_read_frames=%1\n").arg(each.frames)));
        EXPECT_EQ(said.contains("type=side by side"), !each.apple) << qPrintable(said);
        EXPECT_EQ(said.contains("Spherical Mapping"), !each.apple);
        EXPECT_EQ(contents(path).contains("vexu"), each.apple);
    }
    EXPECT_EQ(eyes.still, QSize(61, 40));
    EXPECT_EQ(QDir(QDir::tempPath()).entryList({"zrvr_*", "zrasp_*"}), QStringList());
}

TEST_F(Exporting, ASpatialStillIsThePairWithItsDeclaration)
{
    for (const SpatialStill form : {SpatialStill::Png, SpatialStill::Jpeg}) {
        const bool isPng = form == SpatialStill::Png;
        spatial.still = form;
        const QString path = answer(isPng ? "vr.png" : "vr.jpg");
        spatials.exportVR180();
        EXPECT_TRUE(host.script.made.back().contains("VR180 image saved: " + path));
        EXPECT_TRUE(contents(path).contains("GPano:ProjectionType>equirectangular"));
        zre::Image pair;
        ASSERT_TRUE(host.pipeline().renderView(kPairView, {}, pair, nullptr));
        QImage back(path);
        EXPECT_EQ(back.size(), QSize(122, 40));
        if (isPng) {
            EXPECT_EQ(back.convertToFormat(QImage::Format_RGB888),
                      zre_qt::toQImage(pair).convertToFormat(QImage::Format_RGB888));
        }
    }
    EXPECT_EQ(host.stops.back(), "VR180 export");
    host.script.answers = {folder.filePath("absent/vr.png")};
    spatials.exportVR180();
    EXPECT_TRUE(host.script.warned.back().startsWith("VR180 export failed|Could not write:\n"));
}

} // namespace
