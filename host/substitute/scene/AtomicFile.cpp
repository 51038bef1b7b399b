// Atomic file.
#include "AtomicFile.h"

#include "InputError.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

[[noreturn]] void fail(const std::string& path, const std::string& reason)
{
    throw InputError(path + ": cannot be written: " + reason);
}

[[noreturn]] void failWith(const std::string& path, int problem)
{
    fail(path, std::string(std::strerror(problem)) + ".");
}

class OpenFile {
public:
    explicit OpenFile(int openedFile) : file(openedFile) {}
    ~OpenFile()
    {
        if (file >= 0)
            ::close(file);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    // Each returns 0 or the error number.
    int write(const std::string& content) const
    {
        for (std::size_t done = 0; done < content.size();) {
            const ssize_t n = ::write(file, content.data() + done, content.size() - done);
            if (n < 0 && errno != EINTR)
                return errno;
            if (n == 0)
                return EIO;   // no progress and no reason: to go on might never end
            if (n > 0)
                done += static_cast<std::size_t>(n);
        }
        return 0;
    }

    // Flushes to the disk; a file system that knows no flush (EINVAL) has nothing to flush.
    int flush() const { return ::fsync(file) == 0 || errno == EINVAL ? 0 : errno; }

    int close()
    {
        const int closed = ::close(file);
        file = -1;
        return closed == 0 ? 0 : errno;
    }

    int handle() const { return file; }

private:
    int file;
};

// Removes the temporary file unless it has taken the other's place.
class Temporary {
public:
    explicit Temporary(const std::string& temporaryPath) : path(temporaryPath) {}   // which outlives this
    ~Temporary()
    {
        if (!kept)
            ::unlink(path.c_str());
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;
    void keep() { kept = true; }

private:
    const std::string& path;   // no copy: memory must not run out between the file's making and its guard
    bool kept = false;
};

// Whether it is a name that openNew() gives.
bool isTemporaryName(const std::string& name)
{
    int length = 0;
    std::sscanf(name.c_str(), ".sstr-%*[0-9]-%*[0-9].new%n", &length);
    return length > 0 && name.size() == static_cast<std::size_t>(length);
}

// Opens a new file in a folder, with the permissions that new files get. It is locked as long as it is open, so
// that others see that somebody writes it; where the file system knows no locks, nobody takes it for abandoned.
int openNew(const std::string& folder, std::string& path)
{
    static unsigned count = 0;
    for (int attempt = 0; attempt < 1000; ++attempt) {
        path = folder + "/.sstr-" + std::to_string(::getpid()) + "-" + std::to_string(count++) + ".new";
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file < 0 && errno == EEXIST)
            continue;
        struct stat status;
        const bool taken = file >= 0
                           && ((::flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
                               || (::fstat(file, &status) == 0 && status.st_nlink == 0));
        if (!taken)
            return file;
        ::close(file);   // another process found it before it was locked, and removes it
    }
    errno = EBUSY;
    return -1;
}

// Removes a temporary file that nobody writes any more: its writer's lock ended with its writer, however that came.
void removeIfAbandoned(const std::string& path)
{
    const OpenFile file(::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat found, present;
    if (file.handle() >= 0 && ::flock(file.handle(), LOCK_EX | LOCK_NB) == 0 && ::fstat(file.handle(), &found) == 0
        && ::lstat(path.c_str(), &present) == 0 && S_ISREG(found.st_mode) && found.st_dev == present.st_dev
        && found.st_ino == present.st_ino)
        ::unlink(path.c_str());
}

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

void removeAbandoned(const std::string& folder)
{
    // not std::filesystem's iterator, which ends the program when memory runs out in it
    const std::unique_ptr<DIR, CloseFolder> entries(::opendir(folder.c_str()));
    while (const dirent* entry = entries ? ::readdir(entries.get()) : nullptr)
        if (isTemporaryName(entry->d_name))
            removeIfAbandoned(folder + "/" + entry->d_name);
}

// Gives the new file the old one's owner, as far as the system lets us, and its permissions.
int takeOver(const OpenFile& file, const struct stat& old)
{
    struct stat now;
    if (::fstat(file.handle(), &now) != 0)
        return errno;
    if (now.st_uid != old.st_uid || now.st_gid != old.st_gid)
        if (::fchown(file.handle(), old.st_uid, old.st_gid) != 0 && errno != EPERM)
            return errno;
    return ::fchmod(file.handle(), old.st_mode & 07777) == 0 ? 0 : errno;
}

void writeDirectly(const std::string& path, const std::string& content)
{
    OpenFile file(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    if (file.handle() < 0)
        failWith(path, errno);
    if (const int problem = file.write(content))
        failWith(path, problem);
    if (const int problem = file.close())
        failWith(path, problem);
}

void flushFolder(const std::string& path, const std::string& folder)
{
    const OpenFile directory(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.handle() < 0)
        return;   // a folder that may be written but not read cannot be flushed
    if (const int problem = directory.flush())
        throw InputError(path + ": is written, but its folder cannot be flushed to the disk: " + std::strerror(problem)
                         + ".");
}

}   // namespace

std::string linkTarget(const std::string& path)
{
    constexpr int kMostLinks = 40;   // as the system's own limit
    std::filesystem::path target = path;
    std::error_code problem;
    for (int i = 0; i < kMostLinks && std::filesystem::is_symlink(target, problem); ++i) {
        const std::filesystem::path next = std::filesystem::read_symlink(target, problem);
        if (problem)
            break;
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return target.string();
}

void replaceFile(const std::string& path, const std::string& content)
{
    if (path.empty())
        throw InputError("expected the name of a file to write, found an empty text.");
    const std::string target = linkTarget(path);
    struct stat old;
    // a link to an open pipe, as /dev/stdout is one, has a target that is no path
    if (::stat(path.c_str(), &old) == 0 && !S_ISREG(old.st_mode) && !S_ISDIR(old.st_mode))
        return writeDirectly(path, content);
    const bool exists = ::stat(target.c_str(), &old) == 0;
    if (!exists && errno != ENOENT && errno != ENOTDIR && errno != EACCES)
        failWith(path, errno);
    if (exists && S_ISDIR(old.st_mode))
        fail(path, "it is a folder.");
    if (exists && ::access(target.c_str(), W_OK) != 0)
        failWith(path, errno);   // a write-protected file is not to be replaced

    std::string folder = std::filesystem::path(target).parent_path().string();
    if (folder.empty())
        folder = ".";
    removeAbandoned(folder);   // what killed processes left, before it is in the way of this one
    std::string temporaryPath;
    OpenFile file(openNew(folder, temporaryPath));
    if (file.handle() < 0) {
        const int problem = errno;
        fail(path, "no file can be made in the folder \"" + folder + "\": " + std::strerror(problem) + ".");
    }
    const OpenFile lock(::fcntl(file.handle(), F_DUPFD_CLOEXEC, 0));   // keeps the lock until it has taken its place
    Temporary temporary(temporaryPath);
    if (exists)
        if (const int problem = takeOver(file, old))
            failWith(path, problem);
    if (const int problem = file.write(content))
        failWith(path, problem);
    if (const int problem = file.flush())
        failWith(path, problem);
    if (const int problem = file.close())
        failWith(path, problem);
    if (::rename(temporaryPath.c_str(), target.c_str()) != 0)
        failWith(path, errno);
    temporary.keep();
    flushFolder(path, folder);
}
