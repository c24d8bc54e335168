#include "mainwindow/results_area.h"

#include "operation/errors.h"
#include "operation/results.h"
#include "system/date_time.h"

namespace coffrelune {

ResultsArea::ResultsArea(SystemMod& system, Desktop& desktop, MainDialogs& dialogs,
                         Button& direction)
    : search(system, TxtCp, "Comparaison.txt"),
      system_(system),
      desktop_(desktop),
      dialogs_(dialogs),
      direction_(direction) {
    OkImg.setImage("resultat-ok");
    ErrImg.setImage("resultat-erreur");
    NbErrImg.setImage("resultat-nombre");
    direction_.setToolTip("Changer le sens de la comparaison");
    direction_.onClick = [this] { changeDirection(); };
    VoirErrLbl.onOpen = [this] { showErrors(); };
    search.onOpenFolder = [this](const std::string& folder) { desktop_.shell.open(folder, ""); };
}

void ResultsArea::ShowSummary() {
    const ResultSummary summary = summarize(system_, system_.operationKind);
    LastSaveLbl[0].setCaption(summary.cleanLine);
    LastSaveLbl[1].setCaption(summary.problemLine);
    LastSaveLbl[2].setCaption(summary.countLine);
    OkImg.setToolTip(summary.cleanToolTip);
    ErrImg.setToolTip(summary.problemToolTip);
    OkImg.setVisible(!summary.cleanLine.empty());
    const bool problems = !summary.problemLine.empty();
    ErrImg.setVisible(problems);
    NbErrImg.setVisible(problems);
    VoirErrLbl.setCaption(summary.linkText);
    VoirErrLbl.setVisible(problems);
    const bool comparison = system_.operationKind == OperationKind::comparison;
    direction_.setVisible(comparison);
    TxtCp.setVisible(comparison);
    search.setVisible(comparison);
    LblComp.setVisible(comparison);
}

void ResultsArea::resultStored() {
    const LastResult& result = system_.lastResult(system_.operationKind);
    const auto clean = parseDateTime(result.cleanDate);
    if (system_.operationKind == OperationKind::comparison && clean) {
        LastSaveLbl[0].setCaption("Dernière comparaison le " + formatLongDate(*clean));
    }
    ShowSummary();
}

void ResultsArea::ClearComparison() {
    showDirection();
    TxtCp.clear();
    LblComp.setCaption("Aucune comparaison effectuée.");
}

void ResultsArea::showDirection() {
    direction_.setCaption(system_.comparisonReversed ? "Comparaison Destination -> Source"
                                                     : "Comparaison Source -> Destination");
}

// The list stays: it is what the last comparison found, whichever way the next one goes.
void ResultsArea::changeDirection() {
    if (!dialogs_.ready()) return;
    system_.comparisonReversed = !system_.comparisonReversed;
    showDirection();
    if (onDirectionChanged) onDirectionChanged();
}

void ResultsArea::showErrors() {
    if (!dialogs_.ready()) return;
    VisuErrFrm viewer(system_);
    viewer.search.onOpenFolder = search.onOpenFolder;
    dialogs_.show(viewer);
}

}  // namespace coffrelune
