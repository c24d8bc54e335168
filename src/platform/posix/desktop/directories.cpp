#include "platform/posix/desktop/directories.h"

#include <sys/stat.h>

#include <cerrno>

#include "platform/posix/native_path.h"

namespace coffrelune {

std::string configurationDirectory(const char* (*variable)(const char* name)) {
    const auto absolute = [&](const char* name) {
        const char* text = variable(name);
        // A relative one is to be ignored, say those who defined it.
        return std::string(text != nullptr && text[0] == '/' ? text : "");
    };
    std::string configuration = absolute("XDG_CONFIG_HOME");
    if (!configuration.empty()) return configuration;
    const std::string home = absolute("HOME");
    return home.empty() ? home : joinNative(home, ".config");
}

int makeDirectories(const std::string& path) {
    if (mkdir(path.c_str(), 0700) == 0) return 0;
    const int error = errno;
    struct stat information {};
    if (error == EEXIST) {
        return stat(path.c_str(), &information) == 0 && S_ISDIR(information.st_mode) ? 0 : ENOTDIR;
    }
    const std::size_t slash = path.rfind('/');
    if (error != ENOENT || slash == std::string::npos || slash == 0) return error;
    const int above = makeDirectories(path.substr(0, slash));
    if (above != 0) return above;
    return mkdir(path.c_str(), 0700) == 0 || errno == EEXIST ? 0 : errno;
}

}  // namespace coffrelune
