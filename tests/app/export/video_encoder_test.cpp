#include "app/export/video_encoder.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "app/export/video_plan.h"

namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;

QImage frameOf(int number)
{
    QImage picture(kWidth, kHeight, QImage::Format_RGB32);
    picture.fill(qRgb(10 * number + 20, 200 - 8 * number, 60));
    return picture;
}

class Video : public testing::Test
{
protected:
    VideoJob job(const QString& encoder, int frames)
    {
        VideoJob made;
        made.encoder = encoder;
        made.path = folder.filePath("out.mp4");
        made.packed = {kWidth, kHeight};
        made.frames = frames;
        made.render = frameOf;
        made.arguments = [](const QString& path) {
            VideoPlan plan;
            plan.frame = {kWidth, kHeight};
            plan.fps = 10;
            return encoderArguments(plan, path);
        };
        return made;
    }

    /// A stand-in for the encoder.
    QString script(const QString& body)
    {
        const QString path = folder.filePath("encoder.sh");
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + body.toUtf8() + '\n');
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }

    QStringList filesLeft() const
    {
        QStringList names =
            QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        names.removeAll("encoder.sh");
        return names;
    }

    void keepOldFile()
    {
        QFile old(folder.filePath("out.mp4"));
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write("a night's work");
    }

    void expectOldFile()
    {
        QFile old(folder.filePath("out.mp4"));
        ASSERT_TRUE(old.open(QIODevice::ReadOnly));
        EXPECT_EQ(old.readAll(), "a night's work");
        EXPECT_EQ(filesLeft(), QStringList{"out.mp4"});
    }

    static bool always(const VideoProgress&) { return true; }

    QTemporaryDir folder;
};

