#include "platform/posix/mount_table.h"

#include <dirent.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <sstream>
#include <string_view>

#include "platform/posix/native_path.h"

namespace coffrelune {
namespace {

bool isOctal(char c) {
    return c >= '0' && c <= '7';
}

bool isSequence(std::string_view text) {
    return text.size() >= 4 && isOctal(text[1]) && isOctal(text[2]) && isOctal(text[3]);
}

}  // namespace

std::string escapeOctal(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte > 0x20 && c != '\\') {
            result += c;
            continue;
        }
        result += '\\';
        for (int shift = 6; shift >= 0; shift -= 3) {
            result += static_cast<char>('0' + ((byte >> shift) & 7));
        }
    }
    return result;
}

bool unescapeOctal(std::string_view text, std::string& result) {
    result.clear();
    bool sound = true;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            result += text[i];
        } else if (isSequence(text.substr(i))) {
            result += static_cast<char>((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 +
                                        (text[i + 3] - '0'));
            i += 3;
        } else {
            result += text[i];
            sound = false;
        }
    }
    return sound;
}

namespace {

constexpr std::array<std::string_view, 21> pseudoTypes = {
    "proc",    "sysfs",    "devtmpfs", "devpts",    "cgroup",  "cgroup2",    "securityfs",
    "debugfs", "tracefs",  "configfs", "pstore",    "bpf",     "mqueue",     "hugetlbfs",
    "autofs",  "efivarfs", "nsfs",     "selinuxfs", "fusectl", "rpc_pipefs", "binfmt_misc"};

/// Those that no network share is named after get a letter, as a disk does.
struct NetworkType {
    std::string_view name;
    bool isShare;
};
constexpr std::array<NetworkType, 7> networkTypes = {{{"cifs", true},
                                                      {"smb3", true},
                                                      {"nfs", true},
                                                      {"nfs4", true},
                                                      {"fuse.sshfs", false},
                                                      {"fuse.rclone", false},
                                                      {"davfs", false}}};

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

std::vector<std::string> fieldsOf(const std::string& line) {
    std::istringstream words(line);
    std::vector<std::string> fields;
    for (std::string word; words >> word;) {
        // A backslash that is none of the table's own stands for itself.
        (void)unescapeOctal(word, fields.emplace_back());
    }
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

std::string optionOf(const std::string& options, std::string_view name) {
    for (std::size_t start = 0; start < options.size();) {
        const std::size_t end = std::min(options.find(',', start), options.size());
        const std::string_view option(options.data() + start, end - start);
        if (option.starts_with(name)) return std::string(option.substr(name.size()));
        start = end + 1;
    }
    return {};
}

bool parseMount(const std::string& line, Mount& mount) {
    // id parent major:minor root point options [optional fields] - type source options
    const std::vector<std::string> fields = fieldsOf(line);
    const auto dash = std::find(fields.begin() + std::min<std::ptrdiff_t>(std::ssize(fields), 6),
                                fields.end(), "-");
    if (fields.end() - dash < 3 || !parseDevice(fields[2], mount.device)) return false;
    std::from_chars(fields[0].data(), fields[0].data() + fields[0].size(), mount.id);
    mount.root = fields[3];
    mount.point = fields[4];
    mount.type = dash[1];
    mount.source = dash[2];
    if (fields.end() - dash > 3) mount.subvolume = optionOf(dash[3], "subvol=");
    return mount.point.starts_with('/');
}

bool isPseudo(const Mount& mount) {
    if (contains(pseudoTypes, mount.type)) return true;
    return mount.type == "tmpfs" && !isWithin(mount.point, "/run/media") &&
           (isWithin(mount.point, "/run") || isWithin(mount.point, "/dev") ||
            isWithin(mount.point, "/sys"));
}

const NetworkType* networkTypeOf(std::string_view name) {
    const auto* const found =
        std::find_if(networkTypes.begin(), networkTypes.end(),
                     [&](const NetworkType& type) { return type.name == name; });
    return found == networkTypes.end() ? nullptr : found;
}

bool isShare(const Mount& mount) {
    const NetworkType* type = networkTypeOf(mount.type);
    return type != nullptr && type->isShare;
}

std::string identityOf(const Mount& mount, const std::map<std::string, std::string>& uuids) {
    const std::string uuid = uuidOf(mount, uuids);
    if (uuid.empty()) return "path:" + mount.point;
    // Subvolumes of one disk hold different files: each is a volume of its own.
    return "uuid:" + uuid + (mount.root == "/" ? "" : mount.root);
}

std::string shareName(const Mount& mount) {
    const auto [server, path] = shareSourceOf(mount);
    if (server.empty()) return {};
    // What a bind mount shows of it.
    const bool inside = mount.root != "/" && !path.ends_with(mount.root);
    std::vector<std::string> components = splitNative(inside ? path + mount.root : path);
    // A server's whole tree bears no share name: the mount point lends it one.
    if (components.empty()) components.push_back(splitNative(mount.point).back());
    std::string name = "\\\\" + toCoreName(server);
    for (const std::string& component : components) name += "\\" + toCoreName(component);
    return name;
}

}  // namespace

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

bool isNetworkType(std::string_view type) {
    return networkTypeOf(type) != nullptr;
}

/// "//server/share" or "server:/path".
ShareSource shareSourceOf(const Mount& mount) {
    if (mount.source.starts_with("//")) {
        const std::size_t slash = std::min(mount.source.find('/', 2), mount.source.size());
        return {mount.source.substr(2, slash - 2), mount.source.substr(slash)};
    }
    const std::size_t cut = mount.source.find(":/");
    if (cut == std::string::npos) return {};
    return {mount.source.substr(0, cut), mount.source.substr(cut + 1)};
}

std::string uuidOf(const Mount& mount, const std::map<std::string, std::string>& uuids) {
    if (!mount.source.starts_with('/')) return {};
    const auto uuid = uuids.find(canonicalPath(mount.source));
    return uuid == uuids.end() ? std::string() : uuid->second;
}

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
        if (!wanted || isPseudo(mount) || isShare(mount)) continue;
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
        if (!isShare(mount)) continue;
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
