#include "engine/rules.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "system/date_time.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
namespace {

constexpr std::array<std::string_view, 7> systemFiles = {
    "pagefile.sys",   "hiberfil.sys", "thumbs.db",       "ntuser.dat",
    "ntuser.dat.log", "usrclass.dat", "usrclass.dat.log"};
constexpr std::array<std::string_view, 4> systemFolders = {"System Volume Information", "Recycled",
                                                           "..", "."};
constexpr std::array<std::string_view, 3> specialFolders = {"Ma musique", "Mes images",
                                                            "Mes vidéos"};

template <typename List>
bool contains(const List& list, std::string_view text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

// How a directory is compared with what the line leaves out.
using Equal = bool (*)(std::string_view, std::string_view);

bool equalExactly(std::string_view a, std::string_view b) {
    return a == b;
}

// The entries that the exclusions dialog makes begin with a backslash ("\Tmp") unless the source is
// a drive root: joined with exactly one backslash, both kinds name the directory that was chosen.
bool isListed(const std::string& path, const std::string& root, const ExclusionList& list,
              Equal equal) {
    return std::any_of(
        list.directories.begin(), list.directories.end(),
        [&](const std::string& entry) { return equal(joinPath(root, entry), path); });
}

bool isLeftOut(const std::string& path, const std::string& root, const ExclusionList& list,
               Equal equal) {
    switch (list.mode) {
        case ExclusionMode::all:
            return true;
        case ExclusionMode::listed:
            return isListed(path, root, list, equal);
        default:
            return false;
    }
}

bool isExcluded(const std::string& parent, const std::string& name, const LeftOut& leftOut,
                Equal equal) {
    if (contains(systemFolders, name)) return true;
    const std::string path = parent + name;
    return equal(path, leftOut.windowsDirectory) ||
           std::any_of(leftOut.lists.begin(), leftOut.lists.end(), [&](const ExclusionList& list) {
               return isLeftOut(path, leftOut.root, list, equal);
           });
}

}  // namespace

bool isSystemFile(const std::string& name) {
    return std::any_of(systemFiles.begin(), systemFiles.end(),
                       [&](std::string_view file) { return equalIgnoringCase(name, file); });
}

bool isExcludedDirectory(const std::string& parent, const std::string& name,
                         const LeftOut& leftOut) {
    return isExcluded(parent, name, leftOut, equalExactly);
}

bool isExcludedFromDeletion(const std::string& parent, const std::string& name,
                            const LeftOut& leftOut) {
    return isExcluded(parent, name, leftOut, equalIgnoringCase);
}

bool isSpecialFolder(const std::string& path) {
    return contains(specialFolders, splitPath(path).last);
}

namespace {

constexpr std::uint64_t oneHour = 36'000'000'000;  // in units of 100 ns

bool equalButForTheHour(const LocalTime& a, const LocalTime& b) {
    return a.year == b.year && a.month == b.month && a.day == b.day && a.minute == b.minute &&
           a.second == b.second;
}

// Midnight is left out on both sides: the hour before it belongs to another day.
void forgiveSummerTime(std::uint64_t& source, std::uint64_t destination) {
    const LocalTime from = calendarOfFileTime(source);
    const LocalTime to = calendarOfFileTime(destination);
    if (!equalButForTheHour(from, to)) return;
    if (from.hour >= 1 && from.hour - 1 == to.hour) source -= oneHour;
}

}  // namespace

int compareDates(std::uint64_t source, std::uint64_t destination, bool forgiveHour) {
    if (forgiveHour && source > destination) forgiveSummerTime(source, destination);
    if (source == destination) return 0;
    return source < destination ? -1 : 1;
}

bool haveSameTime(const FileEntry& source, const FileEntry& destination,
                  const DecisionOptions& options) {
    const FileEntry& original = options.sourceIsCopy ? destination : source;
    const FileEntry& copy = options.sourceIsCopy ? source : destination;
    return original.times.lastWrite == copy.times.lastWrite ||
           options.grid.held(original.times.lastWrite) == copy.times.lastWrite;
}

namespace {

// Where the volume holds no links, it holds what they lead to: their sizes say nothing.
bool haveSameSize(const FileEntry& source, const FileEntry& destination) {
    return source.size == destination.size || source.isLink() != destination.isLink();
}

}  // namespace

Decision decide(const FileEntry& source, const FileEntry* destination,
                const DecisionOptions& options) {
    // A directory is no copy of a file, whatever its time: the attempt to write the file fails by
    // its name, which is how the user learns that it was never saved.
    const bool isNew = destination == nullptr || destination->isDirectory();
    if (!options.compare) return {true, isNew, isNew ? " à copier" : " à remplacer"};
    if (isNew) return {true, true, " n'existe pas"};

    if (haveSameSize(source, *destination) && haveSameTime(source, *destination, options)) {
        return {false, false, "No"};
    }
    const int order = compareDates(source.times.lastWrite, destination->times.lastWrite,
                                   options.newerOnly && options.forgiveHour);
    if (order > 0) return {true, false, " est plus ancien"};
    if (order < 0 && !options.newerOnly) return {true, false, " est plus récent"};
    // Equal times settle it, whatever size and attributes say: a difference in those alone never
    // causes a copy.
    return {false, false, "No"};
}

}  // namespace coffrelune
