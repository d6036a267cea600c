// Part of the test programs under the thread sanitizer. QProcess starts a child by a clone that
// shares the memory until it runs another program. The sanitizer takes that for a fork and, as in a
// forked child, stops to watch the thread's locks: from there on all that it does looks unlocked,
// and a program that has threads already is ended. So here a child starts by a real fork.

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstdarg>

#include <sched.h>

extern "C" const char* __tsan_default_options()
{
    return "die_after_fork=0"; // the program, with threads of its own, goes on starting threads
}

extern "C" int clone(int (*run)(void*), void*, int flags, void* argument, ...) noexcept
{
    va_list further;
    va_start(further, argument);
    int* const descriptor = va_arg(further, int*);
    va_end(further);
    const pid_t child = fork();
    if (child == 0)
        _exit(run(argument));
    if (child > 0 && (flags & CLONE_PIDFD) != 0)
        *descriptor = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
    return child;
}
