#include "platform/posix/desktop/autostart_entry.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/errors.h"
#include "platform/posix/native_path.h"
#include "platform/posix/whole_file.h"

namespace coffrelune {
namespace {

constexpr std::string_view runKey = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Run)";
constexpr std::string_view valueName = "Coffrelune";

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalButCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

Status checkValue(RegistryService::Root root, const std::string& key, const std::string& name) {
    if (root == RegistryService::Root::localMachine) {
        return Status::failure(error_number::accessDenied, key);
    }
    if (!equalButCase(key, runKey)) return Status::failure(error_number::fileNotFound, key);
    if (!equalButCase(name, valueName)) return Status::failure(error_number::notSupported, key);
    return {};
}

bool exists(const std::string& native) {
    struct stat information {};
    return stat(native.c_str(), &information) == 0;
}

/// The path with ".exe" may be what another system would call this program.
std::string programOf(const std::string& native) {
    constexpr std::string_view extension = ".exe";
    if (native.size() <= extension.size() || exists(native)) return native;
    const std::size_t length = native.size() - extension.size();
    return equalButCase(native.substr(length), extension) ? native.substr(0, length) : native;
}

/// Makes a directory and those above it, for the user alone. 0 or an errno value.
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

std::string entryText(const std::string& program) {
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Version=1.0\n"
           "Name=Coffrelune\n"
           "Comment=Sauvegarde de fichiers\n"
           "Icon=coffrelune\n"
           "Exec=" +
           execValue(program) +
           "\n"
           "Terminal=false\n";
}

}  // namespace

// https://specifications.freedesktop.org/desktop-entry-spec/latest/exec-variables.html
std::string execValue(const std::string& native) {
    std::string argument = "\"";
    for (const char c : native) {
        if (std::string_view("\"`$\\").find(c) != std::string_view::npos) argument += '\\';
        if (c == '%') argument += '%';
        argument += c;
    }
    argument += '"';
    std::string value;
    for (const char c : argument) {
        if (c == '\\') {
            value += "\\\\";
        } else if (c == '\n') {
            value += "\\n";
        } else if (c == '\r') {
            value += "\\r";
        } else if (c == '\t') {
            value += "\\t";
        } else {
            value += c;
        }
    }
    return value;
}

std::string AutostartEntry::file() const {
    return joinNative(directory_, "Coffrelune.desktop");
}

Status AutostartEntry::setText(Root root, const std::string& key, const std::string& name,
                               const std::string& data) {
    Status allowed = checkValue(root, key, name);
    if (!allowed.ok()) return allowed;
    if (directory_.empty()) return Status::failure(error_number::pathNotFound, key);
    Place place;
    Status located = table_.paths().locate(data, place);
    if (!located.ok()) return located;
    int error = makeDirectories(directory_);
    if (error == 0)
        error = writeWholeFile(file(), entryText(programOf(place.native)), Durability::now);
    return error == 0 ? Status() : systemFailure(error, data);
}

Status AutostartEntry::deleteValue(Root root, const std::string& key, const std::string& name) {
    Status allowed = checkValue(root, key, name);
    if (!allowed.ok()) return allowed;
    if (directory_.empty()) return Status::failure(error_number::fileNotFound, key);
    return unlink(file().c_str()) == 0 ? Status() : systemFailure(errno, key);
}

}  // namespace coffrelune
