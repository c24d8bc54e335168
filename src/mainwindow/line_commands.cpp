#include "mainwindow/line_commands.h"

#include <algorithm>
#include <utility>

#include "dialogs/drive_list_frm.h"
#include "dialogs/text_dialogs.h"
#include "platform/names.h"
#include "system/text.h"

namespace coffrelune {

LineCommands::LineCommands(SystemMod& system, Desktop& desktop, MainDialogs& dialogs,
                           LineRows& rows)
    : system_(system), desktop_(desktop), dialogs_(dialogs), rows_(rows) {
    addTo(MenuPop);
    MenuPop.onPick = [this](const std::string& key) {
        if (dialogs_.ready()) (void)run(key);
    };
}

void LineCommands::addTo(CommandBar& bar) {
    bar.add({"ModifRep", "&Modifier le répertoire...", "Modifier le répertoire"});
    bar.add({"ModifRepFich", "Modifier le répertoire ou le &fichier...",
             "Modifier le répertoire ou le fichier source"});
    bar.add({"Editer", "Éd&iter le chemin...", "Éditer le chemin"});
    bar.add({"Prop", "&Propriétés", "Propriétés du répertoire ou du fichier"});
    bar.add({"LigneUp", "Mon&ter la ligne", "Monter la ligne"});
    bar.add({"LigneDown", "&Descendre la ligne", "Descendre la ligne"});
    bar.add({"DeleteLigne", "&Remise à zéro de la ligne...", "Remise à zéro de la ligne"});
}

void LineCommands::setTarget(int row, LineSide side) {
    row_ = row;
    side_ = side;
    if (onTargetChanged) onTargetChanged();
}

void LineCommands::openMenu(int row, LineSide side) {
    setTarget(row, side);
    MenuPop.setVisible("ModifRepFich", side == LineSide::left);
    MenuPop.setEnabled("LigneUp", canMoveUp());
    MenuPop.setEnabled("LigneDown", canMoveDown());
    // While the menu is open nothing may start by itself.
    const MainDialogs::Hold hold(dialogs_);
    if (onPopup) onPopup();
}

void LineCommands::rowsChanged() {
    setTarget(std::min(row_, rows_.count() - 1), side_);
}

bool LineCommands::run(const std::string& key) {
    if (key == "ModifRep") {
        if (side_ == LineSide::left) {
            rows_.chooseSource(row_, false);
        } else {
            rows_.chooseDestination(row_);
        }
    } else if (key == "ModifRepFich") {
        rows_.chooseSource(row_, true);
    } else if (key == "Editer") {
        editPath();
    } else if (key == "Prop") {
        showProperties();
    } else if (key == "LigneUp") {
        if (canMoveUp()) moveTo(row_ - 1);
    } else if (key == "LigneDown") {
        if (canMoveDown()) moveTo(row_ + 1);
    } else if (key == "DeleteLigne") {
        reset();
    } else {
        return false;
    }
    return true;
}

void LineCommands::editPath() {
    const char* mark = side_ == LineSide::left ? "1" : "2";
    system_.dialogText = mark + rows_.row(row_).label(side_).path();
    LineForm form(system_);
    dialogs_.show(form);
    const std::string typed = system_.dialogText;
    if (typed == LineForm::cancelled) return;
    rows_.edit(row_, side_, system_.platform.drives.fromWindow(typed));
}

void LineCommands::showProperties() {
    const std::string& path = rows_.row(row_).label(side_).path();
    if (!path.empty()) desktop_.shell.showProperties(path);
}

void LineCommands::moveTo(int other) {
    std::swap(system_.lineAt(row_), system_.lineAt(other));
    // What a line leaves out is stored under its number, and goes with it.
    const std::string moved = system_.PackExclusions(row_);
    const std::string displaced = system_.PackExclusions(other);
    if (moved != displaced) {
        system_.StoreExclusions(displaced, row_);
        system_.StoreExclusions(moved, other);
    }
    writeLine(row_);
    writeLine(other);
    rows_.ShowLines();
    // So that pressing the button again moves the same line further.
    setTarget(other, side_);
    if (onMoved) onMoved(row_, side_);
}

void LineCommands::writeLine(int index) {
    const BackupLine& line = system_.lineAt(index);
    const auto write = [&](const char* key, const std::string& value) {
        system_.keep(system_.configurationName, key + std::to_string(index), value);
    };
    write("Source", QuoteValue(line.source));
    write("Destination", QuoteValue(line.destination));
    write("Select", std::to_string(line.selected));
}

void LineCommands::reset() {
    if (!dialogs_.confirmLoss("Remise à zéro de la sauvegarde " + std::to_string(row_ + 1) + " ?"))
        return;
    rows_.edit(row_, LineSide::left, "");
    rows_.edit(row_, LineSide::right, "");
    system_.ClearExclusions(row_);
    rows_.showExclusionCount(row_);
}

namespace {

constexpr std::size_t driveLength = 2;

std::string driveOf(const std::string& path) {
    return upperCase(path.substr(0, driveLength));
}

}  // namespace

DestinationChange::DestinationChange(SystemMod& system, Desktop& desktop, MainDialogs& dialogs,
                                     LineRows& rows)
    : system_(system), desktop_(desktop), dialogs_(dialogs), rows_(rows) {}

void DestinationChange::run() {
    if (!onOneDrive()) {
        (void)dialogs_.say("Toutes les sauvegardes doivent être sur la même unité disque !",
                           MessageIcon::information, MessageButtons::ok,
                           "Modification de toutes les destinations");
        return;
    }
    DriveListFrm form(system_, desktop_);
    dialogs_.show(form);
    if (form.result() == "1" && hasDriveLetter(form.drive())) {
        changeTo(form.drive().substr(0, driveLength));
    }
}

bool DestinationChange::onOneDrive() const {
    std::string first;
    for (const BackupLine& line : system_.lines) {
        if (!hasDriveLetter(line.destination)) continue;
        const std::string drive = driveOf(line.destination);
        if (first.empty()) first = drive;
        if (drive != first) return false;
    }
    return true;
}

void DestinationChange::changeTo(const std::string& drive) {
    for (int line = 0; line <= system_.maximumIndex; ++line) {
        std::string& destination = system_.lineAt(line).destination;
        if (!hasDriveLetter(destination)) continue;
        destination.replace(0, driveLength, drive);
        system_.keep(system_.configurationName, "Destination" + std::to_string(line),
                     QuoteValue(destination));
    }
    rows_.ShowLines();
}

}  // namespace coffrelune
