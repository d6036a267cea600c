#pragma once

#include <csignal>
#include <functional>
#include <thread>

namespace zrrender {

/// Ends the process when the user or the system asks for it (SIGINT, SIGTERM, SIGHUP), at once and
/// wherever the work stands: a thread of its own waits for the signal, runs `cleanUp` there, and
/// leaves with exit code 130. Long engine calls need not be asked to stop.
///
/// Signals that the process was started to ignore stay ignored. Make it before any other thread:
/// those made later inherit the blocked signals, so that only the watch gets them.
class InterruptWatch
{
public:
    explicit InterruptWatch(std::function<void()> cleanUp);
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;
    ~InterruptWatch();

private:
    void wait();

    std::function<void()> cleanUp;
    sigset_t previousMask{};
    int signalDescriptor = -1; ///< file descriptor that becomes readable with a signal
    int stopDescriptor = -1;   ///< file descriptor that becomes readable when the watch ends
    std::thread thread;
};

} // namespace zrrender
