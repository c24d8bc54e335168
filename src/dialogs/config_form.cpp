#include "dialogs/config_form.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "dialogs/text_dialogs.h"
#include "settings/setting_names.h"
#include "system/paths.h"
#include "system/sounds.h"
#include "system/text.h"

namespace coffrelune {
namespace {

constexpr int mostLines = 12;
constexpr std::string_view soundExtension = ".wav";

std::string withoutLastCharacter(std::string text) {
    while (!text.empty() && (text.back() & 0xC0) == 0x80) text.pop_back();
    if (!text.empty()) text.pop_back();
    return text;
}

bool isSoundName(const std::string& name) {
    const std::size_t length = soundExtension.size();
    return name.size() >= length &&
           equalIgnoringCase(name.substr(name.size() - length), soundExtension);
}

}  // namespace

ConfigForm::ConfigForm(SystemMod& system)
    : Opt{CheckBox("Copie seulement les fichiers plus &récents:"),
          CheckBox("Efface l'attribut '&Lecture seule' pendant la copie:"),
          CheckBox("Copie seulement l'&arborescence des répertoires:"),
          CheckBox("Emettre un signal &sonore à la fin de la copie:"),
          CheckBox("Synchronise la date des fichiers pendant la copie:"),
          CheckBox("Continuer la copie en cas d'erreur:"),
          CheckBox("Mode de copie alternative:"),
          CheckBox("Désactive la correction Heure d'été:"),
          CheckBox("Efface les fichiers excédentaires sur la destination:")},
      FichSonLbl{Label("Copie Ok"), Label("Copie Erreur")},
      Cmd{Button("OK"),
          Button("&Annuler"),
          Button("Ajouter"),
          Button("Effacer"),
          Button("Test du signal sonore (Réussi)"),
          Button("Test du signal sonore (Erreur)")},
      system_(system) {
    setCaption("Configurations et options");
    Cmd[addCmd].setToolTip("Ajouter une configuration de sauvegarde");
    Cmd[eraseCmd].setToolTip("Supprimer une configuration de sauvegarde");
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
    for (const CopyOption& option : optionTable) {
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
    system_.ListConfigurations(names_);
    for (const std::string& name : names_) {
        const std::string description = system_.ReadSetting(name, "Description");
        std::string entry = name;
        if (!description.empty()) entry.append(" (").append(description).append(")");
        Liste.add(std::move(entry));
        if (name == system_.configurationName) {
            Liste.select(static_cast<int>(Liste.entries().size()) - 1);
        }
    }
}

// From what the last line in use of any configuration needs: no line anywhere is to drop out of
// sight, and so out of the backup. A larger number that was set by hand stays on offer.
void ConfigForm::loadLineCounts() {
    const int current = system_.maximumIndex + 1;
    for (int lines = system_.lastUsedLineAnywhere() + 1; lines <= mostLines; ++lines) {
        RepMaxCb.add(std::to_string(lines));
        if (lines == current) RepMaxCb.select(static_cast<int>(RepMaxCb.entries().size()) - 1);
    }
    if (current <= mostLines) return;
    RepMaxCb.add(std::to_string(current));
    RepMaxCb.select(static_cast<int>(RepMaxCb.entries().size()) - 1);
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

// The entry up to the blank before its description. A name that holds "(" is cut there as well.
std::string ConfigForm::nameOf(const std::string& listed) {
    std::string entry = trimBlanks(listed);
    const std::size_t bracket = entry.find('(');
    if (bracket == std::string::npos) return entry;
    return withoutLastCharacter(entry.substr(0, bracket));
}

bool ConfigForm::refuseReserved(const std::string& name) {
    if (!isReserved(name)) return false;
    say("Impossible, nom réservé !", MessageIcon::information, MessageButtons::ok);
    return true;
}

// Compared with the beginning of each entry, which a description may follow; so "Tra" is taken once
// there is a "Travail". A whole name is taken in any case, which the settings file does not tell
// apart.
bool ConfigForm::isTaken(const std::string& name) const {
    const std::vector<std::string>& entries = Liste.entries();
    return std::any_of(entries.begin(), entries.end(),
                       [&](const std::string& entry) { return entry.rfind(name, 0) == 0; }) ||
           isListed(name);
}

void ConfigForm::add() {
    ConfigNameForm form(system_);
    system_.platform.windows.showModal(form);
    const std::string name = system_.dialogText;
    // One that choosing it would turn into the reserved name could never be chosen.
    if (name.empty() || refuseReserved(nameOf(name))) return;
    if (isTaken(name)) {
        say("Cette configuration existe déjà !", MessageIcon::information, MessageButtons::ok);
        return;
    }
    Liste.add(name);
    names_.push_back(name);
    Liste.select(static_cast<int>(names_.size()) - 1);
}

void ConfigForm::erase() {
    if (Liste.selection() < 0) return;
    const Answer answer = say("Voulez-vous effacer cette configuration ?", MessageIcon::question,
                              MessageButtons::okCancel);
    if (answer != Answer::ok) return;
    const std::string name = nameOf(Liste.selectedText());
    // The settings file does not tell names apart by their case.
    if (equalIgnoringCase(name, system_.configurationName)) {
        say("Impossible d'effacer la configuration en cours !", MessageIcon::information,
            MessageButtons::ok);
        return;
    }
    if (name.empty() || refuseReserved(name)) return;
    if (belongsToAnother(name)) {
        say("Impossible, ce nom est celui d'une autre configuration !", MessageIcon::information,
            MessageButtons::ok);
        return;
    }
    system_.keep(name, "", "");  // the whole section
    eraseFiles(name);
    const std::vector<std::string>& entries = Liste.entries();
    const auto found = std::find(entries.begin(), entries.end(), name);
    // An entry with a description stays on view until the dialog opens again.
    if (found == entries.end()) return;
    const auto index = found - entries.begin();
    names_.erase(names_.begin() + index);
    Liste.remove(static_cast<int>(index));
    Liste.select(0);
}

// Where the cut made the name of another configuration, that one must not go instead. It may have
// found no room in the list.
bool ConfigForm::belongsToAnother(const std::string& name) const {
    const auto selected = static_cast<std::size_t>(Liste.selection());
    if (equalIgnoringCase(name, names_[selected])) return false;
    return isListed(name) || system_.configurationExists(name);
}

bool ConfigForm::isListed(const std::string& name) const {
    return std::any_of(names_.begin(), names_.end(),
                       [&](const std::string& other) { return equalIgnoringCase(other, name); });
}

void ConfigForm::eraseFiles(const std::string& name) {
    if (system_.homeDirectory.empty()) return;
    for (const OperationKind kind : allKinds) {
        // Most configurations have none to remove.
        (void)system_.platform.files.removeFile(errorListPath(system_, name, kind));
    }
}

void ConfigForm::accept() {
    const std::string name = nameOf(Liste.selectedText());
    // Without a name nothing could be stored any more, and under the reserved one the lines would
    // go among the global settings.
    const bool chosen = !name.empty() && !isReserved(name);
    system_.selectedConfiguration = chosen ? name : system_.configurationName;
    // What is chosen here is no longer a name that was only tried.
    if (chosen) system_.askedConfiguration.clear();
    if (RepMaxCb.selection() >= 0) {
        system_.pendingMaximumIndex =
            static_cast<std::int16_t>(leadingNumber(RepMaxCb.selectedText()) - 1);
    }
    storeOptions();
    storeSounds();
    close();
}

// Stores the choices that differ from the remembered ones; an option that nobody touched is not
// written.
void ConfigForm::storeOptions() {
    for (const CopyOption& option : optionTable) {
        std::int32_t& stored = system_.options.*option.value;
        const std::int32_t chosen = Opt.at(option.box).checked() ? -1 : 0;
        if (chosen == stored) continue;
        stored = chosen;
        system_.keep(globalSection, option.key, std::to_string(chosen));
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
