#include <algorithm>

#include "settings/encoding.h"
#include "settings/system_mod.h"
#include "system/text.h"

namespace coffrelune {
namespace {

// Parts a packed list; a directory that bears it in its name has it escaped there.
constexpr char separator = '|';
constexpr std::string_view separators(&separator, 1);

std::string prefix(int line) {
    return "RepExclu" + std::to_string(line) + '_';
}

std::string directoryKey(int line, std::size_t number) {
    return prefix(line) + "Rep" + std::to_string(number);
}

// True of every directory's key of the line, whatever its number.
bool isDirectoryKey(const std::string& key, int line) {
    const std::string start = prefix(line) + "Rep";
    const bool numbered = key.size() > start.size() &&
                          std::all_of(key.begin() + static_cast<std::ptrdiff_t>(start.size()),
                                      key.end(), [](char c) { return c >= '0' && c <= '9'; });
    return numbered && equalIgnoringCase(key.substr(0, start.size()), start);
}

// Quoted only where reading would take something off its ends.
std::string storable(const std::string& value) {
    constexpr std::string_view blanks = " \t\v\f";
    const bool blankEnd = !value.empty() && (blanks.find(value.front()) != std::string_view::npos ||
                                             blanks.find(value.back()) != std::string_view::npos);
    return blankEnd ? QuoteValue(value) : protectQuotes(value);
}

}  // namespace

void SystemMod::LoadExclusions(int line) {
    exclusions.mode = static_cast<ExclusionMode>(
        leadingNumber(ReadSetting(configurationName, prefix(line) + "Mode")));
    exclusions.directories.clear();
    while (true) {
        const std::size_t number = exclusions.directories.size() + 1;
        std::string directory = ReadSetting(configurationName, directoryKey(line, number));
        if (directory.empty()) return;
        exclusions.directories.push_back(std::move(directory));
    }
}

std::string SystemMod::PackExclusions(int line) {
    std::string packed = ReadSetting(configurationName, prefix(line) + "Mode");
    for (std::size_t number = 1;; ++number) {
        const std::string directory = ReadSetting(configurationName, directoryKey(line, number));
        if (directory.empty()) return packed;
        packed += separator + escapeCharacters(directory, separators);
    }
}

void SystemMod::StoreExclusions(const std::string& packed, int line) {
    ClearExclusions(line);
    const std::vector<std::string> elements = splitText(packed, separator);
    keep(configurationName, prefix(line) + "Mode", storable(elements[0]));
    for (std::size_t number = 1; number < elements.size(); ++number) {
        if (elements[number].empty()) return;
        writeExcludedDirectory(line, number, unescapeCharacters(elements[number], separators));
    }
}

void SystemMod::writeExclusionMode(int line, ExclusionMode mode) {
    keep(configurationName, prefix(line) + "Mode", std::to_string(static_cast<std::int32_t>(mode)));
}

void SystemMod::writeExcludedDirectory(int line, std::size_t number, const std::string& directory) {
    keep(configurationName, directoryKey(line, number), storable(directory));
}

void SystemMod::ClearExclusions(int line) {
    LoadExclusions(line);
    keep(configurationName, prefix(line) + "Mode", "0");
    // Those behind a gap as well: they would join the list that fills it.
    for (const std::string& key : file_.keys(configurationName)) {
        if (isDirectoryKey(key, line)) keep(configurationName, key, "");
    }
}

}  // namespace coffrelune
