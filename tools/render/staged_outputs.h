#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include <QString>

namespace zrrender {

/// The files a run makes: all of them, or none.
///
/// Each is written in a hidden folder beside its destination, temporaries of its writer included,
/// and moved into place when every one is complete. `abandon` may come from another thread while a
/// writer is still busy; what it then writes falls into a folder that is gone.
class StagedOutputs
{
public:
    StagedOutputs() = default;
    StagedOutputs(const StagedOutputs&) = delete;
    StagedOutputs& operator=(const StagedOutputs&) = delete;
    ~StagedOutputs();

    /// Makes `folder` with its missing parents; what was made goes again when the run is abandoned.
    bool makeFolder(const QString& folder, QString* error);

    /// Where to write the file meant for `destination` (same name, same suffix); a link is followed
    /// to the file it names. Nothing with a message in `error` when the folder cannot be written.
    std::optional<QString> stage(const QString& destination, QString* error);

    /// Moves every staged file into place. On failure no new file stays, and the message is in
    /// `error` (none after `abandon`).
    bool commit(QString* error);

    /// Removes everything that was not committed, for good: nothing can be staged or committed
    /// afterwards. False when that had been done before.
    bool abandon();

private:
    using Path = std::filesystem::path;

    std::optional<Path> hiddenFolderIn(const Path& folder, QString* error);
    void removeHiddenFolders();

    std::mutex mutex;
    bool closed = false;
    std::map<Path, Path> hiddenFolders; ///< by the folder they stand in
    std::vector<std::pair<Path, Path>> files;
    std::vector<Path> madeFolders; ///< outermost first
};

} // namespace zrrender
