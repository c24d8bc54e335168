#include "platform/posix/extra_attributes.h"

#include <sys/xattr.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

namespace coffrelune {
namespace {

constexpr const char* accessList = "system.posix_acl_access";
constexpr const char* listOfChildren = "system.posix_acl_default";

bool isCopied(std::string_view name) {
    return name.starts_with("user.") || name == accessList || name == listOfChildren;
}

/// Calls `read(buffer, size)` with a buffer that is large enough. 0 or an errno value.
template <typename Buffer, typename Read>
int readWhole(Buffer& buffer, Read read) {
    constexpr std::size_t usual = 4096;
    buffer.resize(std::max(buffer.capacity(), usual));
    for (;;) {
        const ssize_t length = read(buffer.data(), buffer.size());
        if (length >= 0) {
            buffer.resize(static_cast<std::size_t>(length));
            return 0;
        }
        if (errno != ERANGE) return errno;
        const ssize_t needed = read(nullptr, 0);
        if (needed < 0) return errno;
        buffer.resize(static_cast<std::size_t>(needed) + usual);
    }
}

/// The names in a list as the system gives it.
std::vector<const char*> split(const std::vector<char>& names) {
    std::vector<const char*> all;
    for (std::size_t i = 0; i < names.size(); i += std::string_view(&names[i]).size() + 1) {
        if (isCopied(&names[i])) all.push_back(&names[i]);
    }
    return all;
}

/// A descriptor that only names a directory has no calls of its own for attributes.
std::string pathOf(int directory) {
    return "/proc/self/fd/" + std::to_string(directory);
}

bool contains(const std::vector<const char*>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

bool AttributeVolumes::know(int fd, dev_t device) {
    const auto [known, isFirst] = known_.try_emplace(device, false);
    if (!isFirst) return known->second;
    const std::string path = pathOf(fd);
    for (const char* name : {"user.coffrelune", accessList}) {
        if (getxattr(path.c_str(), name, nullptr, 0) >= 0 || errno == ENODATA) known->second = true;
    }
    return known->second;
}

int ExtraAttributes::copy(int source, dev_t sourceDevice, const ExtraTarget& target) {
    if (!volumes_.know(target.fd, target.device)) return 0;
    names_.clear();
    const bool listed = volumes_.know(source, sourceDevice) &&
                        readWhole(names_, [source](char* buffer, std::size_t size) {
                            return flistxattr(source, buffer, size);
                        }) == 0;
    if (!listed) names_.clear();
    const std::vector<const char*> names = split(names_);
    int error = target.inherits && !contains(names, accessList) ? dropInherited(target.fd) : 0;
    for (const char* name : names) {
        if (error == 0) error = give(source, name, target);
    }
    return error;
}

int ExtraAttributes::give(int source, const char* name, const ExtraTarget& target) {
    int error = readWhole(value_, [&](char* buffer, std::size_t size) {
        return fgetxattr(source, name, buffer, size);
    });
    if (error == ENODATA) return 0;  // taken away meanwhile
    const auto set = [&] {
        return fsetxattr(target.fd, name, value_.data(), value_.size(), 0) == 0 ? 0 : errno;
    };
    if (error == 0) error = set();
    // Refused for good, it is left out. The owner himself may not write attributes into a file that
    // he may not write.
    if (error == EACCES && fchmod(target.fd, target.mode | S_IRUSR | S_IWUSR) == 0) {
        (void)set();
        if (fchmod(target.fd, target.mode) != 0) return errno;
    }
    return 0;
}

int dropInherited(int fd) {
    if (fremovexattr(fd, accessList) == 0) return 0;
    return errno == ENODATA || errno == ENOTSUP ? 0 : errno;
}

bool handsDownAccessList(int directory) {
    return fgetxattr(directory, listOfChildren, nullptr, 0) > 0;
}

int matchExtras(int source, int target) {
    const std::string from = pathOf(source);
    const std::string to = pathOf(target);
    const auto namesOf = [](const std::string& path, std::vector<char>& names) {
        const int error = readWhole(names, [&](char* buffer, std::size_t size) {
            return listxattr(path.c_str(), buffer, size);
        });
        if (error != 0) names.clear();
        return error;
    };
    std::vector<char> wanted;
    std::vector<char> there;
    // What cannot be read is not matched; the directory is worth keeping without.
    if (namesOf(from, wanted) != 0 || namesOf(to, there) != 0) return 0;
    const std::vector<const char*> names = split(wanted);
    int failure = 0;
    for (const char* name : {accessList, listOfChildren}) {
        const bool isLeft = contains(split(there), name) && !contains(names, name);
        if (isLeft && removexattr(to.c_str(), name) != 0 && errno != ENODATA) failure = errno;
    }
    for (const char* name : names) {
        const auto read = [name](const std::string& path, std::string& value) {
            return readWhole(value, [&](char* buffer, std::size_t size) {
                return getxattr(path.c_str(), name, buffer, size);
            });
        };
        std::string value;
        std::string old;
        if (read(from, value) != 0 || (read(to, old) == 0 && old == value)) continue;
        // A volume that refuses keeps its own.
        (void)setxattr(to.c_str(), name, value.data(), value.size(), 0);
    }
    return failure;
}

}  // namespace coffrelune
