#include "platform/posix/posix_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/errors.h"
#include "platform/posix/file_times.h"
#include "platform/posix/native_path.h"
#include "platform/posix/posix_directory.h"
#include "platform/posix/temporary_file.h"
#include "platform/posix/whole_file.h"

namespace coffrelune {
namespace {

constexpr mode_t anyWrite = S_IWUSR | S_IWGRP | S_IWOTH;

/// An entry that is about to be changed, with its holder open.
struct Target {
    Holder holder;
    struct stat information {};

    int directory() const { return holder.directory.get(); }
    const char* name() const { return holder.name.c_str(); }
};

Status reach(const Place& place, Target& target) {
    Status status = openHolder(place, target.holder);
    if (!status.ok()) return status;
    if (fstatat(target.directory(), target.name(), &target.information, AT_SYMLINK_NOFOLLOW) != 0) {
        return systemFailure(errno, place.core);
    }
    return {};
}

Status statPlace(const Place& place, bool follow, struct statx& information) {
    const int error = statPath(place.native, follow, information);
    if (error != 0) return failureAt(error, place);
    return checkVolume(place, deviceOf(information));
}

timespec timeOrUnchanged(std::uint64_t fileTime) {
    timespec time = toTimespec(fileTime);
    if (fileTime == 0) time.tv_nsec = UTIME_OMIT;
    return time;
}

/// A volume that knows one read-only mark instead of modes wants all write bits at once.
int changeMode(const Target& target, mode_t mode) {
    if (fchmodat(target.directory(), target.name(), mode, AT_SYMLINK_NOFOLLOW) == 0) return 0;
    if (errno != EPERM || (mode & S_IWUSR) == 0) return errno;
    const mode_t all = mode | anyWrite;
    return fchmodat(target.directory(), target.name(), all, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : EPERM;
}

}  // namespace

Status PosixFiles::openDirectory(const std::string& path, LinkRule links, Wanted wanted,
                                 std::unique_ptr<Directory>& directory) {
    Place place;
    Status status = locate(path, place);
    if (!status.ok()) return status;
    int flags = O_DIRECTORY | (wanted == Wanted::nothing ? O_PATH : O_RDONLY);
    if (links != LinkRule::follow) flags |= O_NOFOLLOW;
    UniqueFd fd;
    const int error = openPath(place.native, flags, fd);
    if (error != 0) return failureAt(error, place);
    struct stat information {};
    if (fstat(fd.get(), &information) != 0) return systemFailure(errno, path);
    status = checkVolume(place, information.st_dev);
    if (!status.ok()) return status;
    directory = std::make_unique<PosixDirectory>(std::move(fd), std::move(place), wanted, drives_,
                                                 openDirectories_);
    return {};
}

Status PosixFiles::lookUp(const std::string& path, LinkRule links, FileEntry& entry) {
    Place place;
    Status status = locate(path, place);
    if (!status.ok()) return status;
    struct statx information {};
    status = statPlace(place, links == LinkRule::follow, information);
    if (!status.ok()) return status;
    if (!fillEntry(information, place.name(), entry)) return systemFailure(ENOENT, path);
    return {};
}

Status PosixFiles::identify(const std::string& path, FileId& id) {
    Place place;
    Status status = locate(path, place);
    if (!status.ok()) return status;
    struct statx information {};
    status = statPlace(place, true, information);
    if (status.ok()) id = {deviceOf(information), information.stx_ino};
    return status;
}

std::string PosixFiles::resolve(const std::string& path) {
    return drives_.resolve(path);
}

Status PosixFiles::createDirectory(const std::string& path) {
    Place place;
    Status status = locate(path, place);
    if (!status.ok()) return status;
    Holder holder;
    status = openHolder(place, holder);
    if (!status.ok()) return status;
    if (mkdirat(holder.directory.get(), holder.name.c_str(), 0777) == 0) return {};
    return systemFailure(errno, path);
}

Status PosixFiles::copyFile(const std::string& source, const std::string& destination,
                            LinkRule sourceLinks, CopyObserver* observer) {
    Place from;
    Place to;
    Status status = locate(source, from);
    if (status.ok()) status = locate(destination, to);
    return status.ok() ? copier_.copy(from, to, sourceLinks, observer) : status;
}

Status PosixFiles::setAttributes(const std::string& path, std::uint32_t attributes) {
    Place place;
    Status status = locate(path, place);
    if (!status.ok()) return status;
    Target target;
    status = reach(place, target);
    if (!status.ok() || S_ISLNK(target.information.st_mode)) return status;
    const mode_t old = target.information.st_mode & 07777;
    const bool readOnly = (attributes & attribute::readOnly) != 0;
    const mode_t mode = readOnly ? old & ~anyWrite : old | S_IWUSR;
    const int error = mode == old ? 0 : changeMode(target, mode);
    return error == 0 ? Status() : systemFailure(error, path);
}

Status PosixFiles::setTimes(const std::string& path, const FileTimes& times) {
    Place place;
    Status status = locate(path, place);
    if (!status.ok()) return status;
    Target target;
    status = reach(place, target);
    if (!status.ok()) return status;
    const int error = stamp({target.directory(), target.name()}, timeOrUnchanged(times.lastAccess),
                            timeOrUnchanged(times.lastWrite));
    return error == 0 ? Status() : systemFailure(error, path);
}

Status PosixFiles::removeFile(const std::string& path) {
    Place place;
    Status status = locate(path, place);
    if (!status.ok()) return status;
    Target target;
    status = reach(place, target);
    if (!status.ok()) return status;
    const mode_t mode = target.information.st_mode;
    const bool writableFile = S_ISREG(mode) && (mode & S_IWUSR) != 0;
    if (!writableFile && !S_ISLNK(mode)) {
        return Status::failure(error_number::accessDenied, path);
    }
    if (unlinkat(target.directory(), target.name(), 0) == 0) return {};
    return systemFailure(errno, path);
}

Status PosixFiles::removeLeftovers(const std::string& directory) {
    Place place;
    Status status = locate(directory, place);
    if (!status.ok()) return status;
    UniqueFd fd;
    int error = openPath(place.native, O_RDONLY | O_DIRECTORY, fd);
    if (error != 0) return failureAt(error, place);
    struct stat information {};
    if (fstat(fd.get(), &information) != 0) return systemFailure(errno, directory);
    status = checkVolume(place, information.st_dev);
    if (!status.ok()) return status;
    error = removeTemporaries(fd.get());
    return error == 0 ? Status() : systemFailure(error, directory);
}

Status PosixFiles::readWhole(const std::string& path, std::uint64_t limit, std::string& bytes) {
    Place place;
    Status status = locate(path, place);
    if (!status.ok()) return status;
    const int error = readWholeFile(place.native, limit, bytes);
    return error == 0 ? Status() : failureAt(error, place);
}

Status PosixFiles::writeWhole(const std::string& path, const std::string& bytes) {
    Place place;
    Status status = locate(path, place);
    if (!status.ok()) return status;
    Holder holder;
    status = openHolder(place, holder);
    if (!status.ok()) return status;
    const int error = writeWholeFile(place.native, bytes);
    return error == 0 ? Status() : failureAt(error, place);
}

}  // namespace coffrelune
