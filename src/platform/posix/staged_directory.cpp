#include "platform/posix/staged_directory.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <vector>

#include "platform/names.h"
#include "platform/posix/listing.h"
#include "platform/posix/native_path.h"

namespace coffrelune {
namespace {

constexpr mode_t everyRight = 07777;

/// The switches of a directory, of those volumes that have any (chattr).
long switchesOf(int directory) {
    long flags = 0;
    return ioctl(directory, FS_IOC_GETFLAGS, &flags) == 0 ? flags : 0;
}

/// The names of its attributes, access lists among them; false where there are many.
bool attributesOf(int directory, std::string& names) {
    std::array<char, 256> room{};
    const ssize_t size = flistxattr(directory, room.data(), room.size());
    if (size < 0) return errno == EOPNOTSUPP;
    names.assign(room.data(), static_cast<std::size_t>(size));
    return true;
}

/// What is given to single directories by hand; labels of a security module come by themselves.
bool isGivenByHand(std::string_view names) {
    return names.find("user.") != std::string_view::npos ||
           names.find("system.") != std::string_view::npos;
}

/// True when nobody could tell one from the other by more than its name.
bool becomesLike(const struct stat& wanted, int model, int made) {
    struct stat now {};
    if (fstat(made, &now) != 0) return false;
    const bool sameOwner = now.st_uid == wanted.st_uid && now.st_gid == wanted.st_gid;
    if (!sameOwner || now.st_dev != wanted.st_dev) return false;
    const mode_t mode = wanted.st_mode & everyRight;
    if ((now.st_mode & everyRight) != mode) {
        if (fchmod(made, mode) != 0) return false;
        // Who is not of its group is not given every bit.
        const bool isPlain = (mode & ~mode_t{0777}) == 0;
        if (!isPlain && (fstat(made, &now) != 0 || (now.st_mode & everyRight) != mode)) {
            return false;
        }
    }
    if (switchesOf(model) != switchesOf(made)) return false;
    std::string modelNames;
    std::string madeNames;
    return attributesOf(model, modelNames) && attributesOf(made, madeNames) &&
           modelNames == madeNames && !isGivenByHand(modelNames);
}

bool isUntouched(const struct stat& before, const struct stat& now) {
    return now.st_ino == before.st_ino && now.st_dev == before.st_dev &&
           now.st_ctim.tv_sec == before.st_ctim.tv_sec &&
           now.st_ctim.tv_nsec == before.st_ctim.tv_nsec;
}

/// The directory above, and that it still has `wanted` under `name`.
bool openParent(int directory, const std::string& name, const struct stat& wanted, UniqueFd& fd) {
    struct stat found {};
    return openEntry(directory, "..", O_PATH | O_DIRECTORY, fd) == 0 &&
           fstatat(fd.get(), name.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0 &&
           found.st_ino == wanted.st_ino && found.st_dev == wanted.st_dev;
}

}  // namespace

void NewDirectories::add(const struct stat& directory) {
    all_.emplace_back(directory.st_dev, directory.st_ino);
    sorted_ = false;
}

bool NewDirectories::contains(const struct stat& directory) {
    if (!sorted_) std::sort(all_.begin(), all_.end());
    sorted_ = true;
    return std::binary_search(all_.begin(), all_.end(),
                              std::pair(directory.st_dev, directory.st_ino));
}

std::unique_ptr<StagedDirectory> StagedDirectory::beside(int target, const Place& place,
                                                         NewDirectories& ours,
                                                         std::uint64_t number) {
    const Hold* hold = place.hold.get();
    if (hold == nullptr || !hold->replacesDirectories || place.native == hold->native) return {};
    struct stat wanted {};
    if (fstat(target, &wanted) != 0 || wanted.st_dev != hold->device) return {};
    if ((wanted.st_mode & S_IRWXU) != S_IRWXU || !ours.contains(wanted)) return {};
    UniqueFd model;
    std::unique_ptr<StagedDirectory> staged(new StagedDirectory);
    staged->other_ = wanted;
    staged->place_ = place.native.substr(place.native.rfind('/') + 1);
    if (openEntry(target, ".", O_RDONLY | O_DIRECTORY, model) != 0) return {};
    if (!openParent(target, staged->place_, wanted, staged->parent_)) return {};
    const std::string name = ownFileName(OwnFile::temporary, number);
    if (mkdirat(staged->parent_.get(), name.c_str(), S_IRWXU) != 0) return {};
    staged->name_ = name;
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW;
    const int error = openEntry(staged->parent_.get(), name.c_str(), flags, staged->directory_);
    if (error != 0 || !becomesLike(wanted, model.get(), staged->fd())) return {};
    return staged;
}

StagedDirectory::~StagedDirectory() {
    // What cannot be removed now is a leftover, which a later run removes.
    if (!inPlace()) (void)unlinkat(parent_.get(), name_.c_str(), AT_REMOVEDIR);
}

int StagedDirectory::takePlace() {
    const int parent = parent_.get();
    // Rights that were given to the other since would be lost with it.
    struct stat now {};
    if (fstatat(parent, place_.c_str(), &now, AT_SYMLINK_NOFOLLOW) != 0) return errno;
    if (!isUntouched(other_, now)) return ESTALE;
    if (renameat(parent, name_.c_str(), parent, place_.c_str()) != 0) return errno;
    name_.clear();
    return 0;
}

int removeStaged(int parent, const char* name) {
    UniqueFd directory;
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW;
    const int error = openEntry(parent, name, flags, directory);
    if (error != 0) return error == ENOENT ? 0 : error;
    if (flock(directory.get(), LOCK_EX | LOCK_NB) != 0) return 0;
    UniqueFd again;
    if (openEntry(directory.get(), ".", O_RDONLY | O_DIRECTORY, again) != 0) return 0;
    Listing listing(std::move(again));
    std::vector<std::string> names;
    while (const dirent64* entry = listing.next()) {
        struct stat found {};
        const int fd = directory.get();
        if (fstatat(fd, entry->d_name, &found, AT_SYMLINK_NOFOLLOW) != 0) return errno;
        if (!S_ISREG(found.st_mode) && !S_ISLNK(found.st_mode)) return 0;
        names.emplace_back(entry->d_name);
    }
    if (listing.error() != 0) return listing.error();
    for (const std::string& file : names) {
        if (unlinkat(directory.get(), file.c_str(), 0) != 0 && errno != ENOENT) return errno;
    }
    return unlinkat(parent, name, AT_REMOVEDIR) == 0 || errno == ENOENT ? 0 : errno;
}

}  // namespace coffrelune
