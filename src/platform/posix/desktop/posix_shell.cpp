#include "platform/posix/desktop/posix_shell.h"

#include <algorithm>
#include <vector>

#include "platform/posix/desktop/programs.h"

namespace coffrelune {
namespace {

constexpr const char* fileManager = "org.freedesktop.FileManager1";
constexpr const char* fileManagerObject = "/org/freedesktop/FileManager1";
constexpr const char* showItemProperties = "org.freedesktop.FileManager1.ShowItemProperties";

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// "https://...", "mailto:...". One letter before the colon is a drive.
bool isAddress(const std::string& text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos || colon < 2 || !isLetter(text[0])) return false;
    return std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(colon), [](char c) {
        return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
    });
}

}  // namespace

std::string fileUri(const std::string& native) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string uri = "file://";
    for (const char c : native) {
        if (isLetter(c) || isDigit(c) || std::string_view("/-._~").find(c) != std::string::npos) {
            uri += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            uri += {'%', digits[byte >> 4], digits[byte & 15]};
        }
    }
    return uri;
}

std::string PosixShell::nativeOf(const std::string& target) const {
    if (target.starts_with('/')) return target;
    Place place;
    if (table_.paths().locate(target, place).ok()) return place.native;
    return findProgram(target, searchPath_);
}

bool PosixShell::tryStart(std::vector<std::string> arguments) {
    arguments[0] = findProgram(arguments[0], searchPath_);
    if (arguments[0].empty()) return false;
    startProgram(arguments);
    return true;
}

void PosixShell::openWithDesktop(const std::string& target) {
    (void)tryStart({"xdg-open", target});
}

void PosixShell::open(const std::string& target, const std::string& parameters) {
    if (isAddress(target)) {
        openWithDesktop(target);
        return;
    }
    const std::string native = nativeOf(target);
    if (native.empty()) return;
    if (!isProgramFile(native)) {
        openWithDesktop(native);
        return;
    }
    std::vector<std::string> arguments = splitWords(parameters);
    arguments.insert(arguments.begin(), native);
    startProgram(arguments);
}

void PosixShell::showProperties(const std::string& path) {
    const std::string native = nativeOf(path);
    if (native.empty()) return;
    // Commas and quotes are escaped in the URI, so neither program takes it for several values.
    const std::string uri = fileUri(native);
    const bool sent = tryStart({"dbus-send", "--session", std::string("--dest=") + fileManager,
                                "--type=method_call", fileManagerObject, showItemProperties,
                                "array:string:" + uri, "string:"});
    if (sent) return;
    (void)tryStart({"gdbus", "call", "--session", "--dest", fileManager, "--object-path",
                    fileManagerObject, "--method", showItemProperties, "['" + uri + "']", "''"});
}

void PosixShell::openTaskScheduler() {
    const std::vector<std::vector<std::string>> known = {
        {"gnome-schedule"}, {"kcmshell6", "kcm_cron"}, {"kcmshell5", "kcm_cron"}, {"zeit"}};
    (void)std::any_of(known.begin(), known.end(),
                      [this](const auto& arguments) { return tryStart(arguments); });
}

void PosixShell::playSystemSound(const std::string& name) {
    // Sound themes have names of their own; what has none there is the plain bell.
    const std::string id = name == "SystemStart" ? "desktop-login" : "bell";
    if (tryStart({"canberra-gtk-play", "--id=" + id})) return;
    const std::string theme = "/usr/share/sounds/freedesktop/stereo/";
    (void)tryStart({"paplay", theme + (id == "bell" ? "bell.oga" : "service-login.oga")});
}

}  // namespace coffrelune
