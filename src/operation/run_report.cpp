#include "operation/run_report.h"

#include <algorithm>

#include "engine/line_roots.h"
#include "settings/setting_names.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
namespace {

bool anySourceMissing(const RunStatistics& statistics) {
    return std::any_of(statistics.tallies.begin(), statistics.tallies.end(),
                       [](const LineTally& tally) { return tally.sourceMissing; });
}

std::string namesOfConfigurations(SystemMod& system) {
    std::vector<std::string> names;
    system.ListConfigurations(names);
    if (names.empty()) return "Aucune configuration n'est enregistrée.";
    std::string text = "Configurations enregistrées : ";
    for (std::size_t i = 0; i < names.size(); ++i) text += (i == 0 ? "" : ", ") + names[i];
    return text;
}

}  // namespace

ExitStatus exitStatus(RunEnd end, const RunStatistics& statistics) {
    if (end == RunEnd::interrupted || end == RunEnd::cancelled) return ExitStatus::interrupted;
    const bool trouble =
        statistics.errorCount > 0 || !statistics.errors.empty() || anySourceMissing(statistics);
    return trouble ? ExitStatus::errors : ExitStatus::clean;
}

bool settingsUsable(SystemMod& system) {
    WindowService& windows = system.platform.windows;
    const Status status = system.settingsStatus();
    if (!status.ok()) {
        windows.notice("Le fichier de réglages " + visibleControls(status.path()) +
                       " ne peut pas être lu (erreur " + std::to_string(status.code()) +
                       "). Il est laissé tel quel.");
        return false;
    }
    // Who asked for the reserved name meant none of the configurations that there are.
    const std::string& name = isReserved(system.askedConfiguration) ? system.askedConfiguration
                                                                    : system.configurationName;
    if (system.configurationExists(name)) return true;
    windows.notice("La configuration « " + visibleControls(name) + " » n'existe pas.\n" +
                   visibleControls(namesOfConfigurations(system)) + "\nFichier de réglages : " +
                   visibleControls(joinPath(system.homeDirectory, "Coffrelune.ini")));
    return false;
}

ExitStatus runUnattended(SystemMod& system, OperationLauncher& launcher) {
    if (!settingsUsable(system)) return ExitStatus::wrongUse;
    const RunEnd end = launcher.LanceOperation(RunMode::unattended);
    reportErrors(system, launcher.statistics());
    return exitStatus(end, launcher.statistics());
}

void reportErrors(const SystemMod& system, const RunStatistics& statistics) {
    WindowService& windows = system.platform.windows;
    for (const std::string& reason : statistics.keptReasons) {
        windows.notice(visibleControls(reason));
    }
    for (const CopyError& error : statistics.errors) {
        windows.notice("Erreur: " + std::to_string(error.number) +
                       " - Fichier: " + visibleControls(error.path));
    }
    reportMissingSources(system, statistics);
}

void reportMissingSources(const SystemMod& system, const RunStatistics& statistics) {
    WindowService& windows = system.platform.windows;
    for (std::size_t line = 0; line < statistics.tallies.size(); ++line) {
        if (!statistics.tallies[line].sourceMissing) continue;
        windows.notice("Ligne " + std::to_string(line + 1) + " : la source " +
                       visibleControls(rootsOfLine(system, static_cast<int>(line)).source) +
                       " est introuvable.");
    }
}

}  // namespace coffrelune
