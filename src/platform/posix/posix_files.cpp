#include "platform/posix/posix_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/errors.h"
#include "platform/posix/extra_attributes.h"
#include "platform/posix/file_times.h"
#include "platform/posix/native_path.h"
#include "platform/posix/own_files.h"
#include "platform/posix/posix_batch.h"
#include "platform/posix/posix_directory.h"
#include "platform/posix/posix_held_tree.h"
#include "platform/posix/posix_walk.h"
#include "platform/posix/rights.h"
#include "platform/posix/whole_file.h"

namespace coffrelune {

/// An entry that is about to be changed, with its holder open.
struct PosixFiles::Target {
    Place place;
    Holder holder;
    struct stat information {};

    int directory() const { return holder.directory; }
    const char* name() const { return holder.entry(); }
    bool isTop() const { return holder.name == "."; }  // of a drive or of a hold
    Status outcome(int error) const {
        return error == 0 ? Status() : systemFailure(error, place.core);
    }
};

/// A directory that was opened.
struct PosixFiles::Opened {
    Place place;
    UniqueFd fd;
    struct statx information {};
};

namespace {

std::string withoutSlash(std::string path) {
    if (path.ends_with('\\')) path.pop_back();
    return path;
}

constexpr mode_t anyWrite = S_IWUSR | S_IWGRP | S_IWOTH;

/// A time of 0 leaves the one that is there.
timespec timeOr(std::uint64_t fileTime, timespec unchanged) {
    return fileTime == 0 ? unchanged : toTimespec(fileTime);
}

/// A volume that knows one read-only mark instead of modes wants all write bits at once.
int changeMode(int directory, const char* name, mode_t mode) {
    if (fchmodat(directory, name, mode, AT_SYMLINK_NOFOLLOW) == 0) return 0;
    if (errno != EPERM || (mode & S_IWUSR) == 0) return errno;
    return fchmodat(directory, name, mode | anyWrite, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : EPERM;
}

/// Of a name that cannot be made in an open directory: unless that has been removed, it is the name
/// that is refused.
int refusalOf(int error, const Holder& holder) {
    struct stat directory {};
    if (error != EINVAL && error != ENOENT) return error;
    const bool stands = fstat(holder.directory, &directory) == 0 && directory.st_nlink > 0;
    return stands ? EILSEQ : error;
}

int unlinkEntry(const Holder& holder, int flags) {
    return unlinkat(holder.directory, holder.entry(), flags) == 0 ? 0 : errno;
}

/// Clears the program's own files out of a directory that holds nothing else. ENOTEMPTY when
/// something else is in it, or when that cannot be told.
int clearDirectory(const Holder& holder, TreeLocks& locks) {
    Holder inside;
    inside.held = holder.held;
    const int error = openEntry(holder.directory, holder.entry(),
                                O_RDONLY | O_DIRECTORY | O_NOFOLLOW, inside.opened);
    if (error != 0) return ENOTEMPTY;
    inside.directory = inside.opened.get();
    TreeClaim claim;
    if (!claim.take(locks, inside.directory, TreeUse::write)) return ENOTEMPTY;
    return changeIn(inside, [&] { return clearOwnFiles(inside.directory); });
}

/// Where the system does not say where mounts begin: a device other than the parent's.
bool isOtherDevice(const Place& place, dev_t device) {
    Holder holder;
    struct stat parent {};
    return !place.isRoot() && openHolder(place, holder).ok() && holder.name != "." &&
           fstat(holder.directory, &parent) == 0 && parent.st_dev != device;
}

}  // namespace

PosixFiles::PosixFiles(const DriveTable& drives, MountSources mounts,
                       std::shared_ptr<TreeLocks> locks, Descent descent)
    : drives_(drives), mounts_(std::move(mounts)), locks_(std::move(locks)), descent_(descent) {}

Status PosixFiles::locate(const std::string& path, Place& place) const {
    Status status = drives_.paths().locate(path, place);
    if (status.ok()) place.hold = holds_->innermost(place.native);
    return status;
}

Status PosixFiles::look(const std::string& path, bool follow, Place& place,
                        struct statx& information) const {
    Status status = locate(path, place);
    return status.ok() ? statPlace(place, follow, information) : status;
}

Status PosixFiles::reach(const std::string& path, Target& target) const {
    Status status = locate(path, target.place);
    if (status.ok()) status = openHolder(target.place, target.holder);
    if (!status.ok()) return status;
    const int looked =
        fstatat(target.directory(), target.name(), &target.information, AT_SYMLINK_NOFOLLOW);
    return target.outcome(looked == 0 ? 0 : errno);
}

Status PosixFiles::open(const std::string& path, int flags, Opened& opened) const {
    Status status = locate(path, opened.place);
    return status.ok() ? openAt(flags, opened) : status;
}

Status PosixFiles::openAt(int flags, Opened& opened) {
    const Place& place = opened.place;
    const int error = openPlace(place, flags | O_DIRECTORY, opened.fd);
    if (error != 0) return failureAt(error, place);
    const int looked = statEntry(opened.fd.get(), "", false, opened.information);
    if (looked != 0) return systemFailure(looked, place.core);
    // A held directory that was removed meanwhile can still be opened, and would seem empty.
    const bool isHold = place.hold != nullptr && place.native == place.hold->native;
    if (isHold && place.hold->counted && opened.information.stx_nlink == 0) {
        return systemFailure(ENOENT, place.core);
    }
    return checkVolume(place, deviceOf(opened.information));
}

Status PosixFiles::hold(const std::string& root, std::unique_ptr<HeldTree>& held) {
    Place place;
    Status status = drives_.paths().locate(root, place);
    if (!status.ok()) return status;
    auto hold = std::make_shared<Hold>();
    const int error = openPlace(place, O_RDONLY | O_DIRECTORY, hold->directory);
    if (error != 0) return failureAt(error, place);
    struct stat information {};
    if (fstat(hold->directory.get(), &information) != 0) return systemFailure(errno, root);
    status = checkVolume(place, information.st_dev);
    if (!status.ok()) return status;
    hold->core = root;
    hold->native = place.native;
    hold->device = information.st_dev;
    hold->counted = information.st_nlink > 0;
    hold->countsSubdirectories = countsSubdirectories(hold->directory.get());
    hold->replacesDirectories = replacesDirectories(hold->directory.get());
    hold->descent = descent_;
    TreePlace tree = treePlaceOf(hold->directory.get(), place.native, mounts_);
    held = std::make_unique<PosixHeldTree>(std::move(hold), std::move(tree), holds_, locks_);
    return {};
}

Status PosixFiles::openDirectory(const std::string& path, LinkRule links, Wanted wanted,
                                 std::unique_ptr<Directory>& directory) {
    Place place;
    Status status = locate(path, place);
    std::unique_ptr<PosixDirectory> opened;
    if (status.ok()) status = openDirectoryAt(place, links, wanted, surroundings(), opened);
    if (status.ok()) directory = std::move(opened);
    return status;
}

Status PosixFiles::openDirectoryAt(const Place& place, LinkRule links, Wanted wanted,
                                   const PosixDirectory::Surroundings& around,
                                   std::unique_ptr<PosixDirectory>& directory) {
    const int access = wanted == Wanted::nothing ? O_PATH : O_RDONLY;
    Opened opened;
    opened.place = place;
    Status status = openAt(links == LinkRule::follow ? access : access | O_NOFOLLOW, opened);
    if (!status.ok()) return status;
    directory = std::make_unique<PosixDirectory>(std::move(opened.fd), opened.information,
                                                 std::move(opened.place), wanted, around);
    return {};
}

PosixDirectory::Surroundings PosixFiles::surroundings() {
    return {drives_.pseudoDevices(), openDirectories_, changes_};
}

std::unique_ptr<WalkAhead> PosixFiles::startWalk() {
    const auto locatePair = [this](const DirectoryPair& pair, PlacedPair& placed) {
        placed.pair = pair;
        return locate(pair.source, placed.source).ok() && locate(pair.target, placed.target).ok();
    };
    const auto read = [around = surroundings()](const PlacedPair& placed) {
        // As many as a listing of one system call gives; the rest of a large directory is read when
        // it is asked for.
        constexpr std::size_t block = 1024;
        OpenedPair pair;
        std::unique_ptr<PosixDirectory> source;
        std::unique_ptr<PosixDirectory> target;
        pair.sourceStatus =
            openDirectoryAt(placed.source, placed.pair.sourceLinks, Wanted::files, around, source);
        pair.targetStatus = openDirectoryAt(placed.target, placed.pair.targetLinks, Wanted::nothing,
                                            around, target);
        if (source != nullptr) source->readAhead(block);
        if (source != nullptr && target != nullptr) target->lookAhead(*source);
        pair.source = std::move(source);
        pair.target = std::move(target);
        return pair;
    };
    return std::make_unique<PosixWalk>(locatePair, read, std::make_unique<PlainWalk>(*this));
}

Status PosixFiles::lookUp(const std::string& path, LinkRule links, FileEntry& entry) {
    Place place;
    struct statx information {};
    Status status = look(path, links == LinkRule::follow, place, information);
    if (!status.ok()) return status;
    const std::string name = place.name();
    if (!fillEntry(information, name, entry)) return systemFailure(ENOENT, path);
    entry.name = name;
    if (entry.isDirectory() && !tellsMountPoints(information)) {
        entry.mountPoint = isOtherDevice(place, deviceOf(information));
    }
    return {};
}

Status PosixFiles::identify(const std::string& path, FileId& id) {
    Place place;
    struct statx information {};
    Status status = look(path, true, place, information);
    if (status.ok()) id = {deviceOf(information), information.stx_ino};
    return status;
}

std::string PosixFiles::resolve(const std::string& path) {
    return drives_.resolve(path);
}

Status PosixFiles::createDirectory(const std::string& path, DirectoryAccess access) {
    ++changes_;
    Place place;
    Holder holder;
    Status status = locate(path, place);
    if (status.ok()) status = openHolder(place, holder);
    if (!status.ok()) return status;
    const mode_t mode = access == DirectoryAccess::ownerOnly ? 0700 : 0777;
    const int error = changeIn(
        holder, [&] { return mkdirat(holder.directory, holder.entry(), mode) == 0 ? 0 : errno; });
    if (error == 0 && access == DirectoryAccess::ownerOnly) closed_.insert(withoutSlash(path));
    struct stat made {};
    const int flags = AT_SYMLINK_NOFOLLOW;
    if (error == 0 && fstatat(holder.directory, holder.entry(), &made, flags) == 0) {
        made_.add(made);
    }
    return error == 0 ? Status() : systemFailure(refusalOf(error, holder), path);
}

Status PosixFiles::matchDirectory(const std::string& source, const std::string& target) {
    Opened from;
    Opened to;
    Status status = open(source, O_PATH | O_NOFOLLOW, from);
    if (status.ok()) status = open(target, O_PATH | O_NOFOLLOW, to);
    if (!status.ok()) return status;
    const struct stat original = statOf(from.information);
    const bool isNew = closed_.erase(withoutSlash(target)) != 0;
    int error = 0;
    if (keepsRights(from.fd.get(), original.st_dev)) {
        error = matchRights(to.fd.get(), statOf(to.information), original);
        const bool known = attributeVolumes_.know(from.fd.get(), deviceOf(from.information)) &&
                           attributeVolumes_.know(to.fd.get(), deviceOf(to.information));
        if (error == 0 && known) error = matchExtras(from.fd.get(), to.fd.get());
        // The last of them: each entry that was made in it has changed it.
        if (error == 0) matchTime(to.fd.get(), original);
    } else if (isNew) {
        error = openToAll(to.fd.get());
    }
    return error == 0 ? Status() : systemFailure(error, target);
}

Status PosixFiles::removeDirectory(const std::string& path) {
    ++changes_;
    Target target;
    Status status = reach(path, target);
    if (!status.ok()) return status;
    if (!S_ISDIR(target.information.st_mode)) return target.outcome(ENOTDIR);
    if (target.isTop()) return target.outcome(EACCES);
    const auto remove = [&] { return unlinkEntry(target.holder, AT_REMOVEDIR); };
    int error = changeIn(target.holder, remove);
    if (error == ENOTEMPTY || error == EEXIST) {
        error = clearDirectory(target.holder, *locks_);
        if (error == 0) error = remove();
    }
    if (error == EEXIST) error = ENOTEMPTY;  // either says it
    if (error == EBUSY) error = ENOTDIR;     // something is mounted there
    return target.outcome(error);
}

Status PosixFiles::copyFile(const std::string& source, const std::string& destination,
                            LinkRule sourceLinks, CopyObserver* observer) {
    ++changes_;
    Place from;
    Place to;
    Status status = locate(source, from);
    if (status.ok()) status = locate(destination, to);
    return status.ok() ? copier_.copy(from, to, sourceLinks, observer) : status;
}

std::unique_ptr<CopyBatch> PosixFiles::startBatch(const std::string&, AfterFailure afterFailure,
                                                  CopyEvents& events) {
    return std::make_unique<PosixBatch>(afterFailure, events, *locks_, targets_, made_,
                                        copier_.abandoned(), changes_);
}

Status PosixFiles::setAttributes(const std::string& path, std::uint32_t attributes) {
    Target target;
    Status status = reach(path, target);
    if (!status.ok() || S_ISLNK(target.information.st_mode)) return status;
    const mode_t old = target.information.st_mode & 07777;
    const bool readOnly = (attributes & attribute::readOnly) != 0;
    const mode_t mode = readOnly ? old & ~anyWrite : old | S_IWUSR;
    return target.outcome(mode == old ? 0 : changeMode(target.directory(), target.name(), mode));
}

Status PosixFiles::setTimes(const std::string& path, const FileTimes& times) {
    Target target;
    Status status = reach(path, target);
    if (!status.ok()) return status;
    return target.outcome(stamp(
        {target.directory(), target.name()}, timeOr(times.lastAccess, target.information.st_atim),
        timeOr(times.lastWrite, target.information.st_mtim), timeStepAt(target.directory())));
}

Status PosixFiles::removeFile(const std::string& path) {
    ++changes_;
    Target target;
    Status status = reach(path, target);
    if (!status.ok()) return status;
    const mode_t mode = target.information.st_mode;
    const bool writableFile = S_ISREG(mode) && (mode & S_IWUSR) != 0;
    if (!writableFile && !S_ISLNK(mode)) return target.outcome(EACCES);
    return target.outcome(changeIn(target.holder, [&] { return unlinkEntry(target.holder, 0); }));
}

Status PosixFiles::removeLeftovers(const std::string& directory) {
    Opened opened;
    Status status = open(directory, O_RDONLY, opened);
    if (!status.ok()) return status;
    TreeClaim claim;
    const bool ours = targets_.contains(opened.fd.get());
    if (ours || !claim.take(*locks_, opened.fd.get(), TreeUse::write)) return {};  // being written
    const int error = removeTemporaries(opened.fd.get());
    return error == 0 ? Status() : systemFailure(error, directory);
}

Status PosixFiles::ownFiles(const std::string& directory, std::vector<std::string>& names) {
    Opened opened;
    Status status = open(directory, O_RDONLY, opened);
    if (!status.ok()) return status;
    const int error = listOwnFiles(opened.fd.get(), names);
    return error == 0 ? Status() : systemFailure(error, directory);
}

Status PosixFiles::readWhole(const std::string& path, std::uint64_t limit, std::string& bytes) {
    Place place;
    Status status = locate(path, place);
    if (!status.ok()) return status;
    const Reach reach(place);
    const bool follow = place.hold == nullptr;
    const int error = reach.error() != 0
                          ? reach.error()
                          : readWholeEntry(reach.fd(), reach.name(), follow, limit, bytes);
    return error == 0 ? Status() : failureAt(error, place);
}

Status PosixFiles::writeWhole(const std::string& path, const std::string& bytes,
                              Durability durability) {
    ++changes_;
    Place place;
    Holder holder;
    Status status = locate(path, place);
    if (status.ok()) status = openHolder(place, holder);
    if (!status.ok()) return status;
    const int error = changeIn(holder, [&] {
        return holder.held ? writeWholeEntry(holder.directory, holder.entry(), bytes, durability)
                           : writeWholeFile(place.native, bytes, durability);
    });
    return error == 0 ? Status() : failureAt(error, place);
}

}  // namespace coffrelune
