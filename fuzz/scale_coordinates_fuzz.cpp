// Scaled scripts: the factors come from the first two bytes. The layout stays, so do comments and
// variables, whole literals survive a factor of one, and a scaled script fails only where it did.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "engine/flight/flyby_script.h"

static void require(bool holds)
{
    if (!holds)
        std::abort();
}

static std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines(1);
    for (const char c : text) {
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back() += c;
    }
    return lines;
}

static double factorOf(std::uint8_t byte)
{
    constexpr double kFactors[] = {1.0, 2.0, 0.5, 1e-9, 1e15, 1e300, -1.0, 0.0};
    return byte < 8 ? kFactors[byte] : byte / 64.0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    const std::string text(reinterpret_cast<const char*>(data) + 2, size - 2);
    const std::string scaled =
        zre::scaleFlybyScriptCoords(text, factorOf(data[0]), factorOf(data[1]));
    const std::vector<std::string> before = linesOf(text);
    const std::vector<std::string> after = linesOf(scaled);
    require(before.size() == after.size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        const std::size_t begin = before[i].find_first_not_of(" \t\r,:");
        const bool stays = begin == std::string::npos || before[i][begin] == '#' ||
                           before[i][begin] == '$' || before[i].compare(begin, 5, "write") == 0;
        require(!stays || before[i] == after[i]);
        const std::size_t comment = before[i].find('#');
        if (comment != std::string::npos)
            require(after[i].ends_with(before[i].substr(comment)));
    }
    const std::string once = zre::scaleFlybyScriptCoords(text, 1.0, 1.0);
    require(zre::scaleFlybyScriptCoords(once, 1.0, 1.0) == once);
    return 0;
}
