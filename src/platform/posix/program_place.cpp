#include "platform/posix/program_place.h"

#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>

namespace coffrelune {
namespace {

std::string currentDirectory() {
    std::array<char, PATH_MAX> buffer{};
    return ::getcwd(buffer.data(), buffer.size()) != nullptr ? buffer.data() : "/";
}

std::string executablePath() {
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    return length > 0 ? std::string(buffer.data(), static_cast<std::size_t>(length)) : "";
}

}  // namespace

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
