#include "tools/render/staged_outputs.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <QFile>
#include <fcntl.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace zrrender {

static fs::path toPath(const QString& name)
{
    return fs::path(QFile::encodeName(name).toStdString());
}

static QString toText(const fs::path& path)
{
    return QFile::decodeName(path.c_str());
}

static bool fail(QString* error, const QString& what, const fs::path& path,
                 const std::error_code& why)
{
    if (error)
        *error = QStringLiteral("%1 %2: %3")
                     .arg(what, toText(path), QString::fromStdString(why.message()));
    return false;
}

/// Also when somebody is still writing into it: a folder that is gone takes no more files.
static void removeTree(const fs::path& folder)
{
    constexpr int kAttempts = 1000;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        std::error_code error;
        fs::remove_all(folder, error);
        if (!fs::exists(fs::symlink_status(folder, error)))
            return;
    }
}

StagedOutputs::~StagedOutputs()
{
    abandon();
}

bool StagedOutputs::makeFolder(const QString& folder, QString* error)
{
    const std::lock_guard lock(mutex);
    std::vector<fs::path> missing;
    std::error_code code;
    fs::path path = fs::absolute(toPath(folder), code).lexically_normal();
    if (!path.has_filename())
        path = path.parent_path();
    for (; !path.empty() && !fs::exists(path, code); path = path.parent_path())
        missing.push_back(path);
    std::reverse(missing.begin(), missing.end());
    for (const fs::path& next : missing) {
        if (closed || !fs::create_directory(next, code))
            return fail(error, QStringLiteral("cannot make the folder"), next, code);
        madeFolders.push_back(next);
    }
    return true;
}

std::optional<fs::path> StagedOutputs::hiddenFolderIn(const fs::path& folder, QString* error)
{
    const auto known = hiddenFolders.find(folder);
    if (known != hiddenFolders.end())
        return known->second;
    std::string name = (folder / ".zerrith-render-XXXXXX").string();
    if (closed || !mkdtemp(name.data())) {
        fail(error, QStringLiteral("cannot write in the folder"), folder,
             std::error_code(errno, std::generic_category()));
        return std::nullopt;
    }
    hiddenFolders.emplace(folder, name);
    return fs::path(name);
}

static fs::path folderOf(const fs::path& file)
{
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

/// The file that `destination` means, links followed; nothing with a message where none can be.
static std::optional<fs::path> writableTarget(const QString& destination, QString* error)
{
    const fs::path named = toPath(destination);
    fs::path target = named;
    std::error_code code;
    if (fs::is_symlink(named, code))
        target = fs::weakly_canonical(named, code);
    if (!code && fs::is_directory(target, code))
        code = std::make_error_code(std::errc::is_a_directory);
    else if (!code && fs::exists(target, code) && !fs::is_regular_file(target, code))
        code = std::make_error_code(std::errc::not_supported);
    if (code && code != std::errc::no_such_file_or_directory) {
        fail(error, QStringLiteral("cannot write"), named, code);
        return std::nullopt;
    }
    if (access(folderOf(target).c_str(), W_OK | X_OK) != 0) {
        fail(error, QStringLiteral("cannot write in the folder"), folderOf(target),
             std::error_code(errno, std::generic_category()));
        return std::nullopt;
    }
    return target;
}

bool StagedOutputs::isWritable(const QString& destination, QString* error)
{
    return writableTarget(destination, error).has_value();
}

std::optional<QString> StagedOutputs::stage(const QString& destination, QString* error)
{
    const std::lock_guard lock(mutex);
    const std::optional<fs::path> target = writableTarget(destination, error);
    if (!target)
        return std::nullopt;
    std::error_code code;
    const fs::path identity = fs::weakly_canonical(*target, code);
    for (const File& file : files) {
        if (file.identity == identity) {
            if (error)
                *error = QStringLiteral("%1 is named for two outputs of this run").arg(destination);
            return std::nullopt;
        }
    }
    const std::optional<fs::path> folder = hiddenFolderIn(folderOf(*target), error);
    if (!folder)
        return std::nullopt;
    files.push_back({*folder / target->filename(), *target, identity});
    return toText(files.back().staged);
}

/// Never over a file that somebody else puts there at the same moment.
static void moveToFreePlace(const fs::path& from, const fs::path& to, std::error_code& code)
{
    code.clear();
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return;
    if (errno == EINVAL || errno == ENOSYS) // the file system knows links instead
        fs::create_hard_link(from, to, code);
    else
        code = std::error_code(errno, std::generic_category());
}

bool StagedOutputs::moveIntoPlace(const File& file, Existing existing, QString* error)
{
    std::error_code code;
    if (existing == Existing::Kept)
        moveToFreePlace(file.staged, file.destination, code);
    else
        fs::rename(file.staged, file.destination, code);
    return !code || fail(error, QStringLiteral("cannot write"), file.destination, code);
}

bool StagedOutputs::commit(QString* error, Existing existing)
{
    const std::lock_guard lock(mutex);
    std::vector<fs::path> added;
    std::error_code code;
    if (closed)
        return false; // whoever abandoned them knows why
    for (const File& file : files) {
        const bool isNew = !fs::exists(file.destination, code);
        if (!moveIntoPlace(file, existing, error)) {
            for (const fs::path& path : added)
                fs::remove(path, code);
            return false;
        }
        if (isNew)
            added.push_back(file.destination);
    }
    files.clear();
    removeHiddenFolders();
    madeFolders.clear();
    return true;
}

bool StagedOutputs::commitFile(const QString& destination, QString* error, Existing existing)
{
    const std::lock_guard lock(mutex);
    std::error_code code;
    const fs::path identity = fs::weakly_canonical(toPath(destination), code);
    const auto file = std::find_if(files.begin(), files.end(),
                                   [&](const File& each) { return each.identity == identity; });
    if (closed || file == files.end())
        return false; // whoever abandoned them knows why
    if (!moveIntoPlace(*file, existing, error))
        return false;
    files.erase(file);
    madeFolders.clear();
    return true;
}

void StagedOutputs::removeHiddenFolders()
{
    for (const auto& [folder, hidden] : hiddenFolders)
        removeTree(hidden);
    hiddenFolders.clear();
}

bool StagedOutputs::abandon()
{
    const std::lock_guard lock(mutex);
    const bool wasOpen = !closed;
    closed = true;
    files.clear();
    removeHiddenFolders();
    std::reverse(madeFolders.begin(), madeFolders.end()); // innermost first
    for (const fs::path& folder : madeFolders) {
        std::error_code code;
        fs::remove(folder, code); // only when empty
    }
    madeFolders.clear();
    return wasOpen;
}

} // namespace zrrender
