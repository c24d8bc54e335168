#include "platform/posix/mount_table.h"

#include <dirent.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <sstream>
#include <string_view>

#include "platform/posix/names.h"
#include "platform/posix/native_path.h"

namespace coffrelune {
namespace {

constexpr std::array<std::string_view, 21> pseudoTypes = {
    "proc",    "sysfs",    "devtmpfs", "devpts",    "cgroup",  "cgroup2",    "securityfs",
    "debugfs", "tracefs",  "configfs", "pstore",    "bpf",     "mqueue",     "hugetlbfs",
    "autofs",  "efivarfs", "nsfs",     "selinuxfs", "fusectl", "rpc_pipefs", "binfmt_misc"};
constexpr std::array<std::string_view, 4> networkTypes = {"cifs", "smb3", "nfs", "nfs4"};
constexpr std::array<std::string_view, 3> pluggedRoots = {"/media", "/run/media", "/mnt"};
constexpr std::array<std::string_view, 9> systemRoots = {"/efi",  "/usr", "/var", "/tmp", "/home",
                                                         "/proc", "/sys", "/dev", "/run"};

template <typename List>
bool contains(const List& list, std::string_view text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

template <typename List>
bool isWithinOneOf(const List& roots, std::string_view path) {
    return std::any_of(roots.begin(), roots.end(),
                       [&](std::string_view root) { return isWithin(path, root); });
}

bool isOctal(char c) {
    return c >= '0' && c <= '7';
}

/// "\040" and its like stand for bytes that would break the line apart.
std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size() && isOctal(text[i + 1]) &&
            isOctal(text[i + 2]) && isOctal(text[i + 3])) {
            const int value =
                (text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0');
            result += static_cast<char>(value);
            i += 3;
        } else {
            result += text[i];
        }
    }
    return result;
}

std::vector<std::string> fieldsOf(const std::string& line) {
    std::istringstream words(line);
    std::vector<std::string> fields;
    for (std::string word; words >> word;) fields.push_back(unescaped(word));
    return fields;
}

bool parseDevice(const std::string& text, dev_t& device) {
    unsigned numbers[2] = {0, 0};
    const char* end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, numbers[0]);
    if (first.ec != std::errc() || first.ptr == end || *first.ptr != ':') return false;
    const auto second = std::from_chars(first.ptr + 1, end, numbers[1]);
    if (second.ec != std::errc() || second.ptr != end) return false;
    device = makedev(numbers[0], numbers[1]);
    return true;
}

bool parseMount(const std::string& line, Mount& mount) {
    // id parent major:minor root point options [optional fields] - type source options
    const std::vector<std::string> fields = fieldsOf(line);
    const auto dash = std::find(fields.begin() + std::min<std::ptrdiff_t>(std::ssize(fields), 6),
                                fields.end(), "-");
    if (fields.end() - dash < 3 || !parseDevice(fields[2], mount.device)) return false;
    mount.root = fields[3];
    mount.point = fields[4];
    mount.type = dash[1];
    mount.source = dash[2];
    return mount.point.starts_with('/');
}

bool isPseudo(const Mount& mount) {
    if (contains(pseudoTypes, mount.type)) return true;
    return mount.type == "tmpfs" && !isWithin(mount.point, "/run/media") &&
           (isWithin(mount.point, "/run") || isWithin(mount.point, "/dev") ||
            isWithin(mount.point, "/sys"));
}

bool isNetwork(const Mount& mount) {
    return contains(networkTypes, mount.type);
}

const Mount* mountOf(const std::vector<Mount>& mounts, std::string_view path) {
    const Mount* best = nullptr;
    for (const Mount& mount : mounts) {
        if (isWithin(path, mount.point) &&
            (best == nullptr || mount.point.size() >= best->point.size())) {
            best = &mount;
        }
    }
    return best;
}

std::string identityOf(const Mount& mount, const std::map<std::string, std::string>& uuids) {
    const auto uuid = uuids.find(canonicalPath(mount.source));
    if (!mount.source.starts_with('/') || uuid == uuids.end()) return "path:" + mount.point;
    // Subvolumes of one disk hold different files: each is a volume of its own.
    return "uuid:" + uuid->second + (mount.root == "/" ? "" : mount.root);
}

/// "//server/share" or "server:/path", plus what a bind mount shows of it.
std::string shareName(const Mount& mount) {
    std::string server;
    std::string path;
    if (mount.source.starts_with("//")) {
        const std::size_t slash = std::min(mount.source.find('/', 2), mount.source.size());
        server = mount.source.substr(2, slash - 2);
        path = mount.source.substr(slash);
    } else if (const std::size_t cut = mount.source.find(":/"); cut != std::string::npos) {
        server = mount.source.substr(0, cut);
        path = mount.source.substr(cut + 1);
    }
    if (server.empty()) return {};
    if (mount.root != "/" && !path.ends_with(mount.root)) path += mount.root;
    std::vector<std::string> components = splitNative(path);
    // A server's whole tree bears no share name: the mount point lends it one.
    if (components.empty()) components.push_back(splitNative(mount.point).back());
    std::string name = "\\\\" + toCoreName(server);
    for (const std::string& component : components) name += "\\" + toCoreName(component);
    return name;
}

}  // namespace

