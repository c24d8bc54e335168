#include "platform/posix/desktop/posix_drive_information.h"

#include <dirent.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <memory>

#include "platform/characters.h"
#include "platform/posix/mount_table.h"
#include "platform/posix/native_path.h"
#include "platform/posix/place.h"
#include "platform/posix/whole_file.h"

namespace coffrelune {
namespace {

constexpr std::array<std::string_view, 2> opticalTypes = {"iso9660", "udf"};

template <typename List>
bool contains(const List& list, std::string_view text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

std::string textOf(const std::string& file) {
    std::string text;
    constexpr std::uint64_t limit = 64U << 20;
    return readWholeFile(file, limit, text) == 0 ? text : std::string();
}

/// The name by which the user knows a volume without a label: that of the place where it shows.
std::string nameOfPlace(const std::string& point) {
    return toCoreName(point.substr(point.rfind('/') + 1));
}

}  // namespace

std::string decodedLabel(const std::string& name) {
    std::string label;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool escape = name[i] == '\\' && i + 3 < name.size() && name[i + 1] == 'x' &&
                            ascii::hexDigit(name[i + 2]) >= 0 && ascii::hexDigit(name[i + 3]) >= 0;
        label += escape ? static_cast<char>(ascii::hexDigit(name[i + 2]) * 16 +
                                            ascii::hexDigit(name[i + 3]))
                        : name[i];
        if (escape) i += 3;
    }
    return label;
}

/// The drive's place, whatever has been plugged in since; 21 unless its volume is still there.
Status PosixDriveInformation::locate(const std::string& root, Place& place) {
    Status notReady = Status::failure(error_number::notReady, root);
    if (!table_.paths().locate(root, place).ok()) {
        table_.refresh();
        if (!table_.paths().locate(root, place).ok()) return notReady;
    }
    struct statx information {};
    if (statPath(place.native, true, information) != 0 || !S_ISDIR(information.stx_mode) ||
        !checkVolume(place, deviceOf(information)).ok()) {
        return notReady;
    }
    return {};
}

Mount PosixDriveInformation::mountAt(const std::string& point) const {
    for (Mount& mount : parseMounts(textOf(sources_.mountInfo))) {
        if (mount.point == point) return std::move(mount);
    }
    return {};
}

std::string PosixDriveInformation::labelOf(const Mount& mount) const {
    if (!mount.source.starts_with('/')) return {};
    const std::string device = canonicalPath(mount.source);
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(sources_.labelDirectory.c_str()),
                                                      closedir);
    if (listing == nullptr) return {};
    while (const dirent* entry = readdir(listing.get())) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..") continue;
        const std::string link = joinNative(sources_.labelDirectory, name);
        if (canonicalPath(link) == device) return decodedLabel(name);
    }
    return {};
}

/// What can be taken out, or hangs on a USB cable: the disk of a partition tells, one level up.
bool PosixDriveInformation::isRemovable(dev_t device) const {
    const std::string number = std::to_string(major(device)) + ":" + std::to_string(minor(device));
    const std::string link = joinNative(sources_.blockDirectory, number);
    const std::string directory = canonicalPath(link);
    if (directory == link) return false;  // no such device
    const std::string disk = directory.substr(0, directory.rfind('/'));
    return textOf(directory + "/removable").starts_with('1') ||
           textOf(disk + "/removable").starts_with('1') ||
           directory.find("/usb") != std::string::npos;
}

PosixDriveInformation::Kind PosixDriveInformation::kindOf(const Mount& mount) const {
    if (isNetworkType(mount.type)) return Kind::network;
    if (contains(opticalTypes, mount.type) || mount.source.starts_with("/dev/sr")) {
        return Kind::optical;
    }
    return isRemovable(mount.device) ? Kind::removable : Kind::fixed;
}

Status PosixDriveInformation::volumeLabel(const std::string& root, std::string& label) {
    label.clear();
    Place place;
    Status located = locate(root, place);
    if (located.ok()) label = labelOf(mountAt(place.native));
    return located;
}

DriveDescription PosixDriveInformation::describe(const std::string& root) {
    constexpr std::array<const char*, 4> types = {"Disque local", "Disque amovible",
                                                  "Lecteur optique", "Lecteur réseau"};
    constexpr std::array<const char*, 4> icons = {"drive-harddisk", "drive-removable-media",
                                                  "drive-optical", "folder-remote"};
    Place place;
    Mount mount;
    const bool isShare = root.starts_with("\\\\");
    Kind kind = isShare ? Kind::network : Kind::removable;  // a drive that is gone was taken out
    if (locate(root, place).ok()) {
        mount = mountAt(place.native);
        if (!isShare) kind = kindOf(mount);
    }
    const auto index = static_cast<std::size_t>(kind);
    std::string label = labelOf(mount);
    if (!isShare && label.find_first_not_of(' ') == std::string::npos) {
        label = nameOfPlace(mount.point);
    }
    const bool named = label.find_first_not_of(' ') != std::string::npos;
    std::string drive = root;
    if (drive.ends_with('\\')) drive.pop_back();
    return {(named ? label : types.at(index)) + (" (" + drive + ")"), types.at(index),
            icons.at(index)};
}

Status PosixDriveInformation::sizes(const std::string& root, std::uint64_t& total,
                                    std::uint64_t& free) {
    total = 0;
    free = 0;
    Place place;
    Status located = locate(root, place);
    if (!located.ok()) return located;
    struct statvfs volume {};
    if (statvfs(place.native.c_str(), &volume) != 0) {
        return Status::failure(error_number::notReady, root);
    }
    total = std::uint64_t{volume.f_blocks} * volume.f_frsize;
    free = std::uint64_t{volume.f_bavail} * volume.f_frsize;
    return {};
}

}  // namespace coffrelune
