#include "mainwindow/line_rows.h"

#include <algorithm>

#include "dialogs/exclude_form.h"
#include "mainwindow/path_completion.h"
#include "settings/choices.h"
#include "settings/setting_names.h"
#include "system/text.h"

namespace coffrelune {

LineRows::LineRows(SystemMod& system, MainDialogs& dialogs) : system_(system), dialogs_(dialogs) {
    resize(system.maximumIndex + 1);
}

void LineRows::bindLabel(PathLabel& label, int index, LineSide side) {
    label.onPress = [this, index, side] {
        if (onPress) onPress(index, side);
    };
    label.onRightClick = [this, index, side] {
        if (onRightClick) onRightClick(index, side);
    };
    label.onDrop = [this, index, side](const PathLabel::Dragged& dragged) {
        if (onDrop) onDrop(index, side, dragged);
    };
    label.onEdit = [this, index, side](const std::string& typed) { typePath(index, side, typed); };
    label.onEmpty = [this, index, side] { emptyPath(index, side); };
    label.onComplete = [this](const std::string& typed) {
        return completions(system_.platform, typed);
    };
    label.onDrag = [this](bool underWay) {
        if (onDrag) onDrag(underWay);
    };
}

// A text that has not changed stores nothing; an empty one empties, which asks.
void LineRows::typePath(int index, LineSide side, const std::string& typed) {
    if (typed == row(index).label(side).path()) return;
    if (typed.empty()) {
        emptyPath(index, side);
    } else if (dialogs_.ready()) {
        edit(index, side, system_.platform.drives.fromWindow(typed));
    }
}

void LineRows::emptyPath(int index, LineSide side) {
    if (row(index).label(side).path().empty() || !dialogs_.ready()) return;
    const std::string what = side == LineSide::left ? "la source" : "la destination";
    const std::string line = " de la sauvegarde " + std::to_string(index + 1);
    if (dialogs_.confirmLoss("Voulez-vous vider " + what + line + " ?")) edit(index, side, "");
}

std::unique_ptr<LineRow> LineRows::makeRow(int index) {
    auto row = std::make_unique<LineRow>();
    const std::string number = std::to_string(index + 1);
    row->NumLbl.setCaption(number + ".");
    row->ChkS.setToolTip("Sélectionner la sauvegarde " + number);
    row->CmdS.setToolTip("Choisir la source de la sauvegarde " + number);
    row->CmdD.setToolTip("Choisir la destination de la sauvegarde " + number);
    row->CmdEx.setToolTip("Sous-répertoires exclus de la sauvegarde " + number);
    row->ImgOk.setImage("ligne-terminee");
    row->ImgOk.setVisible(false);
    row->ChkS.onClick = [this, index] { select(index); };
    row->CmdS.onClick = [this, index] {
        if (dialogs_.ready()) chooseSource(index, false);
    };
    row->CmdD.onClick = [this, index] {
        if (dialogs_.ready()) chooseDestination(index);
    };
    row->CmdEx.onClick = [this, index] {
        if (dialogs_.ready()) showExclusions(index);
    };
    bindLabel(row->LblS, index, LineSide::left);
    bindLabel(row->LblD, index, LineSide::right);
    return row;
}

void LineRows::resize(int count) {
    if (count < this->count()) rows_.resize(static_cast<std::size_t>(count));
    while (this->count() < count) rows_.push_back(makeRow(this->count()));
}

void LineRows::SetRowCount(int highest) {
    system_.resizeLines(highest);
    const int number = system_.maximumIndex + 1;
    system_.keep(globalSection, "RepertMax", std::to_string(number));
    resize(number);
    if (onRowsChanged) onRowsChanged();
}

void LineRows::ShowLines() {
    for (int index = 0; index < count(); ++index) showRow(index);
}

void LineRows::showRow(int index) {
    LineRow& shown = row(index);
    const LineTexts texts = lineTexts(system_, index);
    shown.LblS.setPath(texts.source);
    shown.LblD.setPath(texts.destination);
    const bool ticked = system_.lineAt(index).selected != 0;
    shown.ChkS.setChecked(ticked);
    shown.Img.setImage(ticked ? "ligne-selectionnee" : "ligne-non-selectionnee");
    checkRow(index);
    showExclusionCount(index);
}

void LineRows::showExclusionCount(int index) {
    const std::string packed = system_.PackExclusions(index);
    const auto count = std::count(packed.begin(), packed.end(), '|');
    std::string caption = "Exclusions";
    switch (static_cast<ExclusionMode>(leadingNumber(packed))) {
        case ExclusionMode::all:
            caption += " (toutes)";
            break;
        case ExclusionMode::listed:
            if (count > 0) caption += " (" + std::to_string(count) + ")";
            break;
        case ExclusionMode::none:
            break;
    }
    Button& button = row(index).CmdEx;
    button.setSpokenName(caption + " de la sauvegarde " + std::to_string(index + 1));
    button.setCaption(std::move(caption));
}

void LineRows::checkRow(int index) {
    LineRow& checked = row(index);
    const bool filled = system_.lineAt(index).filled();
    if (!filled && checked.ChkS.checked()) {
        checked.ChkS.setChecked(false);
        select(index);
    }
    checked.ChkS.setEnabled(filled);
}

// The tick has changed: so has the line.
void LineRows::select(int index) {
    LineRow& changed = row(index);
    const bool ticked = changed.ChkS.checked();
    changed.Img.setImage(ticked ? "ligne-selectionnee" : "ligne-non-selectionnee");
    (void)chooseLine(system_, index, ticked);  // what cannot be written is told by the window
}

// The row is shown again after each edit: in the reversed layout one path may change both labels.
void LineRows::StoreSource(int index) {
    editLine(system_, index, LineSide::left, row(index).LblS.path());
    showRow(index);
    if (onEdited) onEdited();
}

void LineRows::StoreDestination(int index) {
    editLine(system_, index, LineSide::right, row(index).LblD.path());
    showRow(index);
    if (onEdited) onEdited();
}

void LineRows::edit(int index, LineSide side, const std::string& path) {
    row(index).label(side).setPath(path);
    if (side == LineSide::left) {
        StoreSource(index);
    } else {
        StoreDestination(index);
    }
}

void LineRows::chooseSource(int index, bool includeFiles) {
    const std::string prompt = std::string("Sélectionnez le répertoire ") +
                               (includeFiles ? "(ou le fichier) " : "") + "source:";
    const std::string path = dialogs_.chooseFolder(includeFiles, prompt, row(index).LblS.path());
    if (!path.empty()) edit(index, LineSide::left, path);
}

void LineRows::chooseDestination(int index) {
    const std::string path = dialogs_.chooseFolder(
        false, "Sélectionnez le répertoire destination:", row(index).LblD.path());
    if (!path.empty()) edit(index, LineSide::right, path);
}

// What is left out belongs to what is backed up, whichever way the line is shown.
void LineRows::showExclusions(int index) {
    const std::string& source = system_.lineAt(index).source;
    if (source.empty()) {
        (void)dialogs_.say("Sélectionnez d'abord un disque ou répertoire à sauvegarder !");
        return;
    }
    ExcludeForm form(system_, index, source);
    dialogs_.show(form);
    showExclusionCount(index);
}

}  // namespace coffrelune
