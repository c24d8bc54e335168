#pragma once

#include <array>
#include <string>
#include <vector>

#include "settings/system_mod.h"

namespace coffrelune {

// What the user chooses, in a window or in a terminal: stored at once, and in memory.

/// An option that nobody touched is not written.
Status chooseOption(SystemMod& system, const CopyOption& option, bool on);

/// The switches of one configuration, stored as 0 or 1.
struct ConfigurationSwitch {
    const char* key;
    std::int32_t SystemMod::*value;
    const char* caption;
};
inline constexpr std::array<ConfigurationSwitch, 3> switchTable = {{
    {"Confirmation", &SystemMod::Confirmation, "&Ecrasement sans confirmation"},
    {"Modifie", &SystemMod::Modifie, "Seulement les fichiers &Modifiés"},
    {"AutoSave", &SystemMod::AutoSave, "Sauvegarde &Automatique :"},
}};

/// As each value is understood by a run: 1 alone switches the first and the last one on.
bool isOn(const SystemMod& system, const ConfigurationSwitch& one);

Status chooseSwitch(SystemMod& system, const ConfigurationSwitch& chosen, bool on);

/// The line takes part in the next run, or does not.
Status chooseLine(SystemMod& system, int line, bool selected);

/// The numbers of lines that may be chosen: from what the last line in use of any configuration
/// needs, so that no line anywhere drops out of sight and out of the backup. A larger number that
/// was set by hand stays on offer.
std::vector<int> offeredLineCounts(SystemMod& system);

/// What becomes of a directory that the user wants left out.
struct ExclusionChoice {
    enum class Refusal { none, outside, taken };
    Refusal refusal = Refusal::none;
    /// As the list holds it, relative to the source; empty when there is nothing to add.
    std::string entry;
};

/// `directory` must begin with `source`, in any case; this is a plain comparison of texts, so that
/// "C:\Data2" begins with "C:\Data" as well. The source itself is nothing to add.
ExclusionChoice chooseExclusion(const std::string& source, const std::string& directory,
                                const std::vector<std::string>& listed);

/// What the user is told.
const char* textOf(ExclusionChoice::Refusal refusal);

/// Stores what a line leaves out. The list is stored whatever the mode, for the day when the user
/// comes back to it.
void storeExclusionList(SystemMod& system, int line, const ExclusionList& list);

}  // namespace coffrelune
