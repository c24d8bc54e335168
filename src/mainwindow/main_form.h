#pragma once

#include <map>
#include <optional>
#include <string>

#include "mainwindow/configuration_panel.h"
#include "mainwindow/first_steps.h"
#include "mainwindow/label_drag.h"
#include "mainwindow/launch_panel.h"
#include "mainwindow/line_commands.h"
#include "mainwindow/line_rows.h"
#include "mainwindow/notice_area.h"
#include "mainwindow/program_after.h"
#include "mainwindow/results_area.h"
#include "mainwindow/schedule.h"
#include "mainwindow/toolbar.h"
#include "mainwindow/window_place.h"
#include "operation/copie.h"
#include "operation/lance_operation.h"
#include "operation/operation.h"
#include "operation/run_report.h"

namespace coffrelune {

/// The main window: puts its areas together and lives as long as the program. The settings have
/// been loaded before it is made.
class MainForm final : public Window, public OperationHost {
  public:
    MainForm(SystemMod& system, Desktop& desktop);
    MainForm(const MainForm&) = delete;
    MainForm& operator=(const MainForm&) = delete;
    ~MainForm() override { system_.tellWriteFailure(nullptr); }

    enum CmdIndex { launchCmd = 1, taskSchedulerCmd = 3, directionCmd = 4 };
    /// By CmdIndex; `directionCmd` turns the comparison round.
    std::map<int, Button> Cmd;

  private:
    // Before the areas that use them.
    SystemMod& system_;
    ShellService& shell_;
    DriveInformation& drives_;
    MainDialogs dialogs_;
    WindowStage stage_;
    OperationLauncher launcher_;

  public:
    NoticeArea notices;
    LineRows lines;
    LineCommands lineCommands;
    LabelDrag drag;
    DestinationChange destinations;
    ConfigurationPanel configuration;
    Toolbar toolbar;
    Schedule schedule;
    ProgramAfter program;
    ResultsArea results;
    LaunchPanel launch;
    WindowPlace place;
    FirstSteps steps;

    /// Shows the current configuration for the current kind; stores nothing but ticks taken away
    /// from lines without both paths.
    void ShowLines();

    /// The first call of either goes on with the start: with "/Auto" the backup runs and the window
    /// closes. `shown` is for a window that has come up without coming to the front: minimised, or
    /// behind another program.
    void activated() override { firstActivation(); }
    void shown() { firstActivation(); }
    /// Remembers configuration and place, and closes. Nothing while something is open over the
    /// window.
    void closeBox() override;

    /// How the process is to end after the backup that "/Auto" asked for, which is refused for a
    /// configuration that has no section, and counts as interrupted until it has run; nothing
    /// without "/Auto".
    std::optional<ExitStatus> autoStatus() const { return autoStatus_; }
    const RunStatistics& statistics() const { return launcher_.statistics(); }

    void showLineDone(int line, bool done) override { lines.row(line).ImgOk.setVisible(done); }
    void setLaunchEnabled(bool enabled) override { Cmd.at(launchCmd).setEnabled(enabled); }
    void setTimerEnabled(bool enabled) override { schedule.Timer1.setEnabled(enabled); }
    void resultStored(OperationKind) override { results.resultStored(); }
    TextLog& comparisonList() override { return results.TxtCp; }
    Label& comparisonSummary() override { return results.LblComp; }
    std::optional<std::uint64_t> freeSpace(const std::string& drive) override;

  private:
    void connect();
    void load();
    bool commitFields();
    void configurationLoaded();
    void showReasons(RunMode mode, RunEnd end);
    void linesEdited();
    void tellStaleBackup();
    void notify(ExitStatus status);
    void firstActivation();

    bool activatedOnce_ = false;
    std::optional<ExitStatus> autoStatus_;
};

}  // namespace coffrelune
