#include "platform/posix/desktop/posix_desktop.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <sstream>
#include <vector>

#include "platform/characters.h"
#include "platform/posix/desktop/directories.h"
#include "platform/posix/desktop/programs.h"
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

namespace {

constexpr const char* fileManager = "org.freedesktop.FileManager1";
constexpr const char* fileManagerObject = "/org/freedesktop/FileManager1";
constexpr const char* showItemProperties = "org.freedesktop.FileManager1.ShowItemProperties";

/// "https://...", "mailto:...". One letter before the colon is a drive.
bool isAddress(const std::string& text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos || colon < 2 || !ascii::isLetter(text[0])) return false;
    return std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(colon), [](char c) {
        return ascii::isLetter(c) || ascii::isDigit(c) || c == '+' || c == '-' || c == '.';
    });
}

}  // namespace

std::string fileUri(const std::string& native) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string uri = "file://";
    for (const char c : native) {
        if (ascii::isLetter(c) || ascii::isDigit(c) ||
            std::string_view("/-._~").find(c) != std::string::npos) {
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

namespace {

const std::vector<std::vector<std::string>>& knownSchedulers() {
    static const std::vector<std::vector<std::string>> known = {
        {"gnome-schedule"}, {"kcmshell6", "kcm_cron"}, {"kcmshell5", "kcm_cron"}, {"zeit"}};
    return known;
}

}  // namespace

bool PosixShell::hasTaskScheduler() {
    return std::any_of(
        knownSchedulers().begin(), knownSchedulers().end(),
        [this](const auto& words) { return !findProgram(words.front(), searchPath_).empty(); });
}

void PosixShell::openTaskScheduler() {
    (void)std::any_of(knownSchedulers().begin(), knownSchedulers().end(),
                      [this](const auto& arguments) { return tryStart(arguments); });
}

namespace {

// The body of a message may hold marks of text, which a name must not pass for.
std::string withoutMarkup(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '&') {
            result += "&amp;";
        } else if (c == '<') {
            result += "&lt;";
        } else {
            result += c;
        }
    }
    return result;
}

// One text argument as "gdbus" reads it.
std::string quotedText(const std::string& text) {
    std::string result = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\') result += '\\';
        result += c == '\n' ? ' ' : c;
    }
    return result + "'";
}

}  // namespace

// https://specifications.freedesktop.org/notification-spec/latest/
void PosixShell::notify(const std::string& title, const std::string& text) {
    constexpr const char* name = "org.freedesktop.Notifications";
    const std::string body = withoutMarkup(text);
    if (tryStart(
            {"notify-send", "--app-name=Coffrelune", "--icon=coffrelune", "--", title, body})) {
        return;
    }
    (void)tryStart({"gdbus", "call", "--session", "--dest", name, "--object-path",
                    "/org/freedesktop/Notifications", "--method", std::string(name) + ".Notify",
                    "'Coffrelune'", "uint32 0", "'coffrelune'", quotedText(title), quotedText(body),
                    "@as []", "@a{sv} {}", "int32 -1"});
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
    options.scheduler = SchedulerOptions::fromEnvironment(variable);
    const std::string configuration = configurationDirectory(variable);
    // Without one there is no user to start anything for.
    if (!configuration.empty()) options.autostartDirectory = joinNative(configuration, "autostart");

    options.sounds.searchPath = textOf("PATH");
    const std::string runtime = textOf("XDG_RUNTIME_DIR");
    if (runtime.starts_with('/')) {
        options.sounds.serverSockets = {joinNative(runtime, "pulse/native"),
                                        joinNative(runtime, "pipewire-0")};
    }
    return options;
}

}  // namespace coffrelune
