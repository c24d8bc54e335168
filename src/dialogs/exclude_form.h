#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/commands.h"
#include "platform/input_controls.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// Decides what happens to the sub-directories of one line's source: all saved, none, or all but
/// the listed ones. OK stores it in the current configuration.
class ExcludeForm final : public Window {
  public:
    /// `line`: index from 0. `source`: that line's source directory, not empty.
    ExcludeForm(SystemMod& system, int line, std::string source);

    enum CmdIndex : std::size_t { okCmd, cancelCmd, addCmd, removeCmd, removeAllCmd, cmdCount };

    Frame SourceFrame{"Disque/Répertoire à sauvegarder"};
    PathLabel SourceLbl;
    Frame ModeFrame{"Que faire des sous-répertoires ?"};
    std::array<OptionButton, 3> OptExclu;  // by ExclusionMode
    Frame ListeFrame{"Liste des répertoires exclus de la sauvegarde"};
    ListBox Liste;
    std::array<Button, cmdCount> Cmd;

    std::vector<Button*> buttons() override;
    std::vector<Label*> labels() override { return {&SourceLbl}; }
    Button* defaultButton() override { return &Cmd[okCmd]; }
    Button* cancelButton() override { return &Cmd[cancelCmd]; }

  private:
    void load();
    void selectMode(ExclusionMode mode);
    void updateButtons();
    void add();
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
