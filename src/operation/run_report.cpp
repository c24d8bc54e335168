#include "operation/run_report.h"

#include <algorithm>

#include "engine/line_roots.h"
#include "engine/rules.h"
#include "operation/errors.h"
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

bool settingsReadable(SystemMod& system) {
    const Status status = system.settingsStatus();
    if (status.ok()) return true;
    system.platform.windows.notice("Le fichier de réglages " + visibleControls(status.path()) +
                                   " ne peut pas être lu (erreur " + std::to_string(status.code()) +
                                   "). Il est laissé tel quel.");
    return false;
}

bool settingsUsable(SystemMod& system) {
    if (!settingsReadable(system)) return false;
    WindowService& windows = system.platform.windows;
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
    reportInterruption(system, launcher, end);
    reportErrors(system, launcher.statistics());
    return exitStatus(end, launcher.statistics());
}

void reportInterruption(const SystemMod& system, const OperationLauncher& launcher, RunEnd end) {
    if (end != RunEnd::interrupted || launcher.statistics().copyPassStarted) return;
    const RunControl& control = launcher.control();
    if (!errorCause(control.lastErrorNumber, control.sharingPath).empty()) return;
    system.platform.windows.notice(std::string(wordsOf(system.operationKind).title) +
                                   " interrompue avant la copie : rien n'a été copié.");
}

RunNotice noticeOf(const SystemMod& system, ExitStatus status, const RunStatistics& statistics) {
    std::uint64_t files = 0;
    bool missing = false;
    for (const LineTally& tally : statistics.tallies) {
        files += tally.files;
        missing = missing || tally.sourceMissing;
    }
    RunNotice notice;
    notice.text = system.configurationName + " : ";
    switch (status) {
        case ExitStatus::clean:
            notice.title = "Sauvegarde terminée";
            notice.text +=
                files == 0 ? "tout est à jour." : std::to_string(files) + " fichier(s) copié(s).";
            break;
        case ExitStatus::errors:
            if (missing && statistics.errors.empty()) {
                notice.title = "Sauvegarde incomplète";
                notice.text += "une source est introuvable.";
                break;
            }
            notice.title = "Sauvegarde terminée avec des erreurs";
            notice.text += std::to_string(statistics.errors.size()) + " erreur(s)";
            notice.text += missing ? ", une source est introuvable." : ".";
            break;
        case ExitStatus::wrongUse:
            notice.title = "Sauvegarde impossible";
            notice.text += "les réglages ne le permettent pas.";
            break;
        case ExitStatus::interrupted:
            notice.title = "Sauvegarde interrompue";
            notice.text += "elle n'est pas complète.";
            break;
    }
    return notice;
}

bool wantsNotices(SystemMod& system) {
    return trimBlanks(system.ReadSetting(globalSection, "Notification")) != "0";
}

void reportErrors(const SystemMod& system, const RunStatistics& statistics) {
    WindowService& windows = system.platform.windows;
    for (const auto& reasons : {statistics.keptReasons, statistics.dateReasons}) {
        for (const std::string& reason : reasons) windows.notice(visibleControls(reason));
    }
    for (const CopyError& error : statistics.errors) {
        windows.notice("Erreur: " + std::to_string(error.number) +
                       " - Fichier: " + visibleControls(error.path));
    }
    reportMissingSources(system, statistics, MissingSources::all);
}

void reportMissingSources(const SystemMod& system, const RunStatistics& statistics,
                          MissingSources which) {
    WindowService& windows = system.platform.windows;
    for (std::size_t line = 0; line < statistics.tallies.size(); ++line) {
        if (!statistics.tallies[line].sourceMissing) continue;
        const std::string source = rootsOfLine(system, static_cast<int>(line)).source;
        if (which == MissingSources::unexpected && isSpecialFolder(source)) continue;
        windows.notice("Ligne " + std::to_string(line + 1) + " : la source " +
                       visibleControls(source) + " est introuvable.");
    }
}

}  // namespace coffrelune
