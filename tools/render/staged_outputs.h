#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
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

    /// Whether a file can be written as `destination`, as far as can be told beforehand: long work
    /// need not be done for nothing. Otherwise the message is in `error`.
    static bool isWritable(const QString& destination, QString* error);

    /// Where to write the file meant for `destination` (same name, same suffix); a link is followed
    /// to the file it names. Nothing with a message in `error` when the folder cannot be written or
    /// the same file is staged already.
    std::optional<QString> stage(const QString& destination, QString* error);

    /// What becomes of files that stand where staged ones belong.
    enum class Existing
    {
        Replaced,
        Kept ///< and the commit fails: another run was first
    };

    /// Moves every staged file into place. On failure no new file stays, and the message is in
    /// `error` (none after `abandon`).
    bool commit(QString* error, Existing existing = Existing::Replaced);

    /// Moves the one file staged for `destination` into place, for work that is worth keeping piece
    /// by piece; the others stay staged. May come from several threads.
    bool commitFile(const QString& destination, QString* error, Existing existing);

    /// Removes everything that was not committed, for good: nothing can be staged or committed
    /// afterwards. False when that had been done before.
    bool abandon();

private:
    using Path = std::filesystem::path;

    struct File
    {
        Path staged;
        Path destination;
        Path identity; ///< the destination without links and dots
    };

    std::optional<Path> hiddenFolderIn(const Path& folder, QString* error);
    void removeHiddenFolders();
    static bool moveIntoPlace(const File& file, Existing existing, QString* error);

    std::mutex mutex;
    bool closed = false;
    std::map<Path, Path> hiddenFolders; ///< by the folder they stand in
    std::vector<File> files;
    std::vector<Path> madeFolders; ///< outermost first
};

} // namespace zrrender
