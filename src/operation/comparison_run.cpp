#include "operation/comparison_run.h"

#include "engine/hash_walk.h"
#include "engine/progress.h"
#include "operation/operation.h"
#include "system/date_time.h"
#include "system/numbers.h"

namespace coffrelune {

ComparisonRun::ComparisonRun(RunState& run) : run_(run), errors_(run), engine_(run, errors_) {}

void ComparisonRun::LanceComparaison(const LocalTime& startTime) {
    run_.statistics.totalBytes = 0;
    run_.statistics.filesToCopy = 0;
    run_.display.showComparisonPhase(run_.verifying() ? "Vérification en cours..."
                                                      : "Comparaison en cours...");
    run_.display.runPendingEvents();
    compareLines();
    endComparison(startTime);
    summarize();
}

void ComparisonRun::compareLines() {
    const std::string kind = run_.system.comparisonReversed ? "Restauration" : "Sauvegarde";
    for (RunLine& line : selectedLines(run_.system)) {
        if (run_.stopped()) return;
        addToBoth("***** " + kind + " n°" + std::to_string(line.index + 1));
        if (run_.switches.hashes != nullptr) {
            HashWalk(run_, errors_, *run_.switches.hashes).walkLine(line);
            continue;
        }
        LineTrees trees(run_, errors_, std::move(line));
        engine_.walkLine(trees, Pass::analysis);
    }
}

void ComparisonRun::endComparison(const LocalTime& startTime) {
    if (run_.stopped()) {
        // Duration and error count stay those of the operation before: an interrupted comparison
        // has found nothing that could replace them.
        addToBoth(run_.verifying() ? "***** Vérification interrompue"
                                   : "***** Comparaison interrompue");
        return;
    }
    run_.system.duration = formatDuration(toMilliseconds(run_.system.platform.clock.now()) -
                                          toMilliseconds(startTime));
    run_.statistics.errorCount = run_.statistics.filesToCopy;
    addToBoth(run_.verifying() ? "***** Fin de la vérification" : "***** Fin de la comparaison");
}

void ComparisonRun::summarizeContents() {
    std::uint64_t files = 0;
    for (const LineTally& tally : run_.statistics.tallies) files += tally.files;
    const std::int32_t different = run_.statistics.filesToCopy;
    run_.display.showComparisonSummary(std::to_string(files) + " fichier(s) lu(s), " +
                                       std::to_string(different) + " différence(s)");
}

// The test is on the bytes, not on the files: empty files alone are nothing to copy, though the
// list shows them.
void ComparisonRun::summarize() {
    if (run_.verifying()) return summarizeContents();
    const SystemMod& system = run_.system;
    const float bytes = run_.statistics.totalBytes;
    if (bytes == 0) {
        run_.display.showComparisonSummary(
            std::string("Aucun fichier à ") +
            (system.comparisonReversed ? "restaurer" : "sauvegarder"));
        return;
    }
    const Locale& locale = system.platform.locale;
    const std::string summary = std::to_string(run_.statistics.filesToCopy) +
                                " fichier(s) à copier soit " + sizeText(bytes, locale) + " (" +
                                formatGrouped(bytes) + " octets)";
    run_.display.showComparisonSummary(summary);
    run_.display.AjouteECTxt(summary);
    run_.display.AjouteECTxt(durationLine(system));
}

void ComparisonRun::addToBoth(const std::string& line) {
    run_.display.addToComparison(line);
    run_.display.AjouteECTxt(line);
}

}  // namespace coffrelune
