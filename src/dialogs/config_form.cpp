#include "dialogs/config_form.h"

#include <algorithm>

#include "dialogs/config_name_form.h"
#include "settings/error_list_name.h"
#include "settings/reserved_name.h"
#include "system/text.h"

namespace coffrelune {
namespace {

constexpr const char* position = "Position";

std::string withoutLastCharacter(std::string text) {
    while (!text.empty() && (text.back() & 0xC0) == 0x80) text.pop_back();
    if (!text.empty()) text.pop_back();
    return text;
}

// Stores a choice that differs from the remembered one; an option that nobody touched is not
// written.
template <typename Flag>
void storeOption(SystemMod& system, const char* key, const CheckBox& box, Flag& option) {
    const Flag value = box.checked() ? -1 : 0;
    if (value == option) return;
    option = value;
    (void)system.WriteSetting(position, key, std::to_string(value));
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
    Cmd[2].setToolTip("Ajouter une configuration de sauvegarde");
    Cmd[3].setToolTip("Supprimer une configuration de sauvegarde");
    Cmd[0].onClick = [this] { accept(); };
    Cmd[1].onClick = [this] { close(); };
    Cmd[2].onClick = [this] { add(); };
    Cmd[3].onClick = [this] { erase(); };
    Cmd[4].onClick = [this] { play(0); };
    Cmd[5].onClick = [this] { play(1); };
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
    (void)system_.WriteSetting(name, "", "");
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
    for (const OperationKind kind :
         {OperationKind::backup, OperationKind::restore, OperationKind::comparison}) {
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

void ConfigForm::storeOptions() {
    CopyOptions& options = system_.options;
    storeOption(system_, "RecentSeul", Opt[0], options.RecentSeul);
    storeOption(system_, "DelReadOnly", Opt[1], options.DelReadOnly);
    storeOption(system_, "ContinueOnError", Opt[5], options.ContinueOnError);
    storeOption(system_, "SynchroCopie", Opt[8], options.SynchroCopie);
    storeOption(system_, "AltCopie", Opt[6], options.AltCopie);
    storeOption(system_, "CorrectEteOff", Opt[7], options.CorrectEteOff);
    storeOption(system_, "SynchroDate", Opt[4], options.SynchroDate);
    storeOption(system_, "ArbreMode", Opt[2], options.ArbreMode);
    storeOption(system_, "SignalSonore", Opt[3], options.SignalSonore);
}

void ConfigForm::storeSounds() {
    constexpr std::array<const char*, 2> keys = {"SignalOk", "SignalErreur"};
    for (std::size_t i = 0; i < keys.size(); ++i) {
        system_.soundNames.at(i) = FichSonCb.at(i).selectedText();
        (void)system_.WriteSetting(position, keys.at(i), system_.soundNames.at(i));
    }
}

Answer ConfigForm::say(const std::string& text, MessageIcon icon, MessageButtons buttons) {
    return system_.platform.windows.showMessage({text, caption(), icon, buttons});
}

}  // namespace coffrelune
