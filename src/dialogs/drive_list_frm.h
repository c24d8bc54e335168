#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/desktop_services.h"
#include "platform/long_lists.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// Lets the user choose one of the machine's drives.
class DriveListFrm final : public Window {
  public:
    DriveListFrm(SystemMod& system, Desktop& desktop);

    enum CmdIndex : std::size_t { okCmd, cancelCmd, cmdCount };

    Label Lbl;             // "Liste des lecteurs :"
    ReportList ListDrive;  // drive, description, total size, free space
    std::array<Button, cmdCount> Cmd;

    /// "1" when a drive was chosen, else "0".
    const std::string& result() const { return result_; }
    /// The root of the chosen drive ("D:\"); empty when none was.
    const std::string& drive() const { return drive_; }

    std::vector<Button*> buttons() override { return {&Cmd[0], &Cmd[1]}; }
    std::vector<Label*> labels() override { return {&Lbl}; }
    Button* defaultButton() override { return &Cmd[okCmd]; }
    Button* cancelButton() override { return &Cmd[cancelCmd]; }

  private:
    void fill(Desktop& desktop);
    void accept();

    SystemMod& system_;
    std::string result_ = "0";
    std::string drive_;
};

}  // namespace coffrelune
