#pragma once

#include <functional>
#include <string>

#include "mainwindow/main_dialogs.h"
#include "mainwindow/program_after.h"
#include "mainwindow/schedule.h"
#include "operation/lance_operation.h"
#include "operation/run_report.h"

namespace coffrelune {

/// The tabs that choose the operation kind, and the button that launches it.
class LaunchPanel {
  public:
    /// `launch` is the launch button.
    LaunchPanel(SystemMod& system, MainDialogs& dialogs, Button& launch, Schedule& schedule,
                ProgramAfter& program, OperationLauncher& launcher);

    TabStrip Onglet;  // "S", "R", "C"

    /// Another tab is shown: so are the lines and results of its kind.
    std::function<void()> onKindChanged;

    /// An operation has ended: its record says what the user must see.
    std::function<void(RunMode mode, RunEnd end)> onRan;

    /// Captions, tool tip and frames of the current kind.
    void showKind();
    /// An unattended backup, as the scheduler starts it.
    void backUpUnattended();
    /// The same as "/Auto" starts it: once, and for whoever reads the exit status.
    ExitStatus runAuto();

  private:
    bool pickTab(const std::string& key);
    void launch();
    void run(RunMode mode);
    void tellRan(RunMode mode, RunEnd end);

    SystemMod& system_;
    MainDialogs& dialogs_;
    Button& launch_;
    Schedule& schedule_;
    ProgramAfter& program_;
    OperationLauncher& launcher_;
};

}  // namespace coffrelune
