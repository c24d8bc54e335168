#include "operation/operation.h"

#include "operation/backup_run.h"
#include "operation/comparison_run.h"
#include "operation/errors.h"
#include "system/date_time.h"

namespace coffrelune {

std::string operationCaption(const SystemMod& system) {
    return std::string(wordsOf(system.operationKind).title) + " ...";
}

std::string durationLine(const SystemMod& system) {
    return "Durée de la " + operationCaption(system) + " : " + system.duration;
}

Operation::Operation(SystemMod& system, const RunSwitches& switches, std::int32_t errorCount)
    : system_(system), switches_(switches) {
    statistics_.errorCount = errorCount;
    statistics_.tallies.resize(system.lines.size());
}

void Operation::begin(RunDisplay& display) {
    display.AjouteECTxt("Début de la " + (switches_.contents != nullptr
                                              ? std::string("Vérification ...")
                                              : operationCaption(system_)));
    startTime_ = system_.platform.clock.now();
}

void Operation::run(RunDisplay& display) {
    RunState state{system_, display, switches_, control_, statistics_};
    // Before the first events run, so that a stop requested among them counts.
    control_.interruptionRequested = false;
    display.runPendingEvents();
    if (system_.operationKind == OperationKind::comparison) {
        ComparisonRun(state).LanceComparaison(startTime_);
        over_ = true;
        return;
    }
    BackupRun(state).LanceCopie();
    over_ = true;
    system_.duration =
        formatDuration(toMilliseconds(system_.platform.clock.now()) - toMilliseconds(startTime_));
    waits_ = statistics_.errorCount > 0 && !system_.AutoMode;
    if (!waits_) return;
    display.AjouteECTxt("Fin de la " + operationCaption(system_) + " " +
                        std::to_string(statistics_.errorCount) + " erreur(s).");
    display.AjouteECTxt(durationLine(system_));
}

void Operation::requestInterruption() {
    if (!over_) control_.interruptionRequested = true;
}

void Operation::end(const std::string& journal) {
    // What is read here is no comparison whose list anybody looks for.
    if (switches_.contents != nullptr) return;
    // Neither outcome stops the run: it is over, and its result is still to be told.
    (void)system_.WriteSetting("Position", "SuiviAnalyse", std::to_string(system_.SuiviAnalyse));
    if (statistics_.errorCount <= 0) return;
    const Status written = EcritErreurs(system_, journal);
    if (written.ok()) return;
    system_.platform.windows.notice("La liste des erreurs n'a pas pu être écrite dans " +
                                    written.path() + " (erreur " + std::to_string(written.code()) +
                                    ").");
}

}  // namespace coffrelune
