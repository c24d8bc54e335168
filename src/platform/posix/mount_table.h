#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace coffrelune {

/// A text as one word of a line: the blank, what comes before it among the characters, and the
/// backslash are written as "\ooo".
std::string escapeOctal(std::string_view text);

/// The way back. False when a backslash begins no such sequence; it then stands for itself.
bool unescapeOctal(std::string_view text, std::string& result);

/// Where the system tells what is mounted. Tests have texts of their own.
struct MountSources {
    std::string mountInfo = "/proc/self/mountinfo";
    std::string fstab = "/etc/fstab";
    std::string uuidDirectory = "/dev/disk/by-uuid";
};

/// One line of the mount table.
struct Mount {
    std::uint64_t id = 0;
    dev_t device = 0;
    std::string root;    // what of the file system is mounted: "/", a subvolume, a bound directory
    std::string point;   // where
    std::string type;    // "ext4"
    std::string source;  // "/dev/sdb1", "//server/share"
    std::string subvolume;  // that the root belongs to: "/@home"; empty where there is none
};

/// A mounted volume that deserves a drive letter.
struct Volume {
    std::string identity;  // "uuid:1234-ABCD", "uuid:.../@subvolume" or "path:/mnt/x"
    std::string point;
};

/// A mounted network share.
struct Share {
    std::string core;  // "\\server\share", of two components or more
    std::string point;
};

/// The mounts of a mountinfo text in its order. Lines that make no sense are left out, as are
/// mounts that a later one on the same point covers.
std::vector<Mount> parseMounts(const std::string& mountInfo);

/// The mount points that an fstab text names outside the system's own directories.
std::set<std::string> parseFstabPoints(const std::string& fstab);

/// The same points by the identity of the volume that belongs there: "uuid:..." where the text
/// names one, else "path:" and the point.
std::map<std::string, std::string> parseFstabIdentities(const std::string& fstab);

/// UUIDs by device path, from the links of a directory such as /dev/disk/by-uuid.
std::map<std::string, std::string> readUuids(const std::string& directory);

/// The UUID of the device that is mounted; empty when it has none.
std::string uuidOf(const Mount& mount, const std::map<std::string, std::string>& uuids);

/// Whether a file system of this type lies on another computer.
bool isNetworkType(std::string_view type);

/// A share by its server and the path there, whatever is mounted of it. Both are empty for what is
/// no share.
struct ShareSource {
    std::string server;
    std::string path;  // begins with a slash, or is empty
};

ShareSource shareSourceOf(const Mount& mount);

/// The mount that shows a link-free path; null when none does.
const Mount* mountOf(const std::vector<Mount>& mounts, std::string_view path);

/// What a person plugs in or mounts: mount points under /media, /run/media and /mnt, and those of
/// `fstabPoints`; no pseudo file systems, no network shares, no part of the system disk itself. A
/// volume that is mounted twice is listed once.
std::vector<Volume> volumesOf(const std::vector<Mount>& mounts,
                              const std::set<std::string>& fstabPoints,
                              const std::map<std::string, std::string>& uuids);

std::vector<Share> sharesOf(const std::vector<Mount>& mounts);

/// Devices of the kernel's pseudo file systems, whose mount points no walk should see.
std::set<dev_t> pseudoDevicesOf(const std::vector<Mount>& mounts);

/// The one spelling of a link-free path among all mounts that show the same place (bind mounts, a
/// volume mounted twice).
std::string canonicalMountPath(const std::vector<Mount>& mounts, const std::string& path);

}  // namespace coffrelune
