#include "tools/render/interrupt_watch.h"

#include <array>
#include <cstdint>
#include <string>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include "tools/render/outcome.h"

namespace zrrender {

static sigset_t watchedSignals()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN)
            sigaddset(&set, signal);
    }
    return set;
}

InterruptWatch::InterruptWatch(std::function<void()> work)
    : cleanUp(std::move(work))
{
    const sigset_t set = watchedSignals();
    stopDescriptor = eventfd(0, EFD_CLOEXEC);
    signalDescriptor = signalfd(-1, &set, SFD_CLOEXEC);
    if (stopDescriptor < 0 || signalDescriptor < 0)
        return; // signals keep their default effect
    pthread_sigmask(SIG_BLOCK, &set, &previousMask);
    thread = std::thread([this] { wait(); });
}

InterruptWatch::~InterruptWatch()
{
    const std::uint64_t one = 1;
    if (thread.joinable() &&
        write(stopDescriptor, &one, sizeof one) == static_cast<ssize_t>(sizeof one)) {
        thread.join();
        pthread_sigmask(SIG_SETMASK, &previousMask, nullptr);
    }
    close(signalDescriptor);
    close(stopDescriptor);
}

void InterruptWatch::wait()
{
    std::array<pollfd, 2> sources{pollfd{signalDescriptor, POLLIN, 0},
                                  pollfd{stopDescriptor, POLLIN, 0}};
    while (poll(sources.data(), sources.size(), -1) < 0) {
    }
    if (!(sources[0].revents & POLLIN))
        return;
    cleanUp();
    // Straight to the descriptor: the other thread may hold any lock of the streams.
    const std::string message =
        std::string(isatty(STDERR_FILENO) ? "\r\033[K" : "") + "zerrith-render: interrupted\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, message.data(), message.size());
    _exit(kInterrupted);
}

} // namespace zrrender
