#include "platform/posix/desktop/desktop_sounds.h"

#include <sys/stat.h>

#include <algorithm>
#include <sstream>

#include "platform/posix/desktop/programs.h"
#include "platform/posix/whole_file.h"

namespace coffrelune {

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

}  // namespace coffrelune
