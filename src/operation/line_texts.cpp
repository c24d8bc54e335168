#include "operation/line_texts.h"

#include "engine/line_roots.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
namespace {

// What the left label of the reversed layout appends; nothing for a drive root.
std::string appendedComponent(const std::string& source) {
    return isDriveRoot(source) ? std::string() : splitPath(source).last;
}

std::string withoutAppended(const std::string& text, const std::string& source) {
    const std::string appended = appendedComponent(source);
    const SplitPath split = splitPath(text);
    if (appended.empty() || split.last != appended || split.parent == text) return text;
    return isDriveRoot(split.parent) ? split.parent : withoutTrailingBackslash(split.parent);
}

void writePath(SystemMod& system, const char* key, int line, const std::string& path) {
    (void)system.WriteSetting(system.configurationName, key + std::to_string(line),
                              QuoteValue(path));
}

}  // namespace

LineTexts lineTexts(const SystemMod& system, int line) {
    const auto& [source, destination, selected] = system.lineAt(line);
    if (currentLayout(system) == Layout::normal) return {source, destination};
    const std::string appended = appendedComponent(source);
    if (destination.empty() || appended.empty()) return {destination, source};
    return {joinPath(destination, appended), source};
}

void editLine(SystemMod& system, int line, LineSide side, const std::string& text) {
    auto& [source, destination, selected] = system.lineAt(line);
    const bool reversed = currentLayout(system) == Layout::reversed;
    if ((side == LineSide::left) != reversed) {
        source = text;
    } else {
        destination = reversed ? withoutAppended(text, source) : text;
    }
    const bool sourceChanged = (side == LineSide::left) != reversed;
    // A restore stores both together: its labels show one line from both ends.
    const bool both = system.operationKind == OperationKind::restore;
    if (sourceChanged || both) writePath(system, "Source", line, source);
    if (!sourceChanged || both) writePath(system, "Destination", line, destination);
}

namespace {

// The spelling of the disk, which tells "docs" from "Docs" where the disk does.
std::string placeOf(const SystemMod& system, const std::string& path) {
    return system.platform.files.resolve(withoutTrailingBackslash(path));
}

std::string told(int first, int second, const std::string& copy) {
    return "Les lignes " + std::to_string(first + 1) + " et " + std::to_string(second + 1) +
           " ont la même copie, " + visibleControls(copy) +
           " : de deux fichiers de même nom, un seul y est gardé.";
}

// Every place is resolved once, though each line is compared with all that come before it.
struct LinePlaces {
    int index;
    bool selected;
    std::string copy;  // as the line spells it
    std::string copyPlace;
    std::string originalPlace;
};

std::vector<LinePlaces> placesOfLines(const SystemMod& system) {
    std::vector<LinePlaces> places;
    for (const RunLine& line : filledLines(system)) {
        places.push_back({line.index, system.lineAt(line.index).selected != 0, line.roots.copy(),
                          placeOf(system, line.roots.copy()),
                          placeOf(system, line.roots.original())});
    }
    return places;
}

}  // namespace

std::vector<std::string> sharedCopies(const SystemMod& system) {
    std::vector<std::string> texts;
    const std::vector<LinePlaces> places = placesOfLines(system);
    for (std::size_t i = 1; i < places.size(); ++i) {
        const LinePlaces& later = places[i];
        for (std::size_t k = 0; k < i; ++k) {
            const LinePlaces& earlier = places[k];
            if (!earlier.selected && !later.selected) continue;
            if (earlier.copyPlace != later.copyPlace) continue;
            if (earlier.originalPlace == later.originalPlace) continue;
            texts.push_back(told(earlier.index, later.index, later.copy));
        }
    }
    return texts;
}

}  // namespace coffrelune
