#pragma once

#include <functional>

/// Runs `work` on a thread of its own while the window stays painted; user input waits. An
/// exception of `work` comes out here.
void runAside(const std::function<void()>& work);
