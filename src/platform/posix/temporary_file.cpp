#include "platform/posix/temporary_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <ctime>

#include "platform/names.h"
#include "platform/posix/interrupted.h"
#include "platform/posix/staged_directory.h"

namespace coffrelune {
namespace {

int lockNow(int fd) {
    return uninterrupted([&] { return flock(fd, LOCK_EX | LOCK_NB); }) == 0 ? 0 : errno;
}

/// A network file system locks only what is open for writing; a copy that was finished but for its
/// name may be read-only.
UniqueFd openForLock(int directory, const char* name) {
    constexpr int flags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    UniqueFd fd(openat(directory, name, O_RDWR | flags));
    if (!fd.valid()) fd.reset(openat(directory, name, O_RDONLY | flags));
    return fd;
}

/// Takes a file away that `fd` has open. Some servers remove no open file.
int removeOpen(int directory, const char* name, UniqueFd& fd) {
    if (unlinkat(directory, name, 0) == 0 || errno == ENOENT) return 0;
    const int error = errno;
    if (error != EBUSY && error != EACCES && error != ETXTBSY) return error;
    fd.reset();
    return unlinkat(directory, name, 0) == 0 || errno == ENOENT ? 0 : errno;
}

}  // namespace

std::uint64_t randomNumber() {
    std::uint64_t number = 0;
    if (getrandom(&number, sizeof number, 0) != sizeof number) {
        // Names need to differ, not to be secret: O_EXCL refuses one that is taken.
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        number = static_cast<std::uint64_t>(now.tv_nsec) << 32U ^
                 static_cast<std::uint64_t>(now.tv_sec) ^ static_cast<std::uint64_t>(getpid());
    }
    return number;
}

std::string makeTemporaryName() {
    return ownFileName(OwnFile::temporary, randomNumber());
}

TemporaryFile::~TemporaryFile() {
    // What cannot be removed now is a leftover, which the next run removes.
    if (!name_.empty()) (void)removeOpen(directory_, name_.c_str(), file_);
}

int TemporaryFile::create(int directory, mode_t mode) {
    directory_ = directory;
    int error = EEXIST;
    for (int attempt = 0; attempt < 100 && error == EEXIST; ++attempt) error = tryCreate(mode);
    return error;
}

/// EEXIST when another name must be tried: this one is taken, or another process that clears
/// leftovers got hold of the new file before it was locked.
int TemporaryFile::tryCreate(mode_t mode) {
    std::string name = makeTemporaryName();
    constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    file_.reset(uninterrupted([&] { return openat(directory_, name.c_str(), flags, mode); }));
    if (!file_.valid()) return errno;
    const int locked = lockNow(file_.get());
    if (locked == EWOULDBLOCK || fstat(file_.get(), &information_) != 0 ||
        information_.st_nlink == 0) {
        file_.reset();
        unlinkat(directory_, name.c_str(), 0);
        return EEXIST;
    }
    name_ = std::move(name);
    return 0;
}

int TemporaryFile::commit(const char* name) {
    // The lock belongs to both descriptors: it holds until the file has its name, though the first
    // is closed before, to learn of late write errors.
    UniqueFd lock(fcntl(file_.get(), F_DUPFD_CLOEXEC, 0));
    if (!lock.valid()) return errno;
    if (close(file_.release()) != 0 && errno != EINTR) return errno;
    int error = rename(name);
    if (error == EBUSY || error == EACCES || error == ETXTBSY) {
        lock.reset();  // some servers rename no open file
        error = rename(name);
    }
    return error;
}

int TemporaryFile::rename(const char* name) {
    if (renameat(directory_, name_.c_str(), directory_, name) != 0) return errno;
    name_.clear();
    return 0;
}

int removeTemporary(int directory, const char* name) {
    struct stat information {};
    if (fstatat(directory, name, &information, AT_SYMLINK_NOFOLLOW) != 0) return 0;
    UniqueFd lock;
    if (S_ISREG(information.st_mode)) {
        lock = openForLock(directory, name);
        if (!lock.valid() || lockNow(lock.get()) != 0) return 0;
    } else if (S_ISDIR(information.st_mode)) {
        return removeStaged(directory, name);
    } else if (!S_ISLNK(information.st_mode)) {
        return 0;
    }
    return removeOpen(directory, name, lock);
}

}  // namespace coffrelune
