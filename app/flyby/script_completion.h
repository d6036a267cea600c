#pragma once

#include <functional>

#include <QString>
#include <QStringList>

namespace flybyscript {

/// What may stand where the cursor is.
struct Completion
{
    int start = 0;          ///< column at which the word under way begins
    QStringList candidates; ///< all that may stand there, whatever of it has been written
};

/// What may be written at `column` of `line`: a command at its start, then a name or a value of a
/// line of a drawn path, an ease or a variable. `script` is asked for only where its variables may
/// stand, as it can be long.
Completion completionAt(const QString& line, int column, const std::function<QString()>& script);

/// What follows a candidate that was taken over.
QString tailOf(const QString& candidate);

/// How the command of `line` is used, or the parameter at `column`; empty for no command.
QString hintAt(const QString& line, int column);

/// The variables that a script sets, without "$", in order.
QStringList variablesOf(const QString& script);

} // namespace flybyscript
