#include "platform/posix/posix_platform.h"

#include <pwd.h>
#include <sys/resource.h>
#include <sys/stat.h>
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

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

// What runs without a session (a timer, a service) may know nothing but its user.
std::string homeDirectory() {
    std::string home = variable("HOME");
    if (home.starts_with('/')) return home;
    const passwd* user = ::getpwuid(::geteuid());
    return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "";
}

std::string userConfiguration() {
    std::string chosen = variable("XDG_CONFIG_HOME");
    if (chosen.starts_with('/')) return chosen;
    const std::string home = homeDirectory();
    return home.starts_with('/') ? home + "/.config" : "";
}

// A root user may write everywhere, and yet settings are none of a package's files.
bool keepsSettings(const std::string& program) {
    return !program.starts_with("/usr/") && ::access(program.c_str(), W_OK) == 0;
}

// Sounds are looked for among the settings. One that cannot be linked is not heard.
void linkSounds(const std::string& program, const std::string& home) {
    for (const char* name : {"/Ok.wav", "/Erreur.wav"}) {
        const std::string sound = program + "/../share/coffrelune" + name;
        if (::access(sound.c_str(), R_OK) != 0) continue;
        (void)::symlink(sound.c_str(), (home + name).c_str());
    }
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

std::string settingsDirectoryFor(const std::string& program, const std::string& configuration) {
    if (configuration.empty() || keepsSettings(program)) return program;
    std::string home = configuration + "/coffrelune";
    // What cannot be made is told by the first setting that cannot be written.
    (void)::mkdir(configuration.c_str(), S_IRWXU);
    if (::mkdir(home.c_str(), S_IRWXU) == 0) linkSounds(program, home);
    return home;
}

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
    return settingsDirectoryFor(slash == 0 ? "/" : program.substr(0, slash), userConfiguration());
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
