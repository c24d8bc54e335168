#include "platform/posix/posix_platform.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <string_view>

#include "platform/posix/native_path.h"

namespace coffrelune {
namespace {

std::string currentDirectory() {
    std::array<char, PATH_MAX> buffer{};
    return ::getcwd(buffer.data(), buffer.size()) != nullptr ? buffer.data() : "/";
}

/// Copies that wait for the disk keep their directories open, and what is read ahead too.
void allowMoreFiles() {
    constexpr rlim_t enough = 4096;
    rlimit files{};
    if (getrlimit(RLIMIT_NOFILE, &files) != 0 || files.rlim_cur >= enough) return;
    files.rlim_cur = std::min(files.rlim_max, enough);
    (void)setrlimit(RLIMIT_NOFILE, &files);  // with fewer, less waits at once
}

}  // namespace

std::string executablePath() {
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length <= 0) return {};
    std::string path(buffer.data(), static_cast<std::size_t>(length));
    // What the system adds once the file has been replaced, as an update does; its successor bears
    // the name without it.
    constexpr std::string_view replaced = " (deleted)";
    if (path.ends_with(replaced) && ::access(path.c_str(), F_OK) != 0) {
        path.resize(path.size() - replaced.size());
    }
    return path;
}

std::string settingsDirectory() {
    const char* chosen = std::getenv("COFFRELUNE_HOME");
    if (chosen != nullptr && *chosen == '/') return chosen;
    if (chosen != nullptr && *chosen != '\0') return currentDirectory() + "/" + chosen;
    const std::string program = executablePath();
    const std::size_t slash = program.rfind('/');
    if (slash == std::string::npos) return currentDirectory();
    return slash == 0 ? "/" : program.substr(0, slash);
}

PosixPlatform::PosixPlatform(const PosixOptions& options)
    : table_(options.mounts, joinNative(options.settingsDirectory, "Lecteurs.ini"), options.probe),
      files_(table_, options.mounts, locks_),
      drives_(table_),
      guard_(table_, locks_) {
    allowMoreFiles();
}

PosixPlatform::PosixPlatform(std::vector<PathRoot> roots, std::set<dev_t> pseudoDevices,
                             Descent descent, const MountSources& mounts)
    : table_(std::move(roots), std::move(pseudoDevices)),
      files_(table_, mounts, locks_, descent),
      drives_(table_),
      guard_(table_, locks_) {}

}  // namespace coffrelune