TEST_F(Video, EveryFrameArrivesInOrderAndInItsColours)
{
    const QString ffmpeg = QStandardPaths::findExecutable("ffmpeg");
    if (ffmpeg.isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    int last = 0;
    const VideoResult result = encodeVideo(job(ffmpeg, 9), [&](const VideoProgress& progress) {
        EXPECT_GE(progress.done, last);
        last = progress.done;
        return true;
    });
    ASSERT_EQ(result.end, VideoEnd::Done) << result.error.toStdString();
    EXPECT_EQ(last, 9);
    EXPECT_EQ(filesLeft(), QStringList{"out.mp4"});
    QProcess decoder;
    decoder.start(ffmpeg, {"-v", "error", "-i", folder.filePath("out.mp4"), "-f", "rawvideo",
                           "-pix_fmt", "rgb24", "-"});
    ASSERT_TRUE(decoder.waitForFinished(60000));
    const QByteArray pixels = decoder.readAllStandardOutput();
    const qsizetype frameBytes = kWidth * kHeight * 3;
    ASSERT_EQ(pixels.size(), 9 * frameBytes);
    for (int i = 0; i < 9; ++i) {
        const auto at = static_cast<qsizetype>(i) * frameBytes + frameBytes / 2;
        const QRgb wanted = frameOf(i).pixel(0, 0);
        EXPECT_NEAR(static_cast<uchar>(pixels[at]), qRed(wanted), 4) << i;
        EXPECT_NEAR(static_cast<uchar>(pixels[at + 1]), qGreen(wanted), 4) << i;
        EXPECT_NEAR(static_cast<uchar>(pixels[at + 2]), qBlue(wanted), 4) << i;
    }
}

TEST_F(Video, AFailingEncoderIsReportedInItsOwnWordsAndLeavesWhatWasThere)
{
    const struct
    {
        const char* body;
        const char* words;
    } cases[] = {
        {"echo 'Unknown encoder libx264' >&2; exit 1",
         "ffmpeg exited with code 1.\n\nUnknown encoder libx264"},
        {"echo stdout words; exit 3", "ffmpeg exited with code 3.\n\nstdout words"},
        {"head -c 1000 >/dev/null; exit 0", "ended before the last frame"},
        {"cat >/dev/null; exit 0", "ended before the last frame"}, // and no file was written
        {"exec <&-; sleep 1; exit 2", "code 2"},
        {"yes 'many words' | head -c 10000000 >&2; cat >/dev/null; echo last words; exit 8",
         "last words"},
        {"kill -9 $$", "ffmpeg"},
    };
    keepOldFile();
    for (const auto& c : cases) {
        const VideoResult result = encodeVideo(job(script(c.body), 400), always);
        EXPECT_EQ(result.end, VideoEnd::Failed) << c.body;
        EXPECT_TRUE(result.error.contains(c.words)) << c.body << '\n' << result.error.toStdString();
        EXPECT_LT(result.error.size(), 5000);
        expectOldFile();
    }
    // Leaving within, at and behind a frame, a pipe's and a window's worth, and at the very end.
    for (const int bytes :
         {0, 1, 9215, 9216, 9217, 65536, 1048576, 1048577, 2000000, 400 * 9216 - 1, 400 * 9216}) {
        const QString body = QString("head -c %1 >/dev/null; exit 9").arg(bytes);
        const VideoResult result = encodeVideo(job(script(body), 400), always);
        EXPECT_TRUE(result.error.startsWith("ffmpeg exited with code 9.")) << bytes;
        expectOldFile();
    }
}

TEST_F(Video, AnEncoderThatCannotBeStartedIsReported)
{
    keepOldFile();
    const QString plain = script("exit 0");
    QFile::setPermissions(plain, QFile::ReadOwner | QFile::WriteOwner);
    for (const QString& encoder : {folder.filePath("none"), folder.path(), plain}) {
        const VideoResult result = encodeVideo(job(encoder, 3), always);
        EXPECT_TRUE(result.error.startsWith("Could not launch ffmpeg:\n"))
            << encoder.toStdString() << result.error.toStdString();
        expectOldFile();
    }
}

TEST_F(Video, AFullDiskIsToldInOneLineOrTwo)
{
    const QString ffmpeg = QStandardPaths::findExecutable("ffmpeg");
    if (ffmpeg.isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    keepOldFile();
    // Files may grow to so many blocks only; what goes beyond is an error like that of a full disk.
    // One block holds less than is written before the end, and there ffmpeg calls it a success.
    const struct
    {
        int format;
        int blocks;
    } cases[] = {{kMp4, 1}, {kMp4, 100}, {kGif, 1}, {kGif, 100}};
    for (const auto& c : cases) {
        const QString limited = script(QString("trap '' XFSZ; ulimit -f %1; exec %2 \"$@\"")
                                           .arg(QString::number(c.blocks), ffmpeg));
        VideoJob small = job(limited, 200);
        small.render = [](int frame) {
            QImage picture = frameOf(frame % 20);
            for (int x = 0; x < kWidth; ++x)
                for (int y = 0; y < kHeight; ++y)
                    picture.setPixel(x, y, static_cast<uint>((x * 7919 + y * 104729 + frame) * 31));
            return picture;
        };
        small.arguments = [&](const QString& path) {
            VideoPlan plan;
            plan.format = c.format;
            plan.frame = {kWidth, kHeight};
            plan.fps = 10;
            return encoderArguments(plan, path);
        };
        const VideoResult result = encodeVideo(small, always);
        EXPECT_EQ(result.end, VideoEnd::Failed)
            << c.format << ' ' << c.blocks << ' ' << QFileInfo(small.path).size();
        EXPECT_TRUE(result.error.contains("File too large")) << result.error.toStdString();
        EXPECT_TRUE(result.error.contains(small.path)) << result.error.toStdString();
        for (const char* noise : {"configuration:", "frame=", "kb/s", ".zrvideo", "Stream"})
            EXPECT_FALSE(result.error.contains(noise)) << noise << result.error.toStdString();
        expectOldFile();
    }
}

TEST_F(Video, ALinkIsFollowedToTheFileItNames)
{
    keepOldFile();
    ASSERT_TRUE(QFile::link(folder.filePath("out.mp4"), folder.filePath("link.mp4")));
    VideoJob linked = job(script("cat >/dev/null; for last; do :; done; echo new >\"$last\""), 3);
    linked.path = folder.filePath("link.mp4");
    EXPECT_EQ(encodeVideo(linked, always).end, VideoEnd::Done);
    EXPECT_TRUE(QFileInfo(linked.path).isSymLink());
    QFile file(folder.filePath("out.mp4"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "new\n");
}

TEST_F(Video, ACancelEndsEveryStage)
{
    keepOldFile();
    const char* bodies[] = {"cat >/dev/null; sleep 60", "sleep 60",
                            "trap '' TERM; cat >/dev/null; sleep 60"};
    for (const char* body : bodies) {
        for (const int calls : {0, 1, 3, 30}) {
            int count = 0;
            const VideoResult result = encodeVideo(
                job(script(body), 12), [&](const VideoProgress&) { return count++ < calls; });
            EXPECT_EQ(result.end, VideoEnd::Canceled) << body << ' ' << calls;
            expectOldFile();
        }
    }
}

TEST_F(Video, AFrameThatCannotBeRenderedEndsTheExport)
{
    keepOldFile();
    VideoJob bad = job(script("cat >/dev/null; sleep 60"), 20);
    bad.render = [](int frame) { return frame == 7 ? QImage() : frameOf(frame); };
    const VideoResult result = encodeVideo(bad, always);
    EXPECT_EQ(result.end, VideoEnd::Failed);
    EXPECT_EQ(result.error, "Frame 8 could not be rendered.");
    expectOldFile();
}

} // namespace
