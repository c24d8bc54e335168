#include "platform/posix/program_place.h"

#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <string_view>

namespace coffrelune {
namespace {

std::string currentDirectory() {
    std::array<char, PATH_MAX> buffer{};
    return ::getcwd(buffer.data(), buffer.size()) != nullptr ? buffer.data() : "/";
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

}  // namespace coffrelune
