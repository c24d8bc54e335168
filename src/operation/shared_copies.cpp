#include "operation/shared_copies.h"

#include "operation/line_texts.h"
#include "system/display_text.h"
#include "system/paths.h"

namespace coffrelune {
namespace {

// The spelling of the disk, which tells "docs" from "Docs" where the disk does.
std::string placeOf(const SystemMod& system, const std::string& path) {
    return system.platform.files.resolve(withoutTrailingBackslash(path));
}

bool isFilled(const SystemMod& system, int line) {
    const auto index = static_cast<std::size_t>(line);
    return !system.sources[index].empty() && !system.destinations[index].empty();
}

std::string told(int first, int second, const std::string& copy) {
    return "Les lignes " + std::to_string(first + 1) + " et " + std::to_string(second + 1) +
           " ont la même copie, " + visibleControls(copy) +
           " : de deux fichiers de même nom, un seul y est gardé.";
}

}  // namespace

std::vector<std::string> sharedCopies(const SystemMod& system, const OperationHost& host) {
    std::vector<std::string> texts;
    for (int second = 1; second < host.lineCount(); ++second) {
        if (!isFilled(system, second)) continue;
        const LineRoots later = rootsOfLine(system, second);
        const std::string place = placeOf(system, later.copy());
        for (int first = 0; first < second; ++first) {
            if (!isFilled(system, first)) continue;
            if (!host.lineSelected(first) && !host.lineSelected(second)) continue;
            const LineRoots earlier = rootsOfLine(system, first);
            if (placeOf(system, earlier.copy()) != place) continue;
            if (placeOf(system, earlier.original()) == placeOf(system, later.original())) continue;
            texts.push_back(told(first, second, later.copy()));
        }
    }
    return texts;
}

}  // namespace coffrelune
