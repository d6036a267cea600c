#include "app/main/commands.h"

#include <array>

#include "app/main/diagnostics/diagnostics.h"

namespace {

/// One command of the chain, compared by its exact name.
struct Command
{
    const char* name;
    int argumentCount; ///< the least number of arguments after the name
    int (*run)(const QStringList& arguments);
};

constexpr std::array kCommands{
    Command{"--selftest-wcsbuild", 1, diag::wcsBuild},
    Command{"--selftest-recent", 0, diag::recentFiles},
    Command{"--selftest-warpcomb", 0, diag::warpComb},
    Command{"--selftest-fonts", 0, diag::fonts},
    Command{"--selftest-imageload", 1, diag::imageLoad},
    Command{"--selftest-depthres", 0, diag::depthResolution},
    Command{"--selftest-splash", 1, diag::splash},
    Command{"--selftest-icons", 1, diag::icons},
    Command{"--selftest-ranges", 1, diag::ranges},
    Command{"--selftest-sliders", 1, diag::sliders},
    Command{"--selftest-startable", 1, diag::starTable},
};

} // namespace

std::optional<int> runCommand(const QStringList& arguments)
{
    for (const Command& command : kCommands)
        if (arguments.value(1) == command.name && arguments.size() - 2 >= command.argumentCount)
            return command.run(arguments.mid(2));
    return std::nullopt;
}
