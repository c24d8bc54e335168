#include "platform/posix/native_path.h"

#include <sys/sysmacros.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <deque>

#include "platform/posix/interrupted.h"

namespace coffrelune {
namespace {

constexpr int maximumLinks = 40;  // as the kernel

std::string joined(const std::vector<std::string>& components) {
    std::string path;
    for (const std::string& component : components) path += "/" + component;
    return path.empty() ? "/" : path;
}

}  // namespace

ShortPath::ShortPath(const std::string& path) : path_(path.c_str()) {
    std::size_t start = 0;
    while (path.size() - start >= PATH_MAX) {
        const std::size_t cut = path.rfind('/', start + PATH_MAX - 2);
        if (cut == std::string::npos || cut <= start) {
            error_ = ENAMETOOLONG;
            return;
        }
        const std::string piece = path.substr(start, cut - start);
        UniqueFd next(openat(fd(), piece.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!next.valid()) {
            error_ = errno;
            return;
        }
        directory_ = std::move(next);
        start = path.find_first_not_of('/', cut);
        if (start == std::string::npos) start = path.size();
    }
    path_ = start == path.size() && start > 0 ? "." : path.c_str() + start;
}

int openEntry(int directory, const char* name, int flags, UniqueFd& fd) {
    fd.reset(uninterrupted([&] { return openat(directory, name, flags | O_CLOEXEC); }));
    return fd.valid() ? 0 : errno;
}

int openQuietly(int directory, const char* name, int flags, UniqueFd& fd) {
    const int error = openEntry(directory, name, flags | O_NOATIME, fd);
    return error == EPERM ? openEntry(directory, name, flags, fd) : error;
}

int openPath(const std::string& path, int flags, UniqueFd& fd) {
    const ShortPath reach(path);
    return reach.error() != 0 ? reach.error() : openEntry(reach.fd(), reach.path(), flags, fd);
}

int statEntry(int directory, const char* name, bool follow, struct statx& information) {
    // Where a name is given, the system need not look for its end first.
    const int what = *name == '\0' ? AT_EMPTY_PATH : follow ? 0 : AT_SYMLINK_NOFOLLOW;
    const int flags = AT_NO_AUTOMOUNT | what;
    constexpr unsigned wanted = STATX_BASIC_STATS | STATX_BTIME;
    // A server may be interrupted as it answers.
    const int looked =
        uninterrupted([&] { return ::statx(directory, name, flags, wanted, &information); });
    return looked == 0 ? 0 : errno;
}

int statPath(const std::string& path, bool follow, struct statx& information) {
    const ShortPath reach(path);
    if (reach.error() != 0) return reach.error();
    return statEntry(reach.fd(), reach.path(), follow, information);
}

dev_t deviceOf(const struct statx& information) {
    return makedev(information.stx_dev_major, information.stx_dev_minor);
}

struct stat statOf(const struct statx& information) {
    const auto time = [](const statx_timestamp& from) {
        return timespec{static_cast<time_t>(from.tv_sec), static_cast<long>(from.tv_nsec)};
    };
    struct stat result {};
    result.st_dev = deviceOf(information);
    result.st_ino = information.stx_ino;
    result.st_mode = information.stx_mode;
    result.st_nlink = information.stx_nlink;
    result.st_uid = information.stx_uid;
    result.st_gid = information.stx_gid;
    result.st_size = static_cast<off_t>(information.stx_size);
    result.st_blksize = static_cast<blksize_t>(information.stx_blksize);
    result.st_blocks = static_cast<blkcnt_t>(information.stx_blocks);
    result.st_atim = time(information.stx_atime);
    result.st_mtim = time(information.stx_mtime);
    result.st_ctim = time(information.stx_ctime);
    return result;
}

int readLink(int directory, const char* name, std::string& text) {
    text.resize(PATH_MAX);
    const ssize_t length = readlinkat(directory, name, text.data(), text.size());
    if (length < 0) return errno;
    text.resize(static_cast<std::size_t>(length));
    return 0;
}

std::vector<std::string> splitNative(std::string_view path) {
    std::vector<std::string> components;
    for (std::size_t start = 0; start < path.size();) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string_view component = path.substr(start, end - start);
        if (!component.empty() && component != ".") components.emplace_back(component);
        start = end + 1;
    }
    return components;
}

bool isWithin(std::string_view path, std::string_view root) {
    if (root == "/") return path.starts_with('/');
    return path.starts_with(root) && (path.size() == root.size() || path[root.size()] == '/');
}

std::string_view below(std::string_view path, std::string_view root) {
    path.remove_prefix(root.size());
    if (path.starts_with('/')) path.remove_prefix(1);
    return path;
}

std::string joinNative(const std::string& directory, std::string_view rest) {
    if (rest.empty()) return directory;
    std::string path = directory;
    if (!path.ends_with('/')) path += '/';
    return path.append(rest);
}

std::string normalizedPath(const std::string& absolute) {
    std::vector<std::string> kept;
    for (std::string& component : splitNative(absolute)) {
        if (component != "..") {
            kept.push_back(std::move(component));
        } else if (!kept.empty()) {
            kept.pop_back();
        }
    }
    return joined(kept);
}

std::string canonicalPath(const std::string& absolute) {
    const auto components = splitNative(absolute);
    std::deque<std::string> pending(components.begin(), components.end());
    std::vector<std::string> done;
    int links = 0;
    bool exists = true;
    std::string target;
    while (!pending.empty()) {
        std::string component = std::move(pending.front());
        pending.pop_front();
        if (component == "..") {
            if (!done.empty()) done.pop_back();
            continue;
        }
        done.push_back(std::move(component));
        if (!exists) continue;
        const std::string path = joined(done);
        const ShortPath reach(path);
        const int error =
            reach.error() != 0 ? reach.error() : readLink(reach.fd(), reach.path(), target);
        if (error == EINVAL) continue;
        exists = error == 0 && ++links <= maximumLinks;
        if (!exists) continue;
        done.pop_back();
        if (target.starts_with('/')) done.clear();
        const auto replacement = splitNative(target);
        pending.insert(pending.begin(), replacement.begin(), replacement.end());
    }
    return joined(done);
}

namespace {

constexpr std::string_view backslash = "\xEF\x81\x9C";  // U+F05C
constexpr std::string_view colon = "\xEF\x80\xBA";      // U+F03A
constexpr std::string_view escape = "\xEF\x83\xBF";     // U+F0FF

bool isPrivate(std::string_view text) {
    return text.starts_with(backslash) || text.starts_with(colon) || text.starts_with(escape);
}

}  // namespace

bool isSameInBoth(std::string_view name) {
    return std::none_of(name.begin(), name.end(),
                        [](char c) { return c == '\\' || c == ':' || c == backslash.front(); });
}

std::string toCoreName(std::string_view native) {
    if (isSameInBoth(native)) return std::string(native);
    std::string core;
    core.reserve(native.size());
    for (std::size_t i = 0; i < native.size(); ++i) {
        if (native[i] == '\\') {
            core += backslash;
        } else if (native[i] == ':') {
            core += colon;
        } else {
            if (isPrivate(native.substr(i))) core += escape;
            core += native[i];
        }
    }
    return core;
}

std::string toNativeName(std::string_view core) {
    if (isSameInBoth(core)) return std::string(core);
    std::string native;
    native.reserve(core.size());
    for (std::size_t i = 0; i < core.size();) {
        const std::string_view rest = core.substr(i);
        if (rest.starts_with(escape) && isPrivate(rest.substr(escape.size()))) {
            native += rest.substr(escape.size(), escape.size());
            i += 2 * escape.size();
        } else if (rest.starts_with(backslash) || rest.starts_with(colon)) {
            native += rest.starts_with(backslash) ? '\\' : ':';
            i += backslash.size();
        } else {
            native += core[i++];
        }
    }
    return native;
}

}  // namespace coffrelune
