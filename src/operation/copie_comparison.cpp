// The run of a comparison: lists what a backup, or a restore, would copy, and copies nothing.
#include "engine/size_text.h"
#include "operation/copie.h"
#include "operation/line_texts.h"
#include "system/date_time.h"
#include "system/numbers.h"

namespace coffrelune {

void Copie::LanceComparaison() {
    statistics_.totalBytes = 0;
    ProgBar.setIndeterminate(true);
    statistics_.filesToCopy = 0;
    Lbl[0].setCaption("");
    Lbl[1].setCaption("Comparaison en cours...");
    Lbl[2].setCaption("");
    Lbl[5].setCaption("");
    host_.comparisonList().clear();
    host_.comparisonSummary().setCaption("");
    runPendingEvents();
    compareLines();
    endComparison();
    summarizeComparison();
    unload();
}

void Copie::compareLines() {
    const std::string kind = system_.comparisonReversed ? "Restauration" : "Sauvegarde";
    for (int line = 0; line < host_.lineCount() && !statistics_.interruptionRequested; ++line) {
        if (!takesPart(line)) continue;
        addToBoth("***** " + kind + " n°" + std::to_string(line + 1));
        walkLine(line, true);
    }
}

void Copie::endComparison() {
    if (statistics_.interruptionRequested) {
        // Duration and error count stay those of the operation before: an interrupted comparison
        // has found nothing that could replace them.
        addToBoth("***** Comparaison interrompue");
        return;
    }
    system_.duration =
        formatDuration(toMilliseconds(system_.platform.clock.now()) - toMilliseconds(startTime_));
    statistics_.errorCount = statistics_.filesToCopy;
    addToBoth("***** Fin de la comparaison");
}

// The test is on the bytes, not on the files: empty files alone are nothing to copy, though the
// list shows them.
void Copie::summarizeComparison() {
    const std::string verb = system_.comparisonReversed ? "restaurer" : "sauvegarder";
    if (statistics_.totalBytes == 0) {
        host_.comparisonSummary().setCaption("Aucun fichier à " + verb);
        return;
    }
    const Locale& locale = system_.platform.locale;
    const std::string summary = std::to_string(statistics_.filesToCopy) +
                                " fichier(s) à copier soit " +
                                sizeText(statistics_.totalBytes, locale) + " (" +
                                formatGrouped(statistics_.totalBytes, locale) + " octets)";
    host_.comparisonSummary().setCaption(summary);
    AjouteECTxt(summary);
    AjouteECTxt("Durée de la " + caption() + " : " + system_.duration);
}

void Copie::addToBoth(const std::string& line) {
    host_.comparisonList().append(line);
    AjouteECTxt(line);
}

}  // namespace coffrelune
