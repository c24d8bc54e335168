#include "platform/posix/posix_held_tree.h"

#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "platform/posix/errors.h"
#include "platform/posix/file_times.h"
#include "platform/posix/mount_table.h"
#include "platform/posix/native_path.h"
#include "platform/posix/temporary_file.h"
#include "platform/posix/whole_file.h"

namespace coffrelune {
namespace {

/// File systems whose inode numbers outlast a mount, and those of them whose own number tells one
/// volume from another as long as both are mounted.
struct LastingType {
    std::string_view name;
    bool hasNumber;
};
constexpr std::array<LastingType, 17> lastingTypes = {{{"ext2", true},
                                                       {"ext3", true},
                                                       {"ext4", true},
                                                       {"btrfs", true},
                                                       {"xfs", true},
                                                       {"f2fs", true},
                                                       {"tmpfs", true},
                                                       {"overlay", true},
                                                       {"zfs", true},
                                                       {"jfs", true},
                                                       {"bcachefs", true},
                                                       {"nilfs2", true},
                                                       {"ntfs", false},
                                                       {"ntfs3", false},
                                                       {"hfsplus", false},
                                                       {"nfs", false},
                                                       {"nfs4", false}}};

const LastingType* lastingType(std::string_view name) {
    const auto* const found = std::find_if(lastingTypes.begin(), lastingTypes.end(),
                                           [&](const auto& type) { return type.name == name; });
    return found == lastingTypes.end() ? nullptr : found;
}

/// Every subvolume of a btrfs begins with the directory of this number.
constexpr std::uint64_t subvolumeRoot = 256;

/// A directory and the mount that shows it.
struct Spot {
    int directory = -1;
    struct statx information {};
    std::string path;  // without links
    Mount mount;
};

std::string hexadecimal(std::uint64_t number) {
    std::string text;
    for (int shift = 60; shift >= 0; shift -= 4) text += "0123456789abcdef"[(number >> shift) & 15];
    return text;
}

/// The system knows the path of what is open, whatever has been renamed since.
std::string pathOf(int directory, const std::string& native) {
    std::string path;
    const std::string link = "/proc/self/fd/" + std::to_string(directory);
    const bool told = readLink(AT_FDCWD, link.c_str(), path) == 0 && path.starts_with('/');
    return told ? path : canonicalPath(native);
}

bool findMount(const MountSources& sources, Spot& spot) {
    std::string text;
    constexpr std::uint64_t limit = 64U << 20;
    if (readWholeFile(sources.mountInfo, limit, text) != 0) return false;
    const std::vector<Mount> mounts = parseMounts(text);
    const bool told = (spot.information.stx_mask & STATX_MNT_ID) != 0;
    const auto own = std::find_if(mounts.begin(), mounts.end(), [&](const Mount& mount) {
        return told && mount.id == spot.information.stx_mnt_id && isWithin(spot.path, mount.point);
    });
    const Mount* mount = own != mounts.end() ? &*own : mountOf(mounts, spot.path);
    if (mount != nullptr) spot.mount = *mount;
    return mount != nullptr;
}

/// The number that a file system gives itself; 0 when it gives none.
std::uint64_t volumeNumber(int directory) {
    struct statfs volume {};
    std::uint64_t number = 0;
    static_assert(sizeof volume.f_fsid == sizeof number);
    if (fstatfs(directory, &volume) == 0) std::memcpy(&number, &volume.f_fsid, sizeof number);
    return number;
}

/// The subvolume that the directory lies in, with a slash; empty for the main one. A volume may be
/// mounted from its very top, so that the mount alone does not tell.
std::string subvolumeOf(const Spot& spot) {
    if (spot.mount.type != "btrfs") return {};
    std::string path = spot.path;
    struct statx information {};
    while (statPath(path, false, information) == 0) {
        if (information.stx_ino == subvolumeRoot) {
            const std::string inside = joinNative(spot.mount.root, below(path, spot.mount.point));
            return inside == "/" ? std::string() : inside;
        }
        if (path == spot.mount.point) break;
        path.resize(std::max<std::size_t>(path.rfind('/'), 1));
    }
    return spot.mount.subvolume == "/" ? std::string() : spot.mount.subvolume;
}

std::string volumeOf(const Spot& spot, const MountSources& sources) {
    if (isNetworkType(spot.mount.type)) {
        const auto [server, path] = shareSourceOf(spot.mount);
        return server.empty() ? std::string() : "share://" + server + path;
    }
    const std::string uuid = uuidOf(spot.mount, readUuids(sources.uuidDirectory));
    if (!uuid.empty()) return "uuid:" + uuid + subvolumeOf(spot);
    const LastingType* type = lastingType(spot.mount.type);
    const std::uint64_t number =
        type != nullptr && type->hasNumber ? volumeNumber(spot.directory) : 0;
    return number == 0 ? std::string() : "fsid:" + hexadecimal(number);
}

std::string coreForm(const std::string& native) {
    std::string core;
    for (const std::string& component : splitNative(native)) core += "\\" + toCoreName(component);
    return core.empty() ? "\\" : core;
}

/// A copy, even one with all attributes, is another inode made at another time. Inode numbers that
/// are made up at each mount say nothing; the place of the directory stands in for them.
std::string selfOf(const Spot& spot, const TreePlace& place) {
    if (place.volume.empty()) return {};
    std::string self = place.volume;
    if (lastingType(spot.mount.type) == nullptr) {
        self += " " + escapeOctal(place.path);
    } else {
        // The snapshot of a subvolume has its inodes and their times.
        if (spot.mount.type == "btrfs") self += " " + hexadecimal(volumeNumber(spot.directory));
        self += " " + std::to_string(spot.information.stx_ino);
    }
    if ((spot.information.stx_mask & STATX_BTIME) != 0) {
        const statx_timestamp& birth = spot.information.stx_btime;
        self += " " + std::to_string(birth.tv_sec) + "." + std::to_string(birth.tv_nsec);
    }
    return self;
}

}  // namespace

TreePlace treePlaceOf(int directory, const std::string& native, const MountSources& sources) {
    Spot spot;
    spot.directory = directory;
    constexpr unsigned wanted = STATX_BASIC_STATS | STATX_BTIME | STATX_MNT_ID;
    if (::statx(directory, "", AT_EMPTY_PATH, wanted, &spot.information) != 0) return {};
    spot.path = pathOf(directory, native);
    if (!findMount(sources, spot)) return {};
    TreePlace place;
    place.volume = escapeOctal(volumeOf(spot, sources));
    place.path = coreForm(joinNative(spot.mount.root, below(spot.path, spot.mount.point)));
    place.self = selfOf(spot, place);
    return place;
}

PosixHeldTree::PosixHeldTree(std::shared_ptr<const Hold> hold, TreePlace place,
                             std::shared_ptr<HoldList> holds, std::shared_ptr<TreeLocks> locks)
    : hold_(std::move(hold)),
      place_(std::move(place)),
      holds_(std::move(holds)),
      locks_(std::move(locks)) {
    holds_->add(hold_);
}

PosixHeldTree::~PosixHeldTree() {
    holds_->remove(*hold_);
}

Status PosixHeldTree::claim(TreeUse use) {
    const bool claimed = claim_.take(*locks_, hold_->directory.get(), use);
    return claimed ? Status() : Status::failure(error_number::lockViolation, hold_->core);
}

Status PosixHeldTree::flush() {
    // Write errors are told to descriptors that were open when they happened: that of the hold is
    // older than every write.
    if (syncfs(hold_->directory.get()) == 0) return {};
    if (errno != ENOSYS && errno != EINVAL) return systemFailure(errno, hold_->core);
    sync();  // the whole system's volumes, where one alone cannot be asked for
    return {};
}

Status PosixHeldTree::measureTimes(TimeGrid& grid) {
    TemporaryFile probe;
    const int error = probe.create(hold_->directory.get(), 0600);
    if (error != 0) return systemFailure(error, hold_->core);
    const std::optional<TimeGrid> measured = coffrelune::measureTimes(timeTrialOn(probe.fd()));
    if (!measured) return systemFailure(EOPNOTSUPP, hold_->core);
    grid = *measured;
    return {};
}

}  // namespace coffrelune
