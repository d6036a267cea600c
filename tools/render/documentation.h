#pragma once

#include <QString>

#include "tools/render/command_table.h"

namespace zrrender {

/// "1.1.1"
const char* programVersion();

/// The help of one command, or of the program when `command` is null.
QString helpText(const CommandSpec* command);

/// The manual page, as roff text.
QString manPage();

/// The completion script for bash.
QString bashCompletion();

} // namespace zrrender
