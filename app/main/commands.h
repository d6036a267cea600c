#pragma once

#include <optional>

#include <QStringList>

/// Runs the built-in command that the first of `arguments` after the program's name selects, and
/// gives its exit code. Nothing when it is no command, or has too few arguments: then the program
/// starts normally.
std::optional<int> runCommand(const QStringList& arguments);
