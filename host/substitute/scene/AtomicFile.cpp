// Atomic file.
#include "AtomicFile.h"

#include "InputError.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
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
    explicit Temporary(const std::string& temporaryPath) : path(temporaryPath) {}
    ~Temporary()
    {
        if (!kept)
            ::unlink(path.c_str());
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;
    void keep() { kept = true; }

private:
    const std::string path;
    bool kept = false;
};

// Opens a new file in a folder, with the permissions that new files get.
int openNew(const std::string& folder, std::string& path)
{
    static unsigned count = 0;
    for (int attempt = 0; attempt < 1000; ++attempt) {
        path = folder + "/.sstr-" + std::to_string(::getpid()) + "-" + std::to_string(count++) + ".new";
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file >= 0 || errno != EEXIST)
            return file;
    }
    return -1;
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
    std::string temporaryPath;
    OpenFile file(openNew(folder, temporaryPath));
    if (file.handle() < 0) {
        const int problem = errno;
        fail(path, "no file can be made in the folder \"" + folder + "\": " + std::strerror(problem) + ".");
    }
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
