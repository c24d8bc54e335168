#include "platform/posix/drive_table.h"

#include <algorithm>
#include <cerrno>

#include "platform/names.h"
#include "platform/posix/mount_table.h"
#include "platform/posix/native_path.h"
#include "platform/posix/whole_file.h"

namespace coffrelune {
namespace {

constexpr std::uint64_t largestFile = 1 << 16;
constexpr std::string_view section = "[Lecteurs]";
constexpr std::string_view introduction =
    "; Lettres de lecteur attribuées aux volumes. Une lettre ne change jamais de volume.\n";

/// A text that holds a byte which is always written escaped was not written by the program.
bool unescape(std::string_view text, std::string& identity) {
    const bool plain = std::all_of(text.begin(), text.end(),
                                   [](char c) { return static_cast<unsigned char>(c) > 0x20; });
    return plain && unescapeOctal(text, identity);
}

bool isIdentity(std::string_view text) {
    return (text.starts_with("uuid:") || text.starts_with("path:/")) && text.size() > 6;
}

/// False when the line makes no sense or contradicts another; a letter or a volume that is named
/// twice leaves each of the letters concerned in doubt.
bool parseLine(std::string_view line, std::map<char, std::string>& volumes) {
    if (line.size() < 2 || line[0] < 'D' || line[0] > 'Z' || line[1] != '=') return false;
    std::string identity;
    const bool readable = unescape(line.substr(2), identity) && isIdentity(identity);
    bool sound = readable && !volumes.contains(line[0]);
    for (auto& [letter, volume] : volumes) {
        if (!readable || volume != identity) continue;
        volume.clear();
        sound = false;
    }
    volumes[line[0]] = sound ? identity : std::string();
    return sound;
}

}  // namespace

std::map<std::string, char> DriveLetters::assign(const std::vector<std::string>& identities) {
    load();
    bool added = false;
    std::map<std::string, char> letters;
    for (const std::string& identity : identities) {
        auto known = std::find_if(volumes_.begin(), volumes_.end(),
                                  [&](const auto& volume) { return volume.second == identity; });
        if (known == volumes_.end()) {
            const char letter = damaged_ ? '\0' : freeLetter();
            if (letter == '\0') continue;
            known = volumes_.emplace(letter, identity).first;
            added = true;
        }
        letters.emplace(identity, known->first);
    }
    if (added) {
        // A letter that cannot be remembered still serves this run.
        [[maybe_unused]] const int error = writeWholeFile(file_, text(), Durability::now);
    }
    return letters;
}

void DriveLetters::load() {
    std::string bytes;
    const int error = readWholeFile(file_, largestFile, bytes);
    damaged_ = error != 0 && error != ENOENT && error != ENOTDIR;
    Volumes stored;
    if (error == 0) damaged_ = !parse(bytes, stored);
    for (auto& [letter, volume] : stored) {
        std::string& known = volumes_[letter];
        if (known.empty()) known = volume;
        if (known != volume) damaged_ = true;  // what this run has given stays given
    }
}

/// False when the file is not as it was written; `volumes` then holds what is beyond doubt.
bool DriveLetters::parse(const std::string& bytes, Volumes& volumes) {
    bool inSection = false;
    bool found = false;
    bool sound = bytes.ends_with('\n');  // else the last line may have lost its own end
    for (std::size_t start = 0; start < bytes.size();) {
        const std::size_t end = std::min(bytes.find('\n', start), bytes.size());
        std::string_view line(bytes.data() + start, end - start);
        start = end + 1;
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (line.empty() || line.starts_with(';')) continue;
        if (line.starts_with('[')) {
            inSection = line == section;
            found = found || inSection;
        } else if (end == bytes.size() || !inSection || !parseLine(line, volumes)) {
            sound = false;
        }
    }
    return sound && found;
}

char DriveLetters::freeLetter() const {
    for (char letter = 'D'; letter <= 'Z'; ++letter) {
        if (!volumes_.contains(letter)) return letter;
    }
    return '\0';
}

std::string DriveLetters::text() const {
    std::string text(introduction);
    text.append(section) += '\n';
    for (const auto& [letter, identity] : volumes_) {
        text.append(1, letter).append("=").append(escapeOctal(identity)) += '\n';
    }
    return text;
}

namespace {

/// A mount table or an fstab; one that cannot be read tells of no mounts.
std::string textOf(const std::string& file) {
    std::string bytes;
    constexpr std::uint64_t limit = 64U << 20;
    return readWholeFile(file, limit, bytes) == 0 ? bytes : std::string();
}

bool isDirectory(const std::string& path) {
    struct statx information {};
    return statPath(path, true, information) == 0 && S_ISDIR(information.stx_mode);
}

}  // namespace

std::optional<dev_t> probeMount(const std::string& point) {
    struct statx information {};
    const int flags = AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
    if (::statx(AT_FDCWD, point.c_str(), flags, STATX_TYPE, &information) != 0) return {};
    if (!S_ISDIR(information.stx_mode)) return {};
    const bool knowsRoots = (information.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0;
    if (knowsRoots && (information.stx_attributes & STATX_ATTR_MOUNT_ROOT) == 0) return {};
    return deviceOf(information);
}

DriveTable::DriveTable(MountSources sources, std::string lettersFile, MountProbe probe)
    : sources_(std::move(sources)), letters_(std::move(lettersFile)), probe_(std::move(probe)) {
    refresh();
}

DriveTable::DriveTable(std::vector<PathRoot> roots, std::set<dev_t> pseudoDevices)
    : letters_({}),
      pseudoDevices_(std::make_shared<const std::set<dev_t>>(std::move(pseudoDevices))) {
    // The system's own spelling, so that a resolved path is recognised below its root.
    for (PathRoot& root : roots) root.native = canonicalPath(root.native);
    paths_ = PathMap(std::move(roots));
}

void DriveTable::refresh() {
    if (!sources_.has_value()) return;
    mounts_ = parseMounts(textOf(sources_->mountInfo));
    pseudoDevices_ = std::make_shared<const std::set<dev_t>>(pseudoDevicesOf(mounts_));
    const std::string fstab = textOf(sources_->fstab);
    const std::vector<Volume> volumes =
        volumesOf(mounts_, parseFstabPoints(fstab), readUuids(sources_->uuidDirectory));
    std::vector<std::string> identities;
    std::transform(volumes.begin(), volumes.end(), std::back_inserter(identities),
                   [](const Volume& volume) { return volume.identity; });
    const std::map<std::string, char> letters = letters_.assign(identities);

    findAbsentPoints(fstab, letters);
    std::vector<PathRoot> roots = {PathRoot::drive('C', "/")};
    for (const Volume& volume : volumes) {
        const auto letter = letters.find(volume.identity);
        if (letter == letters.end()) continue;
        // Unmounted since the table was read: its letter is no drive.
        const std::optional<dev_t> device = probe_(volume.point);
        if (device) roots.push_back(PathRoot::drive(letter->second, volume.point, device));
    }
    for (const Share& share : sharesOf(mounts_)) {
        const std::optional<dev_t> device = probe_(share.point);
        if (device) roots.push_back({share.core, share.point, device});
    }
    paths_ = PathMap(std::move(roots));
}

void DriveTable::findAbsentPoints(const std::string& fstab,
                                  const std::map<std::string, char>& present) {
    const std::map<std::string, std::string> points = parseFstabIdentities(fstab);
    absentPoints_.clear();
    for (const auto& [letter, identity] : letters_.remembered()) {
        const auto point = points.find(identity);
        if (present.contains(identity)) continue;
        if (point != points.end()) {
            absentPoints_.emplace(letter, point->second);
        } else if (identity.starts_with("path:")) {
            absentPoints_.emplace(letter, identity.substr(5));
        }
    }
}

std::string DriveTable::fromNative(const std::string& typed,
                                   const std::string& currentDirectory) const {
    std::string core = paths_.fromNative(typed, currentDirectory);
    Place place;
    // Only what lies on the system disk can lie in an empty mount point.
    if (!core.starts_with("C:") || !paths_.locate(core, place).ok()) return core;
    for (const auto& [letter, point] : absentPoints_) {
        if (!isWithin(place.native, point)) continue;
        const std::string rest = core.substr(paths_.toCore(point).size());
        return std::string(1, letter) + ":" + (rest.empty() ? "\\" : rest);
    }
    return core;
}

std::string DriveTable::fromWindow(const std::string& entered, const std::string& home) const {
    const bool inHome = home.starts_with('/') && (entered == "~" || entered.starts_with("~/"));
    const std::string path = inHome ? home + entered.substr(1) : entered;
    if (path.starts_with('/')) return fromNative(path, "/");
    return hasCoreForm(entered) ? inPlainSpelling(entered) : entered;
}

std::vector<std::string> DriveTable::driveRoots() const {
    std::vector<std::string> roots;
    for (const PathRoot& root : paths_.roots()) {
        const bool present = sources_.has_value() || isDirectory(root.native);
        if (root.isDrive() && present) roots.push_back(root.core + "\\");
    }
    std::sort(roots.begin(), roots.end());
    return roots;
}

std::string DriveTable::resolve(const std::string& path) const {
    Place place;
    if (!paths_.locate(path, place).ok()) return path;
    return paths_.toCore(canonicalMountPath(mounts_, canonicalPath(place.native)));
}

}  // namespace coffrelune
