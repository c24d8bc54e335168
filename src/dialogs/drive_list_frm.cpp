#include "dialogs/drive_list_frm.h"

#include "system/numbers.h"
#include "system/paths.h"

namespace coffrelune {
namespace {

constexpr const char* notAvailable = "N.A.";

// The name that the desktop shows holds the medium's label, which tells two USB keys apart; the
// type of the drive does not.
std::string descriptionOf(const DriveDescription& drive) {
    return drive.displayName.empty() ? drive.typeName : drive.displayName;
}

}  // namespace

DriveListFrm::DriveListFrm(SystemMod& system, Desktop& desktop)
    : Lbl("Liste des lecteurs :"), Cmd{Button("OK"), Button("&Annuler")}, system_(system) {
    setCaption("Choisissez un lecteur pour toutes les destinations");
    ListDrive.addColumn("Unité", 1000);
    ListDrive.addColumn("Description", 2500);
    ListDrive.addColumn("Taille totale", 1500);
    ListDrive.addColumn("Espace libre", 1500);
    fill(desktop);
    Cmd[okCmd].onClick = [this] { accept(); };
    Cmd[cancelCmd].onClick = [this] { close(); };
    ListDrive.onDoubleClick = [this] { accept(); };
}

void DriveListFrm::fill(Desktop& desktop) {
    const Locale& locale = system_.platform.locale;
    for (const std::string& root : system_.platform.drives.roots()) {
        // Only a letter can take the place of a destination's letter.
        if (!isDriveRoot(root)) continue;
        const DriveDescription drive = desktop.driveInformation.describe(root);
        std::uint64_t total = 0;
        std::uint64_t free = 0;
        const Status read = desktop.driveInformation.sizes(root, total, free);
        const bool known = read.ok() && total > 0;
        ListDrive.addRow(
            {drive.iconName,
             {root, descriptionOf(drive), known ? driveSizeText(total, locale) : notAvailable,
              known ? driveSizeText(free, locale) : notAvailable}});
    }
}

void DriveListFrm::accept() {
    if (ListDrive.selection() < 0) {
        system_.platform.windows.showMessage({"Sélectionnez d'abord un lecteur !", caption(),
                                              MessageIcon::exclamation, MessageButtons::ok});
        return;
    }
    result_ = "1";
    drive_ = ListDrive.rows()[static_cast<std::size_t>(ListDrive.selection())].cells[0];
    close();
}

}  // namespace coffrelune
