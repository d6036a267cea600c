#pragma once

#include <functional>
#include <string>
#include <vector>

namespace zrtest {

/// How a program that was started by `runProgramFile` ended.
struct Ended
{
    int code = -1; ///< exit code, or 1000 plus the signal that ended it
    std::string output;
    std::string errors;
};

/// Starts `program` with its arguments (and "NAME=value" texts added to the environment) and reads
/// it to its end. `onLine` gets each line of standard output as it comes, with the process id.
/// SIGINT and SIGTERM have their default effect whatever this process was started with.
Ended runProgramFile(const std::string& program, const std::vector<std::string>& arguments,
                     const std::vector<std::string>& environment = {},
                     const std::function<void(int, const std::string&)>& onLine = {});

} // namespace zrtest
