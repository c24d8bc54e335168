#include "platform/posix/rights.h"

#include <fcntl.h>
#include <sys/statfs.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

namespace coffrelune {
namespace {

constexpr mode_t everyRight = 07777;

/// What volumes without owners and modes answer, and servers that know no such user: the copy is
/// as good there as it can be.
bool saysNoSuchRights(int error) {
    return error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EINVAL;
}

/// A descriptor that only names a directory has no call of its own for modes.
int changeMode(int directory, mode_t mode) {
    const std::string path = "/proc/self/fd/" + std::to_string(directory);
    if (chmod(path.c_str(), mode) == 0) return 0;
    if (errno != ENOENT) return errno;
    return fchmodat(directory, ".", mode, 0) == 0 ? 0 : errno;  // no /proc
}

}  // namespace

int giveAway(int directory, const char* name, const Owner& owner) {
    if (geteuid() != 0) return 0;
    constexpr int flags = AT_SYMLINK_NOFOLLOW | AT_EMPTY_PATH;
    if (fchownat(directory, name, owner.user, owner.group, flags) == 0) return 0;
    return saysNoSuchRights(errno) ? 0 : errno;
}

mode_t keepableMode(int fd, const struct stat& original) {
    constexpr mode_t plain = 0777 | S_ISVTX;
    const mode_t mode = original.st_mode & everyRight;
    struct stat now {};
    if ((mode & plain) == mode) return mode;
    const bool same = fstat(fd, &now) == 0 && ownerOf(now) == ownerOf(original);
    return same ? mode : mode & plain;
}

int keepMode(int fd, mode_t mode) {
    if (fchmod(fd, mode & everyRight) == 0) return 0;
    if (!saysNoSuchRights(errno)) return errno;
    struct stat now {};
    if ((mode & S_IWUSR) != 0 || fstat(fd, &now) != 0) return 0;
    constexpr mode_t anyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
    [[maybe_unused]] const int ignored = fchmod(fd, now.st_mode & 0777 & ~anyWrite);
    return 0;
}

bool keepsRights(int directory, dev_t device) {
    // Magic numbers of statfs(2): FAT, exFAT, the two of NTFS, SMB 1 and 2, HFS, ISO 9660, UDF.
    constexpr std::array<std::uint32_t, 9> without = {0x4D44,     0x2011BAB0, 0x5346544E,
                                                      0x7366746E, 0xFF534D42, 0xFE534D42,
                                                      0x4244,     0x9660,     0x15013346};
    constexpr std::uint32_t userSpace = 0x65735546;
    struct statfs volume {};
    if (fstatfs(directory, &volume) != 0) return true;
    const auto type = static_cast<std::uint32_t>(volume.f_type);
    if (std::find(without.begin(), without.end(), type) != without.end()) return false;
    // A program that serves a disk (its device has a number of a driver) serves a foreign format.
    return type != userSpace || major(device) == 0;
}

int openToAll(int directory) {
    const mode_t mask = umask(0);
    umask(mask);
    const int error = changeMode(directory, 0777 & ~mask);
    return saysNoSuchRights(error) ? 0 : error;
}

int matchRights(int directory, struct stat now, const struct stat& original) {
    // The owner first: to be given away takes some mode bits.
    if (ownerOf(now) != ownerOf(original)) {
        const int given = giveAway(directory, "", ownerOf(original));
        if (given != 0) return given;
        if (fstat(directory, &now) != 0) return errno;
    }
    const mode_t mode = original.st_mode & everyRight;
    // To set even the same one would take setgid from a directory of a group of others.
    if ((now.st_mode & everyRight) == mode) return 0;
    const int error = changeMode(directory, mode);
    return saysNoSuchRights(error) ? 0 : error;
}

bool unlockDirectory(int directory) {
    struct stat now {};
    if (fstat(directory, &now) != 0 || now.st_uid != geteuid()) return false;
    if ((now.st_mode & S_IRWXU) == S_IRWXU) return false;
    return changeMode(directory, (now.st_mode & everyRight) | S_IRWXU) == 0;
}

}  // namespace coffrelune
