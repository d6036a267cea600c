#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include <QImage>
#include <QString>

/// Renders numbered frames on several threads and hands them out in order.
///
/// Each worker takes the next number and fills a slot of its own; at most `window` frames stand
/// beyond the last one taken, so that memory stays bounded when the taker is slow. What a render
/// throws stops the farm and is its error, unless the plan skips failed frames.
class FrameFarm
{
public:
    struct Plan
    {
        int count = 0;   ///< frames 0 to count - 1
        int threads = 1; ///< at least 1
        int window = 1;  ///< at least 1
        /// A frame that cannot be drawn is handed out null, and the others go on.
        bool skipsFailed = false;
    };

    /// Draws a frame; called on worker threads, several at once. A null picture counts as failed.
    using Render = std::function<QImage(int frame)>;

    FrameFarm(const Plan& plan, Render render);
    /// Stops and joins.
    ~FrameFarm();
    FrameFarm(const FrameFarm&) = delete;
    FrameFarm& operator=(const FrameFarm&) = delete;

    /// Waits at most `milliseconds` for the next frame in order. True when it can be taken.
    bool waitForNext(int milliseconds);
    /// The next frame in order, which is ready.
    QImage takeNext();

    /// Frames rendered so far.
    int done() const;
    bool failed() const;
    /// Why; empty unless failed.
    QString error() const;

    /// Ends the work: no further frame is begun. Returns when the workers are gone.
    void stop();

    /// As many threads as the machine has, at most one a frame, at least one.
    static int threadsFor(int frames);

private:
    struct Slot
    {
        QImage picture;
        bool ready = false;
    };

    void work();
    bool begin(int& frame);
    void finish(int frame, QImage picture);
    void fail(const QString& why);
    Slot& slot(int frame) { return m_slots[static_cast<std::size_t>(frame % m_plan.window)]; }

    Plan m_plan;
    Render m_render;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Slot> m_slots;
    int m_next = 0;  ///< to be begun
    int m_taken = 0; ///< to be taken
    int m_done = 0;
    bool m_stopped = false;
    QString m_error;
    std::vector<std::thread> m_threads;
};
