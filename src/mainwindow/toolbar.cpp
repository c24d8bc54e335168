#include "mainwindow/toolbar.h"

#include "dialogs/frm_about.h"
#include "system/paths.h"

namespace coffrelune {

Toolbar::Toolbar(SystemMod& system, Desktop& desktop, MainDialogs& dialogs,
                 LineCommands& lineCommands, ConfigurationPanel& configuration,
                 DestinationChange& destinations)
    : system_(system),
      desktop_(desktop),
      dialogs_(dialogs),
      lineCommands_(lineCommands),
      configuration_(configuration),
      destinations_(destinations) {
    TB.add({"Config", "Configurations et options...", "Configurations et options"});
    TB.add({"Description", "Description...", "Description de la configuration"});
    LineCommands::addTo(TB);
    TB.add({"ModifDest", "Modification de toutes les destinations...",
            "Modification de toutes les destinations"});
    TB.add({"Aide", "Aide...", "Manuel de Coffrelune (F1)"});
    TB.add({"APropos", "À propos...", "À propos de Coffrelune"});
    TB.add({"Quitter", "&Quitter", "Quitter Coffrelune"});
    TB.onPick = [this](const std::string& key) { run(key); };
    showTarget();
}

void Toolbar::showTarget() {
    TB.setEnabled("LigneUp", lineCommands_.canMoveUp());
    TB.setEnabled("LigneDown", lineCommands_.canMoveDown());
}

void Toolbar::run(const std::string& key) {
    // Quitting stores what was typed by its own rule.
    if (key == "Quitter") {
        if (onQuit) onQuit();
        return;
    }
    if (!dialogs_.ready()) return;
    if (key == "Config") {
        configuration_.choose();
    } else if (key == "Description") {
        configuration_.describe();
    } else if (key == "ModifDest") {
        destinations_.run();
    } else if (key == "Aide") {
        openManual();
    } else if (key == "APropos") {
        frmAbout about(system_, desktop_);
        dialogs_.show(about);
    } else {
        (void)lineCommands_.run(key);
    }
}

// Beside the program, or where a package puts what programs share.
void Toolbar::openManual() {
    const std::string beside = splitPath(system_.executablePath).parent;
    const std::string shared = splitPath(beside).parent + R"(share\coffrelune\)";
    for (const std::string& place : {beside, shared}) {
        const std::string path = place + R"(aide\manuel.html)";
        FileEntry entry;
        if (system_.platform.files.lookUp(path, LinkRule::follow, entry).ok()) {
            return desktop_.shell.open(path, {});
        }
    }
    (void)dialogs_.say(
        "Le manuel n'est pas installé : il manque " + beside + R"(aide\manuel.html.)",
        MessageIcon::exclamation);
}

}  // namespace coffrelune
