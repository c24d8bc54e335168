#include "mainwindow/program_after.h"

#include "settings/encoding.h"

namespace coffrelune {

ProgramAfter::ProgramAfter(SystemMod& system, Desktop& desktop, MainDialogs& dialogs)
    : system_(system), desktop_(desktop), dialogs_(dialogs) {
    ProgToRunTxt.setReadOnly(true);
    ProgToRunTxt.setToolTip("Programme à exécuter après la sauvegarde");
    PrmToRunTxt.setToolTip("Paramètres du programme");
    CmdP[chooseCmd].setCaption("...");
    CmdP[chooseCmd].setToolTip("Choisir le programme à exécuter");
    CmdP[clearCmd].setCaption("Effacer");
    CmdP[clearCmd].setToolTip("Supprimer le programme à exécuter");
    ChkProg.onClick = [this] { tick(); };
    CmdP[chooseCmd].onClick = [this] { choose(); };
    CmdP[clearCmd].onClick = [this] { clear(); };
    PrmToRunTxt.onLeave = [this] { commit(); };
}

void ProgramAfter::show() {
    ChkProg.setChecked(system_.SelectP != 0);
    ProgToRunTxt.setText(system_.ProgToRun);
    PrmToRunTxt.setText(system_.PrmToRun);
}

void ProgramAfter::write(const char* key, const std::string& value) {
    system_.keep(system_.configurationName, key, value);
}

void ProgramAfter::commit() {
    if (PrmToRunTxt.text() == system_.PrmToRun) return;
    system_.PrmToRun = PrmToRunTxt.text();
    write("PrmToRun", protectQuotes(system_.PrmToRun));
}

void ProgramAfter::choose() {
    if (!dialogs_.ready()) return;
    const std::string path =
        dialogs_.chooseFile("Programme à exécuter automatiquement",
                            "Applications (*.exe)|*.exe|Fichier de commandes (*.bat)|*.bat|"
                            "Tous les fichiers (*.*)|*.*");
    if (path.empty()) return;
    system_.ProgToRun = path;
    ProgToRunTxt.setText(path);
    write("ProgToRun", protectQuotes(path));
    ProgToRunTxt.takeFocus();
}

void ProgramAfter::clear() {
    if (!dialogs_.ready()) return;
    const bool confirmed = dialogs_.confirmLoss(
        "Confirmez-vous la suppression du programme à exécuter après la Sauvegarde ?",
        "Suppression");
    if (!confirmed) return;
    system_.ProgToRun.clear();
    system_.PrmToRun.clear();
    system_.SelectP = 0;
    show();
    write("ProgToRun", "");
    write("PrmToRun", "");
    write("SelectP", "0");
}

void ProgramAfter::tick() {
    system_.SelectP = ChkProg.checked() ? 1 : 0;
    write("SelectP", std::to_string(system_.SelectP));
}

void ProgramAfter::run() {
    if (!ChkProg.checked() || system_.ProgToRun.empty()) return;
    desktop_.shell.open(system_.ProgToRun, system_.PrmToRun);
}

}  // namespace coffrelune
