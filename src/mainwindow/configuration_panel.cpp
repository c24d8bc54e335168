#include "mainwindow/configuration_panel.h"

#include "dialogs/config_form.h"
#include "dialogs/text_dialogs.h"
#include "system/planned_runs.h"
#include "system/text.h"

namespace coffrelune {
namespace {

constexpr const char* renameTitle = "Renommer la configuration";
constexpr const char* duplicateTitle = "Dupliquer la configuration";

std::string failure(const std::string& what, const Status& status) {
    return what + " (erreur " + std::to_string(status.code()) + ").";
}

}  // namespace

ConfigurationPanel::ConfigurationPanel(SystemMod& system, Desktop& desktop, MainDialogs& dialogs,
                                       LineRows& rows)
    : system_(system), tasks_(desktop.tasks), dialogs_(dialogs), rows_(rows) {
    ConfigCb.setToolTip("Choisir une autre configuration");
    ConfigCb.setSpokenName("Configuration");
    RenameCmd.setToolTip("Donner un autre nom à cette configuration");
    RenameCmd.setSpokenName(renameTitle);
    DuplicateCmd.setToolTip("Créer une configuration qui a les mêmes réglages");
    DuplicateCmd.setSpokenName(duplicateTitle);
    ConfigCb.onPick = [this] { pick(); };
    RenameCmd.onClick = [this] { rename(); };
    DuplicateCmd.onClick = [this] { duplicate(); };
}

void ConfigurationPanel::showName() {
    std::string caption = system_.configurationName;
    if (!system_.description.empty()) caption += " (" + system_.description + ")";
    ConfigLbl.setCaption(std::move(caption));
    listed_ = listWithCurrent(system_);
    ConfigCb.clear();
    for (const auto& [name, entry] : listed_) {
        ConfigCb.add(entry);
        if (!equalIgnoringCase(name, system_.configurationName)) continue;
        ConfigCb.select(static_cast<int>(ConfigCb.entries().size()) - 1);
    }
}

void ConfigurationPanel::choose() {
    ConfigForm form(system_, tasks_);
    dialogs_.show(form);
    // Without a name every later setting would have nowhere to go.
    const std::string chosen = system_.selectedConfiguration.empty()
                                   ? system_.configurationName
                                   : system_.selectedConfiguration;
    const bool otherCount = system_.pendingMaximumIndex != system_.maximumIndex;
    // The dialog may have erased others.
    if (chosen == system_.configurationName && !otherCount) return showName();
    system_.configurationName = chosen;
    if (otherCount) rows_.SetRowCount(system_.pendingMaximumIndex);
    // Also for the number alone: lines that it left out until now have stored paths.
    load(chosen);
}

void ConfigurationPanel::load(const std::string& name) {
    system_.configurationName = name;
    system_.LoadConfiguration();
    if (onLoaded) onLoaded();
}

void ConfigurationPanel::pick() {
    const auto chosen = static_cast<std::size_t>(ConfigCb.selection());
    if (ConfigCb.selection() < 0 || chosen >= listed_.size() || !dialogs_.ready()) {
        showName();
        return;
    }
    const std::string name = listed_[chosen].name;
    if (name == system_.configurationName) return;
    takeConfiguration(system_, name);
    load(name);
}

std::string ConfigurationPanel::askName(const std::string& title, const std::string& proposed) {
    ConfigNameForm form(system_, title, proposed);
    dialogs_.show(form);
    return system_.dialogText;
}

bool ConfigurationPanel::refused(ConfigurationRefusal refusal, const std::string& title) {
    if (refusal == ConfigurationRefusal::none) return false;
    dialogs_.say(textOf(refusal), MessageIcon::information, MessageButtons::ok, title);
    return true;
}

void ConfigurationPanel::rename() {
    if (!dialogs_.ready()) return;
    const std::string from = system_.configurationName;
    const std::string to = askName(renameTitle, from);
    if (to.empty() || to == from) return;
    if (refused(refusalToRename(system_, from, to), renameTitle)) return;
    const Status renamed = renameConfiguration(system_, from, to);
    const bool bearsIt = system_.configurationName == to;
    if (bearsIt) takeConfiguration(system_, to);
    showName();
    if (!renamed.ok()) {
        dialogs_.say(failure(bearsIt ? "Une liste des erreurs a gardé l'ancien nom"
                                     : "La configuration n'a pas pu être renommée",
                             renamed),
                     MessageIcon::exclamation, MessageButtons::ok, renameTitle);
    }
    if (bearsIt) renamePlan(from, to);
}

void ConfigurationPanel::renamePlan(const std::string& from, const std::string& to) {
    if (tasks_ == nullptr) return;
    const PlanFate plan = movePlan(*tasks_, from, to);
    if (plan.text.empty()) return;
    dialogs_.say(plan.text, plan.status.ok() ? MessageIcon::information : MessageIcon::exclamation,
                 MessageButtons::ok, renameTitle);
}

void ConfigurationPanel::duplicate() {
    if (!dialogs_.ready()) return;
    const std::string from = system_.configurationName;
    const std::string to = askName(duplicateTitle, nameForCopy(system_, from));
    if (to.empty()) return;
    if (refused(refusalToAdd(system_, listWithCurrent(system_), to), duplicateTitle)) return;
    const Status copied = duplicateConfiguration(system_, from, to);
    if (!copied.ok()) {
        dialogs_.say(failure("La configuration n'a pas pu être dupliquée", copied),
                     MessageIcon::exclamation, MessageButtons::ok, duplicateTitle);
        return;
    }
    takeConfiguration(system_, to);
    load(to);
}

void ConfigurationPanel::describe() {
    DescriptionForm form(system_);
    dialogs_.show(form);
    showName();
}

}  // namespace coffrelune
