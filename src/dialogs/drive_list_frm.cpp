#include "dialogs/drive_list_frm.h"

#include "system/drive_rows.h"

namespace coffrelune {
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
    const Platform& platform = system_.platform;
    for (DriveRow& row : driveRows(platform.drives, desktop.driveInformation, platform.locale)) {
        ListDrive.addRow({row.iconName, {row.root, row.description, row.totalText, row.freeText}});
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
