#pragma once

#include <utility>

#include <QString>

namespace zrrender {

/// The exit codes of the program.
enum ExitCode
{
    kDone = 0,
    kFailed = 1,
    kUsage = 2,
    kInterrupted = 130
};

/// How a command ended: its exit code and, unless it is done, one line for the user.
struct Outcome
{
    int code = kDone;
    QString message;

    static Outcome done() { return {}; }
    static Outcome failed(QString why) { return {kFailed, std::move(why)}; }
    static Outcome usage(QString why) { return {kUsage, std::move(why)}; }
    bool isDone() const { return code == kDone; }
};

} // namespace zrrender
