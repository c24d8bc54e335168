#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/input_controls.h"
#include "platform/task_scheduler.h"
#include "settings/configurations.h"

namespace coffrelune {

/// Configurations and options. Options and sounds are stored by OK; the choice of configuration and
/// of the number of lines is handed back in `SystemMod::selectedConfiguration` (never empty) and
/// `SystemMod::pendingMaximumIndex`, which are the current ones unless OK changed them.
class ConfigForm final : public Window {
  public:
    /// `tasks` is not owned; null where nothing can be planned.
    explicit ConfigForm(SystemMod& system, TaskScheduler* tasks = nullptr);

    enum CmdIndex : std::size_t {
        okCmd,
        cancelCmd,
        addCmd,
        eraseCmd,
        playSuccessCmd,
        playErrorCmd,
        cmdCount
    };
    static constexpr std::size_t soundOption = 3;

    Frame ListeFrame{"Liste des configurations de sauvegarde"};
    ListBox Liste;
    Frame OptFrame{"Personnalisation"};
    std::array<CheckBox, boxCount> Opt;  // see optionTable
    Label RepMaxLbl{"Nombre maximum de répertoires:"};
    ListBox RepMaxCb;  // drop-down
    std::array<Label, 2> FichSonLbl;
    std::array<ListBox, 2> FichSonCb;  // drop-down; 0 success, 1 error
    std::array<Button, cmdCount> Cmd;

    std::vector<Button*> buttons() override;
    std::vector<Label*> labels() override { return {&RepMaxLbl, &FichSonLbl[0], &FichSonLbl[1]}; }
    Button* defaultButton() override { return &Cmd[okCmd]; }
    Button* cancelButton() override { return &Cmd[cancelCmd]; }

  private:
    void loadOptions();
    void loadConfigurations();
    bool isTakenUnused() const;
    void append(const std::string& name);
    void loadLineCounts();
    void loadSounds();
    std::vector<std::string> soundFiles();

    void refuse(ConfigurationRefusal refusal);
    bool belongsToAnother(const std::string& name) const;
    void add();
    void erase();
    void eraseChosen(const std::string& name);
    void play(std::size_t sound);
    void accept();
    void storeOptions();
    void storeSounds();
    Answer say(const std::string& text, MessageIcon icon, MessageButtons buttons);

    SystemMod& system_;
    TaskScheduler* tasks_;
    std::vector<ListedConfiguration> listed_;  // by position in Liste
};

}  // namespace coffrelune
