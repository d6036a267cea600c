#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/flight/flyby_script.h"

namespace zre::script {

/// One parsed statement of a flyby script; its words stand in the script's text.
struct Cmd
{
    std::int32_t line = 0;
    std::string name;                   ///< lower case; "=" for an assignment
    std::vector<std::string_view> args; ///< raw words
    bool isAssign = false;
    std::string_view varName;
    std::string_view text; ///< right side of an assignment, or the text of `write` and `writeln`
};

/// The statements from `begin` to `end` run `times` times.
struct Stretch
{
    std::size_t begin = 0;
    std::size_t end = 0;
    int times = 1;
};

struct Program
{
    std::vector<Cmd> statements;
    std::vector<Stretch> stretches;
};

/// Reads the statements of an expanded script and folds its repeated blocks; what is wrong with
/// those is appended to `errors`. `text` is null-terminated and outlives the program.
Program parseProgram(std::string_view text, std::vector<ZRFlybyError>& errors);

} // namespace zre::script
