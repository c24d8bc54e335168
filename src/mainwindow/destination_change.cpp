#include "mainwindow/destination_change.h"

#include "dialogs/drive_list_frm.h"
#include "operation/line_texts.h"
#include "system/text.h"

namespace coffrelune {
namespace {

constexpr std::size_t driveLength = 2;

bool hasDrive(const std::string& path) {
    if (path.size() < driveLength || path[1] != ':') return false;
    return (path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z');
}

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
    if (form.result() == "1" && hasDrive(form.drive())) {
        changeTo(form.drive().substr(0, driveLength));
    }
}

bool DestinationChange::onOneDrive() const {
    std::string first;
    for (const std::string& destination : system_.destinations) {
        if (!hasDrive(destination)) continue;
        const std::string drive = driveOf(destination);
        if (first.empty()) first = drive;
        if (drive != first) return false;
    }
    return true;
}

void DestinationChange::changeTo(const std::string& drive) {
    for (std::size_t line = 0; line < system_.destinations.size(); ++line) {
        std::string& destination = system_.destinations[line];
        if (!hasDrive(destination)) continue;
        const std::string copyBefore = copyOfLine(system_, static_cast<int>(line));
        destination.replace(0, driveLength, drive);
        copyMoved(system_, static_cast<int>(line), copyBefore);
        (void)system_.WriteSetting(system_.configurationName, "Destination" + std::to_string(line),
                                   QuoteValue(destination));
    }
    rows_.ShowLines();
}

}  // namespace coffrelune
