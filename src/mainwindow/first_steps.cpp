#include "mainwindow/first_steps.h"

#include <algorithm>

namespace coffrelune {

FirstSteps::FirstSteps(SystemMod& system) : system_(system) {
    Lbl[0].setCaption("1. Source : choisissez le répertoire à garder.");
    Lbl[1].setCaption("2. Destination : choisissez un autre disque où le copier.");
    Lbl[2].setCaption("3. Cochez la ligne, puis « Lancer la Sauvegarde ».");
}

void FirstSteps::show() {
    const bool filled = std::any_of(system_.lines.begin(), system_.lines.end(),
                                    [](const BackupLine& line) { return line.filled(); });
    const bool shown = !filled && system_.operationKind == OperationKind::backup;
    TitleLbl.setVisible(shown);
    for (Label& label : Lbl) label.setVisible(shown);
}

}  // namespace coffrelune
