#include "mainwindow/main_form.h"

#include <algorithm>
#include <limits>

#include "settings/setting_names.h"
#include "system/text.h"

namespace coffrelune {
namespace {

std::int16_t autoStartFrom(const std::string& text) {
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(
        std::clamp<std::int32_t>(leadingNumber(text), Limits::min(), Limits::max()));
}

}  // namespace

MainForm::MainForm(SystemMod& system, Desktop& desktop)
    : system_(system),
      dialogs_(system),
      stage_(system),
      launcher_(system, *this, stage_),
      notices(system.platform.clock),
      lines(system, dialogs_),
      lineCommands(system, desktop, dialogs_, lines),
      drag(system, dialogs_, lines),
      destinations(system, desktop, dialogs_, lines),
      configuration(system, dialogs_, lines),
      toolbar(system, desktop, dialogs_, lineCommands, configuration, destinations),
      schedule(system, desktop, dialogs_, Cmd[taskSchedulerCmd]),
      program(system, desktop, dialogs_),
      results(system, dialogs_, Cmd[directionCmd]),
      launch(system, dialogs_, Cmd[launchCmd], schedule, program, launcher_),
      place(system) {
    connect();
    load();
}

void MainForm::connect() {
    dialogs_.commitFields = [this] { return commitFields(); };
    lines.onRowsChanged = [this] { lineCommands.rowsChanged(); };
    lines.onPress = [this](int row, LineSide side) {
        lineCommands.setTarget(row, side);
        drag.press(row, side);
    };
    lines.onRightClick = [this](int row, LineSide side) { lineCommands.openMenu(row, side); };
    lines.onDrop = [this](int row, LineSide side, const PathLabel::Dragged& dragged) {
        drag.drop(row, side, dragged);
    };
    lines.onDrag = [this](bool underWay) { drag.setUnderWay(underWay); };
    lineCommands.onTargetChanged = [this] { toolbar.showTarget(); };
    configuration.onLoaded = [this] { configurationLoaded(); };
    toolbar.onQuit = [this] { closeBox(); };
    schedule.runBackup = [this] {
        program.commit();
        launch.backUpUnattended();
    };
    results.onDirectionChanged = [this] { ShowLines(); };
    notices.onConfirm = [this] { launcher_.acceptOriginal(); };
    launch.onRan = [this] { showKept(); };
    launch.onKindChanged = [this] { ShowLines(); };
    system_.tellWriteFailure([this](const std::string& text) { notices.add(text); });
}

void MainForm::load() {
    place.load();
    system_.AutoStart = autoStartFrom(system_.ReadSetting(globalSection, "AutoStart"));
    setCaption(system_.programTitle);
    if (system_.AutoMode) autoStatus_ = ExitStatus::interrupted;
    system_.operationKind = OperationKind::backup;
    system_.comparisonReversed = false;
    launch.showKind();
    ShowLines();
    results.ClearComparison();
}

void MainForm::ShowLines() {
    lines.ShowLines();
    configuration.showName();
    program.show();
    schedule.show();
    results.ShowSummary();
}

// A restore has nothing that could be confirmed: it needs the proof that the copy is whole.
void MainForm::showKept() {
    const RunStatistics& record = launcher_.statistics();
    const bool backedUp = system_.operationKind == OperationKind::backup;
    notices.showKept(record.keptReasons, backedUp && record.originalInDoubt);
}

void MainForm::configurationLoaded() {
    // What was confirmed were the sources of another configuration.
    launcher_.forgetAcceptance();
    notices.showKept({}, false);
    launch.showKind();
    ShowLines();
    results.ClearComparison();
}

bool MainForm::commitFields() {
    program.commit();
    return schedule.commit();
}

void MainForm::firstActivation() {
    if (activatedOnce_) return;
    activatedOnce_ = true;
    system_.platform.windows.runPendingEvents();
    // The user may have closed the window in the meantime.
    if (!system_.AutoMode || !open()) return;
    autoStatus_ = launch.runAuto();
    closeBox();
}

void MainForm::closeBox() {
    if (dialogs_.busy() || !open()) return;
    program.commit();
    schedule.commitAtClose();
    system_.rememberConfiguration();
    place.save();
    schedule.Timer1.setEnabled(false);
    close();
}

}  // namespace coffrelune
