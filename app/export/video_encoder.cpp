#include "app/export/video_encoder.h"

#include <csignal>
#include <cstdio>
#include <deque>
#include <numeric>

#include <fcntl.h>
#include <sys/prctl.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include "app/export/encoder_words.h"
#include "app/export/frame_farm.h"
#include "app/export/video_plan.h"

namespace {

constexpr int kStepMs = 50;
constexpr int kPatienceMs = 2000;

/// One run of the encoder.
class Encoding
{
public:
    Encoding(const VideoJob& job, const std::function<bool(const VideoProgress&)>& goesOn,
             const QString& staged)
        : m_job(job)
        , m_goesOn(goesOn)
        , m_staged(staged)
    {
    }

    VideoResult run()
    {
        if (!start())
            return failed("Could not launch ffmpeg:\n" + m_process.errorString());
        const VideoEnd written = writeFrames();
        if (written == VideoEnd::Canceled)
            return cancel();
        const bool rendered = m_renderError.isEmpty();
        if (rendered)
            m_process.closeWriteChannel();
        else
            m_process.kill();
        if (!waitForEnd())
            return cancel();
        if (!rendered)
            return failed(m_renderError);
        if (m_process.exitStatus() != QProcess::NormalExit || m_process.exitCode() != 0)
            return failedIn(QString("ffmpeg exited with code %1.").arg(m_process.exitCode()));
        if (written == VideoEnd::Failed || m_process.error() == QProcess::WriteError ||
            !QFileInfo::exists(m_staged))
            return failedIn("ffmpeg ended before the last frame.");
        listen();
        if (m_words.tellOfLostEnd())
            return failedIn("ffmpeg could not write the end of the file.");
        return {VideoEnd::Done, {}, {}};
    }

private:
    bool start()
    {
        m_process.setChildProcessModifier([] {
            // A frame is megabytes; through a larger pipe it goes in fewer portions.
            fcntl(0, F_SETPIPE_SZ, 1 << 20);
            // Nobody waits for the video of a program that was killed.
            prctl(PR_SET_PDEATHSIG, SIGKILL);
        });
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(m_job.encoder, m_job.arguments(m_staged));
        return m_process.waitForStarted(5000);
    }

    VideoEnd writeFrames()
    {
        if (m_job.frames < 1)
            return VideoEnd::Done;
        const int window = frameBatch(m_job.packed, m_job.frames);
        FrameFarm farm({m_job.frames, FrameFarm::threadsFor(window), window}, m_job.render);
        while (m_done < m_job.frames) {
            if (!isRunning())
                return VideoEnd::Failed;
            const bool isFeeding = m_process.bytesToWrite() > 0;
            if (farm.waitForNext(isFeeding ? 0 : kStepMs)) {
                const QImage frame = farm.takeNext();
                write(frame);
                forgetWritten();
                ++m_done;
                if (!goesOn(&frame) || !drainTo(kMostWaiting))
                    return VideoEnd::Canceled;
            } else if (farm.failed()) {
                m_renderError = farm.error();
                return VideoEnd::Failed;
            } else if (!goesOn(nullptr)) {
                return VideoEnd::Canceled;
            } else if (isFeeding) {
                m_process.waitForBytesWritten(kStepMs);
                listen();
            }
        }
        return VideoEnd::Done;
    }

    void write(const QImage& picture)
    {
        const QImage frame = picture.convertToFormat(QImage::Format_RGB888);
        const auto rowBytes = qint64{frame.width()} * 3;
        const auto* const pixels = reinterpret_cast<const char*>(frame.constBits());
        if (frame.bytesPerLine() == rowBytes) { // the process takes it as it is, without a copy
            m_waiting.push_back(frame);
            m_process.write(QByteArray::fromRawData(pixels, frame.sizeInBytes()));
        } else {
            for (int y = 0; y < frame.height(); ++y)
                m_process.write(pixels + y * frame.bytesPerLine(), rowBytes);
        }
    }

    /// Lets go of frames that are through.
    void forgetWritten()
    {
        const auto waiting = [this] {
            return std::accumulate(
                m_waiting.begin(), m_waiting.end(), qint64{0},
                [](qint64 sum, const QImage& frame) { return sum + frame.sizeInBytes(); });
        };
        while (!m_waiting.empty() &&
               waiting() - m_waiting.front().sizeInBytes() >= m_process.bytesToWrite())
            m_waiting.pop_front();
    }

    /// False on a cancel. A dead encoder would take bytes for ever: the caller looks for it.
    bool drainTo(qint64 most)
    {
        while (isRunning() && m_process.bytesToWrite() > most) {
            m_process.waitForBytesWritten(200);
            listen();
            if (!goesOn(nullptr))
                return false;
        }
        return true;
    }

    /// False on a cancel.
    bool waitForEnd()
    {
        while (isRunning()) {
            m_process.waitForFinished(kStepMs);
            listen();
            if (!goesOn(nullptr))
                return false;
        }
        return true;
    }

    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }

    bool goesOn(const QImage* shown) { return m_goesOn({m_done, m_job.frames, shown}); }

    void listen() { m_words.hear(m_process.readAllStandardOutput()); }

    QString lastWords()
    {
        listen();
        return m_words.last().replace(m_staged, m_job.path);
    }

    VideoResult cancel()
    {
        end();
        return {VideoEnd::Canceled, {}, {}};
    }

    VideoResult failed(const QString& why)
    {
        end();
        return {VideoEnd::Failed, why, {}};
    }

    VideoResult failedIn(const QString& why)
    {
        VideoResult result = failed(why + "\n\n" + lastWords());
        result.said = lastWords();
        return result;
    }

    void end()
    {
        if (!isRunning())
            return;
        m_process.kill();
        m_process.waitForFinished(kPatienceMs);
    }

    static constexpr qint64 kMostWaiting = 16777216;

    const VideoJob& m_job;
    const std::function<bool(const VideoProgress&)>& m_goesOn;
    QString m_staged;
    std::deque<QImage> m_waiting; ///< whose pixels the process still reads; outlives it
    QProcess m_process;
    EncoderWords m_words;
    QString m_renderError;
    int m_done = 0;
};

/// Whether a file may get that name: long work need not be done for nothing.
bool canStandAt(const QString& path)
{
    if (QFileInfo::exists(path))
        return !QFileInfo(path).isDir();
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly) && file.remove();
}

} // namespace

VideoResult encodeVideo(const VideoJob& job,
                        const std::function<bool(const VideoProgress&)>& goesOn)
{
    const QFileInfo named(job.path);
    const QFileInfo target(named.isSymLink() && named.exists() ? named.canonicalFilePath()
                                                               : job.path);
    QTemporaryDir staging(target.absoluteDir().filePath(".zrvideo-XXXXXX"));
    if (!staging.isValid() || !canStandAt(job.path))
        return {VideoEnd::Failed, "Could not write:\n" + job.path, {}};
    const QString staged = staging.filePath("video." + target.suffix());
    VideoResult result = Encoding(job, goesOn, staged).run();
    if (result.end != VideoEnd::Done)
        return result;
    // rename(2) replaces in one step; QFile::rename would not replace at all.
    if (std::rename(QFile::encodeName(staged).constData(),
                    QFile::encodeName(target.filePath()).constData()) != 0)
        return {VideoEnd::Failed, "Could not write:\n" + job.path, {}};
    return result;
}
