#include "platform/posix/file_copier.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/errors.h"
#include "platform/posix/extra_attributes.h"
#include "platform/posix/file_times.h"
#include "platform/posix/native_path.h"
#include "platform/posix/rights.h"

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
    const int error =
        changeIn(holder, [&] { return statEntry(holder.directory, holder.entry(), false, old); });
    if (error == ENOENT) return {};
    if (error != 0) return systemFailure(error, place.core);
    if (isSame(old, source)) return refuse(error_number::sharingViolation, place);
    if (S_ISLNK(old.stx_mode)) return {};
    const bool writable = S_ISREG(old.stx_mode) && (old.stx_mode & S_IWUSR) != 0;
    return writable ? Status() : refuse(error_number::accessDenied, place);
}

/// Makes a link under a temporary name and moves it over the name of the holder. 0 or an errno
/// value.
int placeLink(const std::string& text, const Holder& holder, const struct statx& link) {
    const int directory = holder.directory;
    const std::string temporary = makeTemporaryName();
    int error = changeIn(holder, [&] {
        return symlinkat(text.c_str(), directory, temporary.c_str()) == 0 ? 0 : errno;
    });
    if (error != 0) return error;
    // Where a link cannot be stamped, what it leads to would be changed.
    const bool changeable = keepsLinkTimes(directory);
    if (changeable) {
        error = giveAway(directory, temporary.c_str(), {link.stx_uid, link.stx_gid});
    }
    if (changeable && error == 0) {
        error = stamp({directory, temporary.c_str()}, toTimespec(link.stx_atime),
                      toTimespec(link.stx_mtime), timeStepAt(directory));
    }
    if (error == 0 && renameat(directory, temporary.c_str(), directory, holder.entry()) != 0) {
        error = errno;
    }
    if (error != 0) unlinkat(directory, temporary.c_str(), 0);
    return error;
}

}  // namespace

/// One copy. `from` finds the source, `to` is open and holds the destination.
struct PosixFileCopier::Job {
    const Place& source;
    const Place& destination;
    const Reach& from;
    const Holder& to;
    CopyObserver* observer;
};

Status PosixFileCopier::copy(const Place& source, const Place& destination, LinkRule sourceLinks,
                             CopyObserver* observer) {
    if (abandoned_.load(std::memory_order_relaxed)) {
        return refuse(error_number::requestAborted, source);
    }
    // Looked at before it is opened: to open a device may already do something to it.
    struct statx information {};
    const bool follow = sourceLinks == LinkRule::follow;
    const Reach from(source);
    const int error =
        from.error() != 0 ? from.error() : statEntry(from.fd(), from.name(), follow, information);
    if (error != 0) return failureAt(error, source);
    Status status = checkVolume(source, deviceOf(information));
    if (!status.ok()) return status;
    if (S_ISDIR(information.stx_mode)) return refuse(error_number::accessDenied, source);
    const bool isLink = S_ISLNK(information.stx_mode);
    if (!isLink && !S_ISREG(information.stx_mode)) {
        return refuse(error_number::notSupported, source);
    }
    Holder to;
    status = openHolder(destination, to);
    if (status.ok()) status = checkDestination(to, destination, information);
    if (!status.ok()) return status;
    const Job job{source, destination, from, to, observer};
    return isLink ? copyLink(job, information) : copyContent(job, nullptr, follow);
}

/// `writeTime`: null for the source's own.
Status PosixFileCopier::copyContent(const Job& job, const timespec* writeTime, bool follow) {
    UniqueFd input;
    const int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | (follow ? 0 : O_NOFOLLOW);
    int error = openQuietly(job.from.fd(), job.from.name(), flags, input);
    if (error != 0) return failureAt(error, job.source);
    // Taken before the reading: a source that changes meanwhile keeps a later time than its copy
    // and is copied again by the next run.
    struct stat before {};
    if (fstat(input.get(), &before) != 0) return systemFailure(errno, job.source.core);
    if (!S_ISREG(before.st_mode)) return refuse(error_number::notSupported, job.source);

    TemporaryFile output;
    error = changeIn(job.to, [&] { return output.create(job.to.directory, 0600); });
    if (error == 0) {
        error = fill(output, input.get(), before,
                     writeTime != nullptr ? *writeTime : before.st_mtim, job.observer);
    }
    struct stat made {};
    if (error == 0 && fstat(output.fd(), &made) != 0) error = errno;
    if (error == 0) error = output.commit(job.to.entry());
    if (error != 0) return systemFailure(error, job.destination.core);
    // A volume that keeps no time has the file copied again, which is no failure of this copy.
    (void)checkStamp(job.to.directory, job.to.entry(), {made.st_atim, made.st_mtim});
    return {};
}

/// Bytes, owner, mode, attributes and times, in this order, since each of the later ones bars or
/// changes one before.
int PosixFileCopier::fill(TemporaryFile& output, int input, const struct stat& before,
                          const timespec& writeTime, CopyObserver* observer) {
    int error = data_.copy(input, before, output.fd(), observer);
    if (error == 0 && ownerOf(before) != ownerOf(output.information())) {
        error = giveAway(output.fd(), "", ownerOf(before));
    }
    if (error == 0) error = keepMode(output.fd(), keepableMode(output.fd(), before));
    ExtraAttributes extras;
    if (error == 0) {
        error = extras.copy(input, before.st_dev,
                            {output.fd(), output.information().st_dev, before.st_mode & 0777,
                             handsDownAccessList(output.directory())});
    }
    if (error != 0) return error;
    error = stamp({output.fd()}, before.st_atim, writeTime, timeStepAt(output.fd()));
    if (error != 0) return error;
    return fsync(output.fd()) == 0 || errno == EINVAL || errno == EROFS ? 0 : errno;
}

Status PosixFileCopier::copyLink(const Job& job, const struct statx& link) {
    std::string text;
    int error = readLink(job.from.fd(), job.from.name(), text);
    if (error != 0) return failureAt(error, job.source);
    // Another process that clears leftovers may take the temporary link away: there is no lock on
    // links. A second attempt is then enough.
    error = placeLink(text, job.to, link);
    if (error == ENOENT || error == EEXIST) error = placeLink(text, job.to, link);
    if (isLinkRefusalAt(error, job.to.directory)) {
        struct statx target {};
        if (statEntry(job.from.fd(), job.from.name(), true, target) != 0 ||
            !S_ISREG(target.stx_mode)) {
            return refuse(error_number::notSupported, job.source);
        }
        const timespec time = toTimespec(link.stx_mtime);
        return copyContent(job, &time, true);
    }
    if (error != 0) return systemFailure(error, job.destination.core);
    if (job.observer != nullptr) job.observer->chunkFinished(text.size());
    return {};
}

}  // namespace coffrelune
