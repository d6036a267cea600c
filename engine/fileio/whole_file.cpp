#include "engine/fileio/whole_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "engine/fileio/failure.h"

namespace zre {

namespace {

constexpr off_t kMaxFileBytes = off_t{16} << 30;
constexpr std::size_t kMaxTransfer = std::size_t{1}
                                     << 30; // one read() or write() moves below 2 GiB
constexpr int kTemporaryNames = 100;

/// A file descriptor with an owner.
class Descriptor
{
public:
    explicit Descriptor(int opened)
        : fd(opened)
    {
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    bool isOpen() const { return fd >= 0; }
    int get() const { return fd; }
    bool close()
    {
        const int closing = fd;
        fd = -1;
        return closing < 0 || ::close(closing) == 0;
    }

private:
    int fd;
};

std::string systemText(int code)
{
    return std::generic_category().message(code);
}

bool readAll(int fd, std::uint8_t* out, std::size_t size)
{
    for (std::size_t done = 0; done < size;) {
        const ssize_t got = ::read(fd, out + done, std::min(size - done, kMaxTransfer));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        done += static_cast<std::size_t>(got);
    }
    return true;
}

bool writeAll(int fd, std::span<const std::uint8_t> bytes)
{
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t put =
            ::write(fd, bytes.data() + done, std::min(bytes.size() - done, kMaxTransfer));
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0)
            return false;
        done += static_cast<std::size_t>(put);
    }
    return true;
}

/// Where a write to `path` really goes: behind a symbolic link, to its target.
std::filesystem::path finalTarget(const std::string& path)
{
    std::error_code ignored;
    if (!std::filesystem::is_symlink(path, ignored))
        return path;
    const std::filesystem::path resolved = std::filesystem::weakly_canonical(path, ignored);
    return resolved.empty() ? std::filesystem::path(path) : resolved;
}

/// Creates a new file beside `target`: an existing name, even a planted link, is never opened.
int createBeside(const std::filesystem::path& target, mode_t mode, std::string& name)
{
    for (int attempt = 0; attempt < kTemporaryNames; ++attempt) {
        name = target.string() + "." + std::to_string(::getpid()) + "-" + std::to_string(attempt) +
               ".part";
        const int fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (fd >= 0 || errno != EEXIST)
            return fd;
    }
    return -1;
}

/// Permission bits of an existing target.
std::optional<mode_t> existingMode(const std::filesystem::path& target)
{
    struct stat status = {};
    if (::stat(target.c_str(), &status) != 0)
        return std::nullopt;
    return status.st_mode & 07777;
}

/// Without this the rename itself could be lost with the power; a folder that cannot be opened for
/// it keeps working.
void syncFolder(const std::filesystem::path& target)
{
    const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
    const Descriptor handle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (handle.isOpen())
        ::fsync(handle.get());
}

} // namespace

bool readWholeFile(const std::string& path, FileBytes& bytes, std::string* error)
{
    using fileio::fail;
    // Not blocking, or a named pipe without a writer would hold the program.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.isOpen())
        return fail(error, systemText(errno));
    struct stat status = {};
    if (::fstat(file.get(), &status) != 0)
        return fail(error, systemText(errno));
    if (!S_ISREG(status.st_mode))
        return fail(error, "this is not a file.");
    if (status.st_size > kMaxFileBytes)
        return fail(error, "the file is too large.");
    return fileio::guarded(error, [&] {
        FileBytes read;
        read.size = static_cast<std::size_t>(status.st_size);
        read.data = std::make_unique_for_overwrite<std::uint8_t[]>(read.size);
        if (!readAll(file.get(), read.data.get(), read.size))
            return fail(error, "the file could not be read in full.");
        bytes = std::move(read);
        return true;
    });
}

bool replaceFile(const std::string& path, std::span<const std::uint8_t> bytes, std::string* error)
{
    return fileio::guarded(error, [&] {
        const std::filesystem::path target = finalTarget(path);
        const std::optional<mode_t> mode = existingMode(target);
        std::string name;
        Descriptor file(createBeside(target, 0666, name));
        if (!file.isOpen())
            return fileio::fail(error, systemText(errno));
        if (mode)
            static_cast<void>(::fchmod(file.get(), *mode)); // not ours to change: still writable
        const bool whole = writeAll(file.get(), bytes) && ::fsync(file.get()) == 0 &&
                           file.close() && std::rename(name.c_str(), target.c_str()) == 0;
        if (!whole) {
            const int code = errno;
            ::unlink(name.c_str());
            return fileio::fail(error, systemText(code));
        }
        syncFolder(target);
        return true;
    });
}

} // namespace zre
