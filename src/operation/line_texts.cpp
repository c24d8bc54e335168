#include "operation/line_texts.h"

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

}  // namespace coffrelune