std::vector<Mount> parseMounts(const std::string& mountInfo) {
    std::vector<Mount> mounts;
    std::istringstream lines(mountInfo);
    for (std::string line; std::getline(lines, line);) {
        Mount mount;
        if (!parseMount(line, mount)) continue;
        std::erase_if(mounts, [&](const Mount& m) { return m.point == mount.point; });
        mounts.push_back(std::move(mount));
    }
    return mounts;
}

std::set<std::string> parseFstabPoints(const std::string& fstab) {
    std::set<std::string> points;
    std::istringstream lines(fstab);
    for (std::string line; std::getline(lines, line);) {
        const std::vector<std::string> fields = fieldsOf(line);
        if (fields.size() < 3 || fields[0].starts_with('#') || fields[2] == "swap") continue;
        if (!fields[1].starts_with('/')) continue;  // "none"
        const std::string point = normalizedPath(fields[1]);
        if (point == "/" || point.starts_with("/boot")) continue;
        if (isWithinOneOf(systemRoots, point) && !isWithin(point, "/run/media")) continue;
        points.insert(point);
    }
    return points;
}

std::map<std::string, std::string> parseFstabIdentities(const std::string& fstab) {
    constexpr std::string_view uuid = "UUID=";
    const std::set<std::string> points = parseFstabPoints(fstab);
    std::map<std::string, std::string> identities;
    std::istringstream lines(fstab);
    for (std::string line; std::getline(lines, line);) {
        const std::vector<std::string> fields = fieldsOf(line);
        if (fields.size() < 3 || !fields[1].starts_with('/')) continue;
        const std::string point = normalizedPath(fields[1]);
        if (!points.contains(point)) continue;
        const bool named = fields[0].starts_with(uuid);
        identities.emplace(named ? "uuid:" + fields[0].substr(uuid.size()) : "path:" + point,
                           point);
    }
    return identities;
}

std::map<std::string, std::string> readUuids(const std::string& directory) {
    std::map<std::string, std::string> uuids;
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(directory.c_str()), closedir);
    if (listing == nullptr) return uuids;
    while (const dirent* entry = readdir(listing.get())) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..") continue;
        uuids.emplace(canonicalPath(joinNative(directory, name)), name);
    }
    return uuids;
}

std::vector<Volume> volumesOf(const std::vector<Mount>& mounts,
                              const std::set<std::string>& fstabPoints,
                              const std::map<std::string, std::string>& uuids) {
    const Mount* system = mountOf(mounts, "/");
    std::vector<Volume> volumes;
    std::set<std::string> seen;
    for (const Mount& mount : mounts) {
        const bool wanted =
            isWithinOneOf(pluggedRoots, mount.point) || fstabPoints.contains(mount.point);
        if (!wanted || isPseudo(mount) || isNetwork(mount)) continue;
        if (system != nullptr && mount.device == system->device) continue;
        std::string identity = identityOf(mount, uuids);
        if (seen.insert(identity).second) volumes.push_back({std::move(identity), mount.point});
    }
    return volumes;
}

std::vector<Share> sharesOf(const std::vector<Mount>& mounts) {
    std::vector<Share> shares;
    std::set<std::string> seen;
    for (const Mount& mount : mounts) {
        if (!isNetwork(mount)) continue;
        std::string name = shareName(mount);
        if (!name.empty() && seen.insert(name).second) {
            shares.push_back({std::move(name), mount.point});
        }
    }
    return shares;
}

std::set<dev_t> pseudoDevicesOf(const std::vector<Mount>& mounts) {
    std::set<dev_t> devices;
    for (const Mount& mount : mounts) {
        if (isPseudo(mount)) devices.insert(mount.device);
    }
    return devices;
}

std::string canonicalMountPath(const std::vector<Mount>& mounts, const std::string& path) {
    const Mount* own = mountOf(mounts, path);
    if (own == nullptr) return path;
    const std::string inside = joinNative(own->root, below(path, own->point));
    const Mount* best = own;
    std::string bestPath = path;
    for (const Mount& mount : mounts) {
        if (mount.device != own->device || !isWithin(inside, mount.root)) continue;
        const bool better = mount.root.size() < best->root.size() ||
                            (mount.root.size() == best->root.size() && &mount < best);
        if (!better) continue;
        std::string candidate = joinNative(mount.point, below(inside, mount.root));
        if (mountOf(mounts, candidate) != &mount) continue;  // hidden there by another mount
        best = &mount;
        bestPath = std::move(candidate);
    }
    return bestPath;
}

}  // namespace coffrelune
