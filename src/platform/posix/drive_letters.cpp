#include "platform/posix/drive_letters.h"

#include <algorithm>
#include <cerrno>

#include "platform/posix/octal.h"
#include "platform/posix/whole_file.h"

namespace coffrelune {
namespace {

constexpr std::uint64_t largestFile = 1 << 16;
constexpr std::string_view section = "[Lecteurs]";
constexpr std::string_view introduction =
    "; Lettres de lecteur attribuées aux volumes. Une lettre ne change jamais de volume.\n";

/// A text that holds a byte which is always written escaped was not written by the program.
bool unescape(std::string_view text, std::string& identity) {
    const bool plain = std::all_of(text.begin(), text.end(),
                                   [](char c) { return static_cast<unsigned char>(c) > 0x20; });
    return plain && unescapeOctal(text, identity);
}

bool isIdentity(std::string_view text) {
    return (text.starts_with("uuid:") || text.starts_with("path:/")) && text.size() > 6;
}

/// False when the line makes no sense or contradicts another; a letter or a volume that is named
/// twice leaves each of the letters concerned in doubt.
bool parseLine(std::string_view line, std::map<char, std::string>& volumes) {
    if (line.size() < 2 || line[0] < 'D' || line[0] > 'Z' || line[1] != '=') return false;
    std::string identity;
    const bool readable = unescape(line.substr(2), identity) && isIdentity(identity);
    bool sound = readable && !volumes.contains(line[0]);
    for (auto& [letter, volume] : volumes) {
        if (!readable || volume != identity) continue;
        volume.clear();
        sound = false;
    }
    volumes[line[0]] = sound ? identity : std::string();
    return sound;
}

}  // namespace

std::map<std::string, char> DriveLetters::assign(const std::vector<std::string>& identities) {
    load();
    bool added = false;
    std::map<std::string, char> letters;
    for (const std::string& identity : identities) {
        auto known = std::find_if(volumes_.begin(), volumes_.end(),
                                  [&](const auto& volume) { return volume.second == identity; });
        if (known == volumes_.end()) {
            const char letter = damaged_ ? '\0' : freeLetter();
            if (letter == '\0') continue;
            known = volumes_.emplace(letter, identity).first;
            added = true;
        }
        letters.emplace(identity, known->first);
    }
    if (added) {
        // A letter that cannot be remembered still serves this run.
        [[maybe_unused]] const int error = writeWholeFile(file_, text(), Durability::now);
    }
    return letters;
}

void DriveLetters::load() {
    std::string bytes;
    const int error = readWholeFile(file_, largestFile, bytes);
    damaged_ = error != 0 && error != ENOENT && error != ENOTDIR;
    Volumes stored;
    if (error == 0) damaged_ = !parse(bytes, stored);
    for (auto& [letter, volume] : stored) {
        std::string& known = volumes_[letter];
        if (known.empty()) known = volume;
        if (known != volume) damaged_ = true;  // what this run has given stays given
    }
}

/// False when the file is not as it was written; `volumes` then holds what is beyond doubt.
bool DriveLetters::parse(const std::string& bytes, Volumes& volumes) {
    bool inSection = false;
    bool found = false;
    bool sound = bytes.ends_with('\n');  // else the last line may have lost its own end
    for (std::size_t start = 0; start < bytes.size();) {
        const std::size_t end = std::min(bytes.find('\n', start), bytes.size());
        std::string_view line(bytes.data() + start, end - start);
        start = end + 1;
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (line.empty() || line.starts_with(';')) continue;
        if (line.starts_with('[')) {
            inSection = line == section;
            found = found || inSection;
        } else if (end == bytes.size() || !inSection || !parseLine(line, volumes)) {
            sound = false;
        }
    }
    return sound && found;
}

char DriveLetters::freeLetter() const {
    for (char letter = 'D'; letter <= 'Z'; ++letter) {
        if (!volumes_.contains(letter)) return letter;
    }
    return '\0';
}

std::string DriveLetters::text() const {
    std::string text(introduction);
    text.append(section) += '\n';
    for (const auto& [letter, identity] : volumes_) {
        text.append(1, letter).append("=").append(escapeOctal(identity)) += '\n';
    }
    return text;
}

}  // namespace coffrelune
