#include "mainwindow/main_form.h"

#include <algorithm>
#include <limits>

#include "operation/results.h"
#include "operation/run_reasons.h"
#include "settings/choices.h"
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
      shell_(desktop.shell),
      drives_(desktop.driveInformation),
      dialogs_(system),
      stage_(system),
      launcher_(system, *this, stage_),
      notices(system.platform.clock),
      lines(system, dialogs_),
      lineCommands(system, desktop, dialogs_, lines),
      drag(system, dialogs_, lines),
      destinations(system, desktop, dialogs_, lines),
      configuration(system, desktop, dialogs_, lines),
      toolbar(system, desktop, dialogs_, lineCommands, configuration, destinations),
      schedule(system, desktop, dialogs_, Cmd[taskSchedulerCmd]),
      program(system, desktop, dialogs_),
      results(system, desktop, dialogs_, Cmd[directionCmd]),
      launch(system, dialogs_, Cmd[launchCmd], schedule, program, launcher_),
      place(system),
      steps(system) {
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
    // What cannot be written holds for this run; the window tells it once.
    notices.onAcceptDates = [this] { (void)chooseOption(system_, roundedDatesOption, true); };
    launch.onRan = [this](RunMode mode, RunEnd end) { showReasons(mode, end); };
    launch.onKindChanged = [this] { ShowLines(); };
    lines.onEdited = [this] { linesEdited(); };
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
    tellStaleBackup();
}

void MainForm::ShowLines() {
    lines.ShowLines();
    configuration.showName();
    program.show();
    schedule.show();
    results.ShowSummary();
    steps.show();
}

// A restore has nothing that could be confirmed: it needs the proof that the copy is whole. What an
// unattended run has to say has been said where it stays until somebody reads it.
void MainForm::showReasons(RunMode mode, RunEnd end) {
    const RunStatistics& record = launcher_.statistics();
    if (mode == RunMode::unattended) notify(exitStatus(end, record));
    std::vector<std::string> reasons;
    if (mode == RunMode::startedByUser) {
        reasons = runReasons(system_, record, launcher_.control(), end);
    }
    // A comparison leaves what the last backup said, and what may be confirmed of it.
    if (system_.operationKind == OperationKind::comparison) {
        for (const std::string& reason : reasons) notices.add(reason);
        return;
    }
    reasons.insert(reasons.end(), record.keptReasons.begin(), record.keptReasons.end());
    const bool backedUp = system_.operationKind == OperationKind::backup;
    notices.showKept(reasons, backedUp && record.originalInDoubt);
    notices.showDates(record.dateReasons, record.roundsDates);
}

void MainForm::notify(ExitStatus status) {
    if (!wantsNotices(system_)) return;
    const RunNotice notice = noticeOf(system_, status, launcher_.statistics());
    shell_.notify(notice.title, notice.text);
}

std::optional<std::uint64_t> MainForm::freeSpace(const std::string& drive) {
    std::uint64_t total = 0;
    std::uint64_t free = 0;
    if (!drives_.sizes(drive, total, free).ok()) return {};
    return free;
}

void MainForm::linesEdited() {
    steps.show();
}

// Not before a run that needs nobody: it may be the very one that was missing.
void MainForm::tellStaleBackup() {
    constexpr int days = 7;
    const std::string text = system_.AutoMode ? std::string() : staleBackup(system_, days);
    notices.showKept(text.empty() ? std::vector<std::string>() : std::vector{text}, false);
}

void MainForm::configurationLoaded() {
    // What was confirmed were the sources of another configuration.
    launcher_.forgetAcceptance();
    tellStaleBackup();
    notices.showDates({}, false);
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
    notify(*autoStatus_);
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
