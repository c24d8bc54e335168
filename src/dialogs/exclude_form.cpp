#include "dialogs/exclude_form.h"

#include <algorithm>
#include <memory>

#include "settings/choices.h"

namespace coffrelune {
namespace {

// What the button at this index chooses.
ExclusionMode modeOf(std::size_t button) {
    return static_cast<ExclusionMode>(button);
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
    const auto [refusal, entry] = chooseExclusion(source_, directory, Liste.entries());
    if (refusal != ExclusionChoice::Refusal::none) {
        say(textOf(refusal), MessageIcon::information, MessageButtons::ok);
    }
    if (!entry.empty()) {
        Liste.add(entry);
        // Whoever adds a directory wants it left out.
        selectMode(ExclusionMode::listed);
    }
    updateButtons();
}

void ExcludeForm::remove() {
    const int position = Liste.selection();
    Liste.remove(position);
    Liste.select(std::max(position - 1, 0));
    updateButtons();
}

void ExcludeForm::removeAll() {
    const Answer answer = system_.platform.windows.showMessage(
        {"Voulez-vous supprimer la liste des répertoires exclus ?", caption(),
         MessageIcon::question, MessageButtons::okCancel, true});
    if (answer != Answer::ok) return;
    Liste.clear();
    updateButtons();
}

void ExcludeForm::accept() {
    ExclusionList list{ExclusionMode::none, Liste.entries()};
    for (std::size_t i = 0; i < OptExclu.size(); ++i) {
        if (OptExclu.at(i).checked()) list.mode = modeOf(i);
    }
    storeExclusionList(system_, line_, list);
    close();
}

Answer ExcludeForm::say(const std::string& text, MessageIcon icon, MessageButtons buttons) {
    return system_.platform.windows.showMessage({text, caption(), icon, buttons});
}

}  // namespace coffrelune
