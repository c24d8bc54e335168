#include "dialogs/exclude_form.h"

#include <algorithm>
#include <memory>

#include "platform/characters.h"
#include "system/text.h"

namespace coffrelune {
namespace {

// The text without as many leading characters as `prefix` has; they may differ in case.
std::string withoutPrefix(const std::string& text, const std::string& prefix) {
    std::size_t at = 0;
    std::size_t counted = 0;
    while (counted < prefix.size() && at < text.size()) {
        utf8::next(prefix, counted);
        utf8::next(text, at);
    }
    return text.substr(at);
}

// What the button at this index chooses.
ExclusionMode modeOf(std::size_t button) {
    return static_cast<ExclusionMode>(button);
}

// A plain comparison of texts: "C:\Data2" begins with "C:\Data" as well.
bool beginsWith(const std::string& text, const std::string& prefix) {
    return upperCase(text).rfind(upperCase(prefix), 0) == 0;
}

}  // namespace

ExcludeForm::ExcludeForm(SystemMod& system, int line, std::string source)
    : OptExclu{OptionButton("&Sauvegarder tous les sous-répertoires"),
               OptionButton("&Ne pas sauvegarder les sous-répertoires"),
               OptionButton("&Exclure de la sauvegarde les sous-répertoires suivants:")},
      Cmd{Button("OK"), Button("&Annuler"), Button("Ajouter"), Button("Supprimer"),
          Button("Supprimer Tout")},
      system_(system),
      line_(line),
      source_(std::move(source)) {
    setCaption("Sous-répertoires à exclure");
    Cmd[addCmd].setToolTip("Ajouter un répertoire à exclure");
    Cmd[removeCmd].setToolTip("Supprimer le répertoire sélectionné de la liste");
    Cmd[removeAllCmd].setToolTip("Supprimer la liste des répertoires exclus");
    for (std::size_t i = 0; i < OptExclu.size(); ++i) {
        OptExclu.at(i).onClick = [this, i] { selectMode(modeOf(i)); };
    }
    Liste.onPick = [this] { updateButtons(); };
    Cmd[okCmd].onClick = [this] { accept(); };
    Cmd[cancelCmd].onClick = [this] { close(); };
    Cmd[addCmd].onClick = [this] { add(); };
    Cmd[removeCmd].onClick = [this] { remove(); };
    Cmd[removeAllCmd].onClick = [this] { removeAll(); };
    load();
}

std::vector<Button*> ExcludeForm::buttons() {
    return {&Cmd[0], &Cmd[1], &Cmd[2], &Cmd[3], &Cmd[4]};
}

void ExcludeForm::load() {
    SourceLbl.setPath(source_);
    system_.LoadExclusions(line_);
    selectMode(system_.exclusions.mode);
    for (const std::string& directory : system_.exclusions.directories) Liste.add(directory);
    updateButtons();
}

void ExcludeForm::selectMode(ExclusionMode mode) {
    for (std::size_t i = 0; i < OptExclu.size(); ++i) {
        OptExclu.at(i).setChecked(modeOf(i) == mode);
    }
}

void ExcludeForm::updateButtons() {
    Cmd[removeCmd].setEnabled(Liste.selection() >= 0);
    Cmd[removeAllCmd].setEnabled(!Liste.entries().empty());
}

bool ExcludeForm::sourceHasSubdirectory() {
    std::unique_ptr<Directory> directory;
    const Status opened = system_.platform.files.openDirectory(source_, LinkRule::follow,
                                                               Wanted::directories, directory);
    if (!opened.ok()) return false;
    FileEntry entry;
    while (directory->next(entry)) {
        if (entry.isDirectory() && entry.name != "." && entry.name != "..") return true;
    }
    return false;
}

void ExcludeForm::add() {
    if (!sourceHasSubdirectory()) {
        say("Pas de sous-répertoire dans le disque/répertoire à sauvegarder !",
            MessageIcon::information, MessageButtons::ok);
        return;
    }
    const std::string directory = system_.platform.windows.chooseFolder(
        false, "Sélectionnez un répertoire à exclure de la sauvegarde:", source_);
    if (directory.empty()) return;
    if (!beginsWith(directory, source_)) {
        say("Le répertoire à exclure doit se trouver dans le disque ou répertoire à sauvegarder !",
            MessageIcon::information, MessageButtons::ok);
        return;
    }
    const std::string entry = entryOf(directory);
    if (!entry.empty()) {
        Liste.add(entry);
        // Whoever adds a directory wants it left out.
        selectMode(ExclusionMode::listed);
    }
    updateButtons();
}

// Empty when there is nothing to add: for the source itself, and for what is listed already.
std::string ExcludeForm::entryOf(const std::string& directory) {
    std::string entry = withoutPrefix(directory, source_);
    const std::vector<std::string>& listed = Liste.entries();
    if (std::find(listed.begin(), listed.end(), entry) == listed.end()) return entry;
    say("Ce répertoire est déjà dans la liste !", MessageIcon::information, MessageButtons::ok);
    return {};
}

void ExcludeForm::remove() {
    const int position = Liste.selection();
    Liste.remove(position);
    Liste.select(std::max(position - 1, 0));
    updateButtons();
}

void ExcludeForm::removeAll() {
    const Answer answer = say("Voulez-vous supprimer la liste des répertoires exclus ?",
                              MessageIcon::question, MessageButtons::okCancel);
    if (answer != Answer::ok) return;
    Liste.clear();
    updateButtons();
}

// The list is stored whatever the mode, for the day when the user comes back to it.
void ExcludeForm::accept() {
    system_.ClearExclusions(line_);
    for (std::size_t i = 0; i < OptExclu.size(); ++i) {
        if (OptExclu.at(i).checked()) system_.writeExclusionMode(line_, modeOf(i));
    }
    for (std::size_t i = 0; i < Liste.entries().size(); ++i) {
        system_.writeExcludedDirectory(line_, i + 1, Liste.entries()[i]);
    }
    close();
}

Answer ExcludeForm::say(const std::string& text, MessageIcon icon, MessageButtons buttons) {
    return system_.platform.windows.showMessage({text, caption(), icon, buttons});
}

}  // namespace coffrelune
