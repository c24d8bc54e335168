#include "engine/replacement.h"

#include "engine/progress.h"
#include "system/date_time.h"
#include "system/numbers.h"
#include "system/paths.h"

namespace coffrelune {
namespace {

// "1,50 Ko (1 536 octets), lun. 3 mars 2025 à 08:05:12"
std::string factsOf(const SystemMod& system, const FileEntry& file) {
    constexpr std::uint64_t shownExactly = 1000;
    const auto size = static_cast<float>(file.size);
    std::string text = sizeText(size, system.platform.locale);
    if (file.size >= shownExactly) {
        text += " (" + formatGrouped(static_cast<double>(file.size)) + " octets)";
    }
    const LocalTime time = system.platform.clock.localTime(file.times.lastWrite);
    return text + ", " + formatLongDate(time) + formatDateTime(time).substr(16);
}

}  // namespace

Replacement describeReplacement(const SystemMod& system, const std::string& directory,
                                const FileEntry& existing, const FileEntry& newer) {
    const std::uint64_t before = existing.times.lastWrite;
    const std::uint64_t after = newer.times.lastWrite;
    const char* age = after > before   ? ", plus récent"
                      : after < before ? ", plus ancien"
                                       : ", de la même date";
    return {newer.name,
            {"Dossier : " + withoutTrailingBackslash(directory),
             "Fichier en place : " + factsOf(system, existing),
             "Remplacé par : " + factsOf(system, newer) + age}};
}

}  // namespace coffrelune
