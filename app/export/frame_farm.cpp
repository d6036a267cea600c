#include "app/export/frame_farm.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <system_error>
#include <utility>

int FrameFarm::threadsFor(int frames)
{
    const int machine = static_cast<int>(std::thread::hardware_concurrency());
    return std::clamp(machine, 1, std::max(frames, 1));
}

FrameFarm::FrameFarm(const Plan& plan, Render render)
    : m_plan{plan.count, std::max(plan.threads, 1), std::max(plan.window, 1), plan.skipsFailed}
    , m_render(std::move(render))
    , m_slots(static_cast<std::size_t>(m_plan.window))
{
    try {
        for (int i = 0; i < m_plan.threads; ++i)
            m_threads.emplace_back([this] { work(); });
    } catch (const std::system_error&) { // those that the system gave have to do
        if (m_threads.empty())
            fail("No thread could be started.");
    }
}

FrameFarm::~FrameFarm()
{
    stop();
}

void FrameFarm::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopped = true;
    }
    m_changed.notify_all();
    for (std::thread& thread : m_threads)
        if (thread.joinable())
            thread.join();
}

void FrameFarm::work()
{
    int frame = 0;
    while (begin(frame)) {
        try {
            finish(frame, m_render(frame));
        } catch (const std::bad_alloc&) {
            if (m_plan.skipsFailed)
                finish(frame, {});
            else
                fail("Out of memory.");
        } catch (const std::exception& problem) {
            fail(QString::fromUtf8(problem.what()));
        }
    }
}

/// Waits for a free slot; false when there is nothing more to do.
bool FrameFarm::begin(int& frame)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] {
        return m_stopped || m_next >= m_plan.count || m_next < m_taken + m_plan.window;
    });
    if (m_stopped || m_next >= m_plan.count)
        return false;
    frame = m_next++;
    return true;
}

void FrameFarm::finish(int frame, QImage picture)
{
    if (picture.isNull() && !m_plan.skipsFailed) {
        fail(QString("Frame %1 could not be rendered.").arg(frame + 1));
        return;
    }
    {
        const std::lock_guard lock(m_mutex);
        slot(frame) = {std::move(picture), true};
        ++m_done;
    }
    m_changed.notify_all();
}

void FrameFarm::fail(const QString& why)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_error.isEmpty())
            m_error = why;
        m_stopped = true;
    }
    m_changed.notify_all();
}

bool FrameFarm::waitForNext(int milliseconds)
{
    std::unique_lock lock(m_mutex);
    const auto isReady = [this] { return m_taken < m_plan.count && slot(m_taken).ready; };
    m_changed.wait_for(lock, std::chrono::milliseconds(milliseconds),
                       [&] { return m_stopped || m_taken >= m_plan.count || isReady(); });
    return isReady();
}

QImage FrameFarm::takeNext()
{
    QImage picture;
    {
        const std::lock_guard lock(m_mutex);
        Slot& next = slot(m_taken);
        picture = std::exchange(next.picture, {});
        next.ready = false;
        ++m_taken;
    }
    m_changed.notify_all();
    return picture;
}

int FrameFarm::done() const
{
    const std::lock_guard lock(m_mutex);
    return m_done;
}

bool FrameFarm::failed() const
{
    const std::lock_guard lock(m_mutex);
    return !m_error.isEmpty();
}

QString FrameFarm::error() const
{
    const std::lock_guard lock(m_mutex);
    return m_error;
}
