#include "tests/tools/render/spawn.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <stdexcept>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/testkit.h"

extern char** environ; // NOLINT(readability-redundant-declaration)

namespace zrtest {

namespace {

/// `added` in place of the entries of the same names, and the rest of this process's environment.
std::vector<std::string> environmentWith(const std::vector<std::string>& added)
{
    std::vector<std::string> all = added;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text(*entry);
        const std::string name = text.substr(0, text.find('=') + 1);
        if (std::none_of(added.begin(), added.end(),
                         [&](const std::string& other) { return other.starts_with(name); }))
            all.push_back(text);
    }
    return all;
}

std::vector<char*> pointers(std::vector<std::string>& texts)
{
    std::vector<char*> list;
    for (std::string& text : texts)
        list.push_back(text.data());
    list.push_back(nullptr);
    return list;
}

int start(const std::string& program, std::vector<std::string> arguments,
          const std::vector<std::string>& extra, int output, const std::string& errorFile)
{
    arguments.insert(arguments.begin(), program);
    std::vector<std::string> environment = environmentWith(extra);

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, errorFile.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGINT);
    sigaddset(&defaults, SIGTERM);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

    pid_t pid = -1;
    const int failed = posix_spawn(&pid, program.c_str(), &files, &attributes,
                                   pointers(arguments).data(), pointers(environment).data());
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
    if (failed)
        throw std::runtime_error("cannot start " + program);
    return pid;
}

} // namespace

Ended runProgramFile(const std::string& program, const std::vector<std::string>& arguments,
                     const std::vector<std::string>& environment,
                     const std::function<void(int, const std::string&)>& onLine)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    const std::string errorFile = (scratchFolder() / "stderr.txt").string();
    const int pid = start(program, arguments, environment, ends[1], errorFile);
    close(ends[1]);

    Ended ended;
    std::array<char, 4096> buffer{};
    std::size_t lineBegin = 0;
    for (ssize_t got = 0; (got = read(ends[0], buffer.data(), buffer.size())) > 0;) {
        ended.output.append(buffer.data(), static_cast<std::size_t>(got));
        for (std::size_t end = 0; (end = ended.output.find('\n', lineBegin)) != std::string::npos;
             lineBegin = end + 1)
            if (onLine)
                onLine(pid, ended.output.substr(lineBegin, end - lineBegin));
    }
    close(ends[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    ended.code = WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
    const std::vector<std::uint8_t> errors = readBytes(errorFile);
    ended.errors.assign(errors.begin(), errors.end());
    return ended;
}

} // namespace zrtest
