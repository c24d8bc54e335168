#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/input_controls.h"
#include "platform/path_label.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// Decides what happens to the sub-directories of one line's source: all saved, none, or all but
/// the listed ones. OK stores it in the current configuration.
class ExcludeForm final : public Window {
  public:
    /// `line`: index from 0. `source`: that line's source directory, not empty.
    ExcludeForm(SystemMod& system, int line, std::string source);

    Frame SourceFrame{"Disque/Répertoire à sauvegarder"};
    PathLabel SourceLbl;
    Frame ModeFrame{"Que faire des sous-répertoires ?"};
    std::array<OptionButton, 3> OptExclu;  // by mode
    Frame ListeFrame{"Liste des répertoires exclus de la sauvegarde"};
    ListBox Liste;
    std::array<Button, 5>
        Cmd;  // 0 OK, 1 "&Annuler", 2 "Ajouter", 3 "Supprimer", 4 "Supprimer Tout"

    std::vector<Button*> buttons() override;
    std::vector<Label*> labels() override { return {&SourceLbl}; }
    Button* defaultButton() override { return &Cmd[0]; }
    Button* cancelButton() override { return &Cmd[1]; }

  private:
    void load();
    void selectMode(int mode);
    void updateButtons();
    void add();
    std::string entryOf(const std::string& directory);
    void remove();
    void removeAll();
    void accept();
    bool sourceHasSubdirectory();
    Answer say(const std::string& text, MessageIcon icon, MessageButtons buttons);

    SystemMod& system_;
    int line_;
    std::string source_;
};

}  // namespace coffrelune
