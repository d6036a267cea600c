#pragma once

#include <functional>
#include <optional>

#include <QString>

/// Flyby scripts as files.
namespace flybyscript {

inline constexpr const char* kFileFilter =
    "Zerrith script (*.zrsc);;Flyby script (*.txt *.flyby);;All files (*)";
inline constexpr const char* kLoadTitle = "Load Flyby Script";
inline constexpr const char* kSaveTitle = "Save Flyby Script";

/// A question for a file; the answer is empty when the user cancels.
using AskFile =
    std::function<QString(const QString& title, const QString& startAt, const QString& filter)>;

/// Asks for a script to load, from where the last one was.
QString askScriptToLoad(const AskFile& openFile);

/// Asks where to save a script. A name without a suffix gets ".zrsc"; when that leads to another
/// file, the user is asked again.
QString askWhereToSave(const AskFile& saveFile, const QString& suggestedName);

/// The text of a script, its lines ended by "\n". It is taken for UTF-8 unless it is marked as
/// UTF-16 or cannot be UTF-8; then for Latin-1. Nothing when the file cannot be read, is larger
/// than 16 MiB or no text that the editor could show.
std::optional<QString> readScript(const QString& path);

/// Writes the text as UTF-8; what stood there stays when that fails.
bool writeScript(const QString& path, const QString& text);

} // namespace flybyscript
