#include "dialogs/config_form.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "dialogs/text_dialogs.h"
#include "settings/choices.h"
#include "settings/setting_names.h"
#include "system/paths.h"
#include "system/planned_runs.h"
#include "system/sounds.h"
#include "system/text.h"

namespace coffrelune {
namespace {

constexpr std::string_view soundExtension = ".wav";

bool isSoundName(const std::string& name) {
    const std::size_t length = soundExtension.size();
    return name.size() >= length &&
           equalIgnoringCase(name.substr(name.size() - length), soundExtension);
}

// What each option does; all of them hold for every configuration.
constexpr std::array<const char*, 9> optionHelp = {
    "Ne remplace un fichier de la copie que s'il est plus ancien que celui de la source.",
    "Les copies des fichiers en lecture seule peuvent être modifiées et effacées.",
    "Crée les répertoires sur la destination, sans copier aucun fichier.",
    "Joue un son quand une sauvegarde ou une restauration est finie.",
    "Donne aux copies la date de leur original : les fichiers inchangés se reconnaissent.",
    "Une erreur est comptée et la copie passe au fichier suivant, au lieu de s'arrêter.",
    "Copie les fichiers par la méthode simple du système, sans progression dans un fichier.",
    "Une heure d'écart entre deux fichiers compte comme une différence, même l'été.",
    "Efface de la destination les fichiers que la source n'a plus.",
};

}  // namespace

ConfigForm::ConfigForm(SystemMod& system, TaskScheduler* tasks)
    : FichSonLbl{Label("Copie Ok"), Label("Copie Erreur")},
      Cmd{Button("OK"),
          Button("&Annuler"),
          Button("Ajouter"),
          Button("Effacer"),
          Button("Test du signal sonore (Réussi)"),
          Button("Test du signal sonore (Erreur)")},
      system_(system),
      tasks_(tasks) {
    setCaption("Configurations et options");
    Cmd[addCmd].setToolTip("Ajouter une configuration de sauvegarde");
    Cmd[eraseCmd].setToolTip("Supprimer une configuration de sauvegarde");
    // They show a drawing each, the same for both.
    for (const CmdIndex test : {playSuccessCmd, playErrorCmd}) {
        Cmd.at(test).setToolTip(Cmd.at(test).caption());
    }
    Cmd[okCmd].onClick = [this] { accept(); };
    Cmd[cancelCmd].onClick = [this] { close(); };
    Cmd[addCmd].onClick = [this] { add(); };
    Cmd[eraseCmd].onClick = [this] { erase(); };
    Cmd[playSuccessCmd].onClick = [this] { play(0); };
    Cmd[playErrorCmd].onClick = [this] { play(1); };
    system_.pendingMaximumIndex = system_.maximumIndex;
    loadOptions();
    system_.selectedConfiguration = system_.configurationName;
    loadConfigurations();
    loadLineCounts();
    loadSounds();
}

std::vector<Button*> ConfigForm::buttons() {
    return {&Cmd[0], &Cmd[1], &Cmd[2], &Cmd[3], &Cmd[4], &Cmd[5]};
}

void ConfigForm::loadOptions() {
    for (std::size_t i = 0; i < Opt.size(); ++i) {
        Opt.at(i).setToolTip(std::string(optionHelp.at(i)) + "\nPour toutes les configurations.");
    }
    for (const CopyOption& option : optionTable) {
        if (option.box == noBox) continue;
        Opt.at(option.box).setCaption(option.caption);
        Opt.at(option.box).setChecked(system_.options.*option.value != 0);
    }
    const bool audible = system_.platform.sounds.deviceCount() > 0;
    Opt[soundOption].setEnabled(audible);
    for (std::size_t i = 0; i < FichSonCb.size(); ++i) {
        Cmd.at(playSuccessCmd + i).setEnabled(audible);
        FichSonCb.at(i).setEnabled(audible);
        FichSonLbl.at(i).setEnabled(audible);
    }
}

void ConfigForm::loadConfigurations() {
    listed_ = listConfigurations(system_);
    for (const auto& [name, entry] : listed_) {
        Liste.add(entry);
        if (name == system_.configurationName) {
            Liste.select(static_cast<int>(Liste.entries().size()) - 1);
        }
    }
    if (isTakenUnused()) append(system_.configurationName);
}

// Added and taken, it has no section until something of it is stored. One that was only named at
// the start is nobody's choice.
bool ConfigForm::isTakenUnused() const {
    const std::string& name = system_.configurationName;
    return name == system_.takenConfiguration && !isListed(listed_, name) &&
           !system_.configurationExists(name);
}

void ConfigForm::append(const std::string& name) {
    Liste.add(name);
    listed_.push_back({name, name});
    Liste.select(static_cast<int>(listed_.size()) - 1);
}

void ConfigForm::loadLineCounts() {
    for (const int lines : offeredLineCounts(system_)) {
        RepMaxCb.add(std::to_string(lines));
        if (lines == system_.maximumIndex + 1) {
            RepMaxCb.select(static_cast<int>(RepMaxCb.entries().size()) - 1);
        }
    }
}

void ConfigForm::loadSounds() {
    const std::vector<std::string> sounds = soundFiles();
    for (std::size_t i = 0; i < FichSonCb.size(); ++i) {
        ListBox& list = FichSonCb.at(i);
        for (const std::string& sound : sounds) {
            list.add(sound);
            const bool stored = equalIgnoringCase(sound, system_.soundNames.at(i));
            if (stored && list.selection() < 0) {
                list.select(static_cast<int>(list.entries().size()) - 1);
            }
        }
        if (list.selection() < 0) list.select(0);
    }
}

// The names of those that can be played: where the file system tells cases apart, a sound called
// "Ok.WAV" would never be found.
std::vector<std::string> ConfigForm::soundFiles() {
    std::vector<std::string> sounds;
    if (system_.homeDirectory.empty()) return sounds;
    std::unique_ptr<Directory> directory;
    const Status opened = system_.platform.files.openDirectory(
        system_.homeDirectory, LinkRule::follow, Wanted::files, directory);
    if (!opened.ok()) return sounds;
    FileEntry entry;
    while (directory->next(entry)) {
        if (!isSoundName(entry.name)) continue;
        const std::string name = withoutExtension(entry.name);
        if (soundExists(system_.platform.files, system_.homeDirectory, name)) {
            sounds.push_back(name);
        }
    }
    return sounds;
}

void ConfigForm::play(std::size_t sound) {
    playEndOfCopySound(system_.platform.sounds, system_.platform.files, system_.homeDirectory,
                       FichSonCb.at(sound).selectedText());
}

void ConfigForm::refuse(ConfigurationRefusal refusal) {
    say(textOf(refusal), MessageIcon::information, MessageButtons::ok);
}

void ConfigForm::add() {
    ConfigNameForm form(system_);
    system_.platform.windows.showModal(form);
    const std::string name = system_.dialogText;
    if (name.empty()) return;
    const ConfigurationRefusal refusal = refusalToAdd(system_, listed_, name);
    if (refusal != ConfigurationRefusal::none) return refuse(refusal);
    append(name);
}

void ConfigForm::erase() {
    if (Liste.selection() < 0) return;
    const Answer answer = system_.platform.windows.showMessage(
        {"Voulez-vous effacer cette configuration ?", caption(), MessageIcon::question,
         MessageButtons::okCancel, true});
    if (answer != Answer::ok) return;
    const std::string name = chosenName(Liste.selectedText());
    const ConfigurationRefusal refusal = refusalToErase(system_, name);
    if (refusal == ConfigurationRefusal::noName) return;
    if (refusal != ConfigurationRefusal::none) return refuse(refusal);
    if (belongsToAnother(name)) {
        say("Impossible, ce nom est celui d'une autre configuration !", MessageIcon::information,
            MessageButtons::ok);
        return;
    }
    eraseChosen(name);
}

void ConfigForm::eraseChosen(const std::string& name) {
    const bool erased = eraseConfiguration(system_, name).ok();  // a failure is told by the window
    const std::vector<std::string>& entries = Liste.entries();
    const auto found = std::find(entries.begin(), entries.end(), name);
    // An entry with a description stays on view until the dialog opens again.
    if (found != entries.end()) {
        const auto index = found - entries.begin();
        listed_.erase(listed_.begin() + index);
        Liste.remove(static_cast<int>(index));
        Liste.select(0);
    }
    if (!erased || tasks_ == nullptr) return;
    const PlanFate plan = erasePlan(*tasks_, name);
    if (plan.text.empty()) return;
    say(plan.text, plan.status.ok() ? MessageIcon::information : MessageIcon::exclamation,
        MessageButtons::ok);
}

// Where the cut made the name of another configuration, that one must not go instead. It may have
// found no room in the list.
bool ConfigForm::belongsToAnother(const std::string& name) const {
    const auto selected = static_cast<std::size_t>(Liste.selection());
    if (equalIgnoringCase(name, listed_[selected].name)) return false;
    return isListed(listed_, name) || system_.configurationExists(name);
}

void ConfigForm::accept() {
    const std::string name = chosenName(Liste.selectedText());
    // Without a name nothing could be stored any more, and under the reserved one the lines would
    // go among the global settings.
    const bool chosen = !name.empty() && !isReserved(name);
    system_.selectedConfiguration = chosen ? name : system_.configurationName;
    // What is chosen here is no longer a name that was only tried.
    if (chosen) takeConfiguration(system_, name);
    if (RepMaxCb.selection() >= 0) {
        system_.pendingMaximumIndex =
            static_cast<std::int16_t>(leadingNumber(RepMaxCb.selectedText()) - 1);
    }
    storeOptions();
    storeSounds();
    close();
}

// What cannot be written holds for this run; the window tells it once.
void ConfigForm::storeOptions() {
    for (const CopyOption& option : optionTable) {
        if (option.box == noBox) continue;
        (void)chooseOption(system_, option, Opt.at(option.box).checked());
    }
}

void ConfigForm::storeSounds() {
    constexpr std::array<const char*, 2> keys = {"SignalOk", "SignalErreur"};
    for (std::size_t i = 0; i < keys.size(); ++i) {
        system_.soundNames.at(i) = FichSonCb.at(i).selectedText();
        system_.keep(globalSection, keys.at(i), system_.soundNames.at(i));
    }
}

Answer ConfigForm::say(const std::string& text, MessageIcon icon, MessageButtons buttons) {
    return system_.platform.windows.showMessage({text, caption(), icon, buttons});
}

}  // namespace coffrelune
