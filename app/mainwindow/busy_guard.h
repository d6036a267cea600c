#pragma once

#include <functional>

/// The wait cursor around long work, and the flag against entering it twice.
class BusyGuard
{
public:
    bool active() const { return m_active; }

    /// Runs `work`; nested calls just run it. False when the outermost call ran out of memory; a
    /// nested call lets the exception through to it.
    bool run(const std::function<void()>& work);

private:
    bool m_active = false;
};
