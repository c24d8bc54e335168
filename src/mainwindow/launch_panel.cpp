#include "mainwindow/launch_panel.h"

#include <algorithm>

namespace coffrelune {

LaunchPanel::LaunchPanel(SystemMod& system, MainDialogs& dialogs, Button& launch,
                         Schedule& schedule, ProgramAfter& program, OperationLauncher& launcher)
    : system_(system),
      dialogs_(dialogs),
      launch_(launch),
      schedule_(schedule),
      program_(program),
      launcher_(launcher) {
    for (const KindWords& kind : kindTable) Onglet.add(kind.letter, std::string("&") + kind.title);
    Onglet.onPick = [this](const std::string& key) { return pickTab(key); };
    launch_.onClick = [this] { this->launch(); };
}

void LaunchPanel::showKind() {
    const KindWords& kind = wordsOf(system_.operationKind);
    launch_.setCaption(std::string("Lancer la ") + kind.title);
    launch_.setToolTip(std::string("Cliquez ici pour lancer la ") + kind.word);
    schedule_.setKind(system_.operationKind);
}

bool LaunchPanel::pickTab(const std::string& key) {
    if (!dialogs_.ready()) return false;
    const auto* const picked =
        std::find_if(allKinds.begin(), allKinds.end(),
                     [&key](OperationKind kind) { return key == wordsOf(kind).letter; });
    if (picked == allKinds.end()) return false;
    system_.operationKind = *picked;
    showKind();
    if (onKindChanged) onKindChanged();
    return true;
}

void LaunchPanel::launch() {
    if (!dialogs_.ready()) return;
    const MainDialogs::Hold hold(dialogs_);
    switch (system_.operationKind) {
        case OperationKind::backup:
            run(RunMode::startedByUser);
            // Whatever became of the backup: it may be what switches the computer off.
            program_.run();
            break;
        case OperationKind::restore:
            if (launcher_.confirmRestore()) run(RunMode::startedByUser);
            break;
        case OperationKind::comparison:
            tellRan(RunMode::startedByUser, launcher_.launchComparison());
            break;
    }
}

void LaunchPanel::run(RunMode mode) {
    const RunEnd end = launcher_.LanceOperation(mode);
    // Where somebody has started it, the reasons of the run say so.
    if (mode == RunMode::unattended) reportInterruption(system_, launcher_, end);
    tellRan(mode, end);
}

// Who does not confirm runs nothing: what the run before has left still holds.
void LaunchPanel::tellRan(RunMode mode, RunEnd end) {
    if (end != RunEnd::cancelled && onRan) onRan(mode, end);
}

void LaunchPanel::backUpUnattended() {
    const MainDialogs::Hold hold(dialogs_);
    run(RunMode::unattended);
    // With nothing else to copy the run ends as one that had nothing to do.
    if (!launcher_.statistics().copyPassStarted) {
        reportMissingSources(system_, launcher_.statistics(), MissingSources::unexpected);
    }
}

ExitStatus LaunchPanel::runAuto() {
    const MainDialogs::Hold hold(dialogs_);
    return runUnattended(system_, launcher_);
}

}  // namespace coffrelune
