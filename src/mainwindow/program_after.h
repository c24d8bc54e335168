#pragma once

#include <array>
#include <string>

#include "mainwindow/main_dialogs.h"
#include "platform/desktop_services.h"
#include "platform/input_controls.h"

namespace coffrelune {

/// The program that is started after a backup which the user has launched.
class ProgramAfter {
  public:
    ProgramAfter(SystemMod& system, Desktop& desktop, MainDialogs& dialogs);

    enum CmdIndex : std::size_t { chooseCmd, clearCmd, cmdCount };

    CheckBox ChkProg{"&Programme à exécuter après la sauvegarde :"};
    TextBox ProgToRunTxt;  // read-only
    std::array<Button, cmdCount> CmdP;
    Label PrmToRunLbl{"Paramè&tres :"};
    TextBox PrmToRunTxt;

    /// Shows the values of the current configuration; stores nothing.
    void show();
    /// Stores the typed parameters when they have changed.
    void commit();
    /// Starts the program if it is chosen and ticked; waits for nothing.
    void run();

  private:
    void choose();
    void clear();
    void tick();
    void write(const char* key, const std::string& value);

    SystemMod& system_;
    Desktop& desktop_;
    MainDialogs& dialogs_;
};

}  // namespace coffrelune
