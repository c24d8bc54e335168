#include "platform/posix/whole_file.h"

#include <algorithm>
#include <cerrno>

#include "platform/posix/interrupted.h"
#include "platform/posix/native_path.h"
#include "platform/posix/rights.h"
#include "platform/posix/temporary_file.h"

namespace coffrelune {
namespace {

/// A file system that cannot flush a directory keeps its names durable by itself.
int flushDirectory(int directory) {
    UniqueFd readable;
    const int error = openEntry(directory, ".", O_RDONLY | O_DIRECTORY, readable);
    if (error != 0) return error == EACCES ? 0 : error;
    if (fsync(readable.get()) == 0 || errno == EINVAL || errno == EOPNOTSUPP) return 0;
    return errno;
}

/// Gives the new file what the old one had, so that a run as root leaves a user's file his own.
int keepOwnerAndMode(int fd, const struct stat& old) {
    struct stat now {};
    if (fstat(fd, &now) != 0) return errno;
    const bool foreign = now.st_uid != old.st_uid || now.st_gid != old.st_gid;
    [[maybe_unused]] const int ignored = foreign ? fchown(fd, old.st_uid, old.st_gid) : 0;
    return keepMode(fd, old.st_mode);
}

int statOld(int directory, const char* name, struct stat& old, bool& exists) {
    exists = fstatat(directory, name, &old, AT_SYMLINK_NOFOLLOW) == 0;
    if (!exists) return errno == ENOENT ? 0 : errno;
    if (S_ISLNK(old.st_mode)) return ELOOP;
    return S_ISREG(old.st_mode) && (old.st_mode & S_IWUSR) != 0 ? 0 : EACCES;
}

}  // namespace

int writeAll(int fd, const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t written = uninterrupted([&] { return write(fd, bytes, size); });
        if (written < 0) return errno;
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
    return 0;
}

int readWholeFile(const std::string& path, std::uint64_t limit, std::string& bytes) {
    const ShortPath reach(path);
    if (reach.error() == 0) return readWholeEntry(reach.fd(), reach.path(), true, limit, bytes);
    bytes.clear();
    return reach.error();
}

int readWholeEntry(int directory, const char* name, bool follow, std::uint64_t limit,
                   std::string& bytes) {
    bytes.clear();
    struct statx kind {};
    int error = statEntry(directory, name, follow, kind);
    if (error != 0) return error;
    if (S_ISLNK(kind.stx_mode)) return ELOOP;
    if (!S_ISREG(kind.stx_mode)) return EACCES;  // a FIFO would wait for its other end
    UniqueFd fd;
    error = openEntry(directory, name, O_RDONLY | O_NONBLOCK | (follow ? 0 : O_NOFOLLOW), fd);
    if (error != 0) return error;
    // After the opening: "too large" also says that the file may be read.
    if (kind.stx_size > limit) return EFBIG;
    for (;;) {
        // Files of the kernel have no size before they are read.
        const std::size_t done = bytes.size();
        bytes.resize(done + std::max<std::size_t>(
                                4096, kind.stx_size - std::min<std::size_t>(done, kind.stx_size)));
        const ssize_t count =
            uninterrupted([&] { return read(fd.get(), bytes.data() + done, bytes.size() - done); });
        error = count < 0 ? errno : 0;
        // Only its name can say that a file is not there: who reads "absent" writes a new one.
        if (error == ENOENT || error == ENOTDIR) error = EIO;
        bytes.resize(done + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (bytes.size() > limit) error = EFBIG;
        if (error != 0) bytes.clear();
        if (error != 0 || count == 0) return error;
    }
}

int writeWholeFile(const std::string& path, const std::string& bytes, Durability durability) {
    const std::string target = canonicalPath(path);
    const std::size_t slash = target.rfind('/');
    const std::string name = target.substr(slash + 1);
    if (name.empty()) return EACCES;
    UniqueFd directory;
    const int error =
        openPath(slash == 0 ? "/" : target.substr(0, slash), O_PATH | O_DIRECTORY, directory);
    return error != 0 ? error : writeWholeEntry(directory.get(), name.c_str(), bytes, durability);
}

int writeWholeEntry(int directory, const char* name, const std::string& bytes,
                    Durability durability) {
    struct stat old {};
    bool exists = false;
    int error = statOld(directory, name, old, exists);
    if (error != 0) return error;
    const bool now = durability == Durability::now;
    TemporaryFile file;
    error = file.create(directory, exists ? 0600 : 0644);
    if (error == 0) error = writeAll(file.fd(), bytes.data(), bytes.size());
    if (error == 0 && exists) error = keepOwnerAndMode(file.fd(), old);
    if (error == 0 && now && fsync(file.fd()) != 0) error = errno;
    if (error == 0) error = file.commit(name);
    return error == 0 && now ? flushDirectory(directory) : error;
}

}  // namespace coffrelune
