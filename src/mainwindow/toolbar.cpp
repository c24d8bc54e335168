#include "mainwindow/toolbar.h"

#include "dialogs/frm_about.h"

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
    } else if (key == "APropos") {
        frmAbout about(system_, desktop_);
        dialogs_.show(about);
    } else {
        (void)lineCommands_.run(key);
    }
}

}  // namespace coffrelune
