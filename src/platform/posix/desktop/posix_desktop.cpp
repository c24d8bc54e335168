#include "platform/posix/desktop/posix_desktop.h"

#include <sys/stat.h>

#include <algorithm>
#include <sstream>
#include <vector>

#include "platform/posix/desktop/programs.h"
#include "platform/posix/native_path.h"
#include "platform/posix/whole_file.h"

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

// Each card has a line " 0 [PCH            ]: ..." and one with its long name below.
int DesktopSounds::cardCount() const {
    std::string text;
    constexpr std::uint64_t limit = 1U << 20;
    if (readWholeFile(sources_.cards, limit, text) != 0) return 0;
    int count = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        int number = -1;
        char bracket = '\0';
        if (std::istringstream(line) >> number >> bracket && number >= 0 && bracket == '[') ++count;
    }
    return count;
}

bool DesktopSounds::hasServer() const {
    return std::any_of(sources_.serverSockets.begin(), sources_.serverSockets.end(),
                       [](const std::string& socket) {
                           struct stat information {};
                           return stat(socket.c_str(), &information) == 0 &&
                                  S_ISSOCK(information.st_mode);
                       });
}

std::vector<std::string> DesktopSounds::playerOf(const std::string& native) const {
    std::vector<std::vector<std::string>> players = {{"canberra-gtk-play", "--file=" + native},
                                                     {"paplay", native},
                                                     {"pw-play", native},
                                                     {"aplay", "-q", native}};
    // Without a server only the last one speaks to the card itself; with one it may find it busy.
    if (!hasServer()) std::rotate(players.begin(), players.end() - 1, players.end());
    for (std::vector<std::string>& player : players) {
        player[0] = findProgram(player[0], sources_.searchPath);
        if (!player[0].empty()) return player;
    }
    return {};
}

int DesktopSounds::deviceCount() {
    if (playerOf("").empty()) return 0;
    const int cards = cardCount();
    return cards == 0 && hasServer() ? 1 : cards;
}

void DesktopSounds::play(const std::string& path) {
    Place place;
    if (table_.paths().locate(path, place).ok()) startProgram(playerOf(place.native));
}

DesktopOptions DesktopOptions::fromEnvironment(const char* (*variable)(const char* name)) {
    const auto textOf = [&](const char* name) {
        const char* text = variable(name);
        return std::string(text == nullptr ? "" : text);
    };
    DesktopOptions options;
    std::string configuration = textOf("XDG_CONFIG_HOME");
    // A relative one is to be ignored, say those who defined it.
    const std::string home = textOf("HOME");
    if (!configuration.starts_with('/') && home.starts_with('/')) {
        configuration = joinNative(home, ".config");
    }
    // Without either there is no user to start anything for.
    if (configuration.starts_with('/')) {
        options.autostartDirectory = joinNative(configuration, "autostart");
    }

    options.sounds.searchPath = textOf("PATH");
    const std::string runtime = textOf("XDG_RUNTIME_DIR");
    if (runtime.starts_with('/')) {
        options.sounds.serverSockets = {joinNative(runtime, "pulse/native"),
                                        joinNative(runtime, "pipewire-0")};
    }
    return options;
}

}  // namespace coffrelune
