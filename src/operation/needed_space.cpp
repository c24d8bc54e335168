#include "operation/needed_space.h"

#include <map>

#include "engine/line_roots.h"
#include "engine/progress.h"
#include "platform/names.h"

namespace coffrelune {

std::vector<std::string> lackingSpace(const SystemMod& system, const RunStatistics& statistics,
                                      const FreeSpace& freeSpace) {
    std::map<std::string, std::uint64_t> needed;
    for (std::size_t line = 0; line < statistics.tallies.size(); ++line) {
        const std::uint64_t bytes = statistics.tallies[line].bytesToCopy;
        const std::string target = rootsOfLine(system, static_cast<int>(line)).destination;
        if (bytes > 0 && hasDriveLetter(target)) needed[target.substr(0, 2) + "\\"] += bytes;
    }
    std::vector<std::string> texts;
    for (const auto& [drive, bytes] : needed) {
        const std::optional<std::uint64_t> free = freeSpace(drive);
        if (!free || *free >= bytes) continue;
        texts.push_back("Le disque " + drive + " risque d'être trop petit : " +
                        sizeText(static_cast<float>(bytes), system.platform.locale) +
                        " à copier, " +
                        sizeText(static_cast<float>(*free), system.platform.locale) + " libres.");
    }
    return texts;
}

}  // namespace coffrelune
