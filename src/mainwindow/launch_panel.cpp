#include "mainwindow/launch_panel.h"

#include <array>

namespace coffrelune {
namespace {

constexpr std::int16_t startedByUser = 1;
constexpr std::int16_t unattended = 0;

struct KindTexts {
    const char* tabKey;
    const char* tab;
    const char* launch;
    const char* launchToolTip;
};

// By operation kind.
constexpr std::array<KindTexts, 3> kinds = {{
    {"S", "&Sauvegarde", "Lancer la Sauvegarde", "Cliquez ici pour lancer la sauvegarde"},
    {"R", "&Restauration", "Lancer la Restauration", "Cliquez ici pour lancer la restauration"},
    {"C", "&Comparaison", "Lancer la Comparaison", "Cliquez ici pour lancer la comparaison"},
}};

}  // namespace

LaunchPanel::LaunchPanel(SystemMod& system, MainDialogs& dialogs, Button& launch,
                         Schedule& schedule, ProgramAfter& program, OperationLauncher& launcher)
    : system_(system),
      dialogs_(dialogs),
      launch_(launch),
      schedule_(schedule),
      program_(program),
      launcher_(launcher) {
    for (const KindTexts& kind : kinds) Onglet.add(kind.tabKey, kind.tab);
    Onglet.onPick = [this](const std::string& key) { return pickTab(key); };
    launch_.onClick = [this] { this->launch(); };
}

void LaunchPanel::showKind() {
    const KindTexts& texts = kinds.at(static_cast<std::size_t>(system_.operationKind));
    launch_.setCaption(texts.launch);
    launch_.setToolTip(texts.launchToolTip);
    schedule_.setKind(system_.operationKind);
}

bool LaunchPanel::pickTab(const std::string& key) {
    if (!dialogs_.ready()) return false;
    for (std::size_t kind = 0; kind < kinds.size(); ++kind) {
        if (key != kinds.at(kind).tabKey) continue;
        system_.operationKind = static_cast<OperationKind>(kind);
        showKind();
        if (onKindChanged) onKindChanged();
        return true;
    }
    return false;
}

void LaunchPanel::launch() {
    if (!dialogs_.ready()) return;
    const MainDialogs::Hold hold(dialogs_);
    switch (system_.operationKind) {
        case OperationKind::backup:
            (void)launcher_.LanceOperation(startedByUser);
            // Whatever became of the backup: it may be what switches the computer off.
            program_.run();
            break;
        case OperationKind::restore:
            if (launcher_.confirmRestore()) (void)launcher_.LanceOperation(startedByUser);
            break;
        case OperationKind::comparison:
            (void)launcher_.launchComparison();
            break;
    }
}

void LaunchPanel::backUpUnattended() {
    const MainDialogs::Hold hold(dialogs_);
    (void)launcher_.LanceOperation(unattended);
    // With nothing else to copy the run ends as one that had nothing to do.
    if (!launcher_.statistics().copyPassStarted) {
        reportMissingSources(system_, launcher_.statistics());
    }
}

ExitStatus LaunchPanel::runAuto() {
    const MainDialogs::Hold hold(dialogs_);
    return runUnattended(system_, launcher_);
}

}  // namespace coffrelune
