#pragma once

#include <QStringList>

#include "tools/render/console.h"
#include "tools/render/staged_outputs.h"

namespace zrrender {

/// What a command works with beside its arguments.
struct RunContext
{
    Console& console;
    StagedOutputs& outputs;
};

/// Runs one command line, without the program's name. Never throws; gives the exit code.
int runCommandLine(const QStringList& arguments, Console& console, StagedOutputs& outputs);

/// The whole program: application object, locale, signals, standard streams.
int runProgram(int argc, char** argv);

} // namespace zrrender
