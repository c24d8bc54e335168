#include "platform/posix/file_copier.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/errors.h"
#include "platform/posix/file_times.h"
#include "platform/posix/native_path.h"
#include "platform/posix/temporary_file.h"

namespace coffrelune {
namespace {

timespec toTimespec(const statx_timestamp& time) {
    timespec result{};
    result.tv_sec = time.tv_sec;
    result.tv_nsec = time.tv_nsec;
    return result;
}

Status refuse(std::uint32_t number, const Place& place) {
    return Status::failure(number, place.core);
}

bool isSame(const struct statx& a, const struct statx& b) {
    return a.stx_ino == b.stx_ino && deviceOf(a) == deviceOf(b);
}

/// A copy replaces files and links, never anything else, and no read-only file.
Status checkDestination(const Holder& holder, const Place& place, const struct statx& source) {
    struct statx old {};
    const int error = statEntry(holder.directory.get(), holder.name.c_str(), false, old);
    if (error == ENOENT) return {};
    if (error != 0) return systemFailure(error, place.core);
    if (isSame(old, source)) return refuse(error_number::sharingViolation, place);
    if (S_ISLNK(old.stx_mode)) return {};
    const bool writable = S_ISREG(old.stx_mode) && (old.stx_mode & S_IWUSR) != 0;
    return writable ? Status() : refuse(error_number::accessDenied, place);
}

/// Volumes without Unix permissions refuse most modes, yet may hold the read-only mark.
int keepMode(int fd, mode_t mode) {
    if (fchmod(fd, mode & 0777) == 0) return 0;
    if (errno != EPERM && errno != EOPNOTSUPP) return errno;
    struct stat now {};
    if ((mode & S_IWUSR) != 0 || fstat(fd, &now) != 0) return 0;
    constexpr mode_t anyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
    [[maybe_unused]] const int ignored = fchmod(fd, now.st_mode & 0777 & ~anyWrite);
    return 0;
}

/// Makes a link under a temporary name and moves it over `name`. 0 or an errno value.
int placeLink(const std::string& text, const Holder& holder, const struct statx& link) {
    const int directory = holder.directory.get();
    const std::string temporary = makeTemporaryName();
    if (symlinkat(text.c_str(), directory, temporary.c_str()) != 0) return errno;
    int error = stamp({directory, temporary.c_str()}, toTimespec(link.stx_atime),
                      toTimespec(link.stx_mtime));
    if (error == 0 && renameat(directory, temporary.c_str(), directory, holder.name.c_str()) != 0) {
        error = errno;
    }
    if (error != 0) unlinkat(directory, temporary.c_str(), 0);
    return error;
}

}  // namespace

Status PosixFileCopier::copy(const Place& source, const Place& destination, LinkRule sourceLinks,
                             CopyObserver* observer) {
    if (abandoned_.load(std::memory_order_relaxed)) {
        return refuse(error_number::requestAborted, source);
    }
    // Looked at before it is opened: to open a device may already do something to it.
    struct statx information {};
    const bool follow = sourceLinks == LinkRule::follow;
    const int error = statPath(source.native, follow, information);
    if (error != 0) return failureAt(error, source);
    Status status = checkVolume(source, deviceOf(information));
    if (!status.ok()) return status;
    if (S_ISDIR(information.stx_mode)) return refuse(error_number::accessDenied, source);
    const bool isLink = S_ISLNK(information.stx_mode);
    if (!isLink && !S_ISREG(information.stx_mode)) {
        return refuse(error_number::notSupported, source);
    }
    Holder holder;
    status = openHolder(destination, holder);
    if (status.ok()) status = checkDestination(holder, destination, information);
    if (!status.ok()) return status;
    if (isLink) return copyLink(source, information, holder, destination, observer);
    return copyContent(source, holder, destination, nullptr, follow ? 0 : O_NOFOLLOW, observer);
}

/// `writeTime`: null for the source's own.
Status PosixFileCopier::copyContent(const Place& source, const Holder& holder,
                                    const Place& destination, const timespec* writeTime,
                                    int openFlags, CopyObserver* observer) {
    UniqueFd input;
    int error = openPath(source.native, O_RDONLY | O_NONBLOCK | O_NOCTTY | openFlags, input);
    if (error != 0) return failureAt(error, source);
    // Taken before the reading: a source that changes meanwhile keeps a later time than its copy
    // and is copied again by the next run.
    struct stat before {};
    if (fstat(input.get(), &before) != 0) return systemFailure(errno, source.core);
    if (!S_ISREG(before.st_mode)) return refuse(error_number::notSupported, source);

    TemporaryFile output;
    error = output.create(holder.directory.get(), 0600);
    if (error == 0) error = data_.copy(input.get(), before, output.fd(), observer);
    if (error == 0) error = keepMode(output.fd(), before.st_mode);
    if (error == 0) {
        timespec unchanged{};
        unchanged.tv_nsec = UTIME_OMIT;
        error = stamp({output.fd()}, unchanged, writeTime != nullptr ? *writeTime : before.st_mtim);
    }
    if (error == 0) error = output.commit(holder.name.c_str());
    return error == 0 ? Status() : systemFailure(error, destination.core);
}

Status PosixFileCopier::copyLink(const Place& source, const struct statx& link,
                                 const Holder& holder, const Place& destination,
                                 CopyObserver* observer) {
    std::string text;
    const ShortPath reach(source.native);
    int error = reach.error() != 0 ? reach.error() : readLink(reach.fd(), reach.path(), text);
    if (error != 0) return failureAt(error, source);
    // Another process that clears leftovers may take the temporary link away: there is no lock on
    // links. A second attempt is then enough.
    error = placeLink(text, holder, link);
    if (error == ENOENT || error == EEXIST) error = placeLink(text, holder, link);
    if (error == EPERM || error == EOPNOTSUPP || error == ENOSYS) {
        struct statx target {};
        if (statPath(source.native, true, target) != 0 || !S_ISREG(target.stx_mode)) {
            return refuse(error_number::notSupported, source);
        }
        const timespec time = toTimespec(link.stx_mtime);
        return copyContent(source, holder, destination, &time, 0, observer);
    }
    if (error != 0) return systemFailure(error, destination.core);
    if (observer != nullptr) observer->chunkFinished(text.size());
    return {};
}

}  // namespace coffrelune
