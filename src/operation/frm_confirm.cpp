#include "operation/frm_confirm.h"

namespace coffrelune {

frmConfirm::frmConfirm(const std::string& fileName)
    : Cmd{Button("&Oui"), Button("&Tous"), Button("&Non"), Button("Annuler")},
      Lbl{Label("Ce dossier contient déjà un fichier appelé '"),
          Label("Etes-vous sûr de vouloir remplacer ce fichier ?")} {
    setCaption("Confirmation du remplacement du fichier");
    Lbl[0].setCaption(Lbl[0].caption() + fileName + "'");
    Image1.setImage("attention");
    for (std::size_t i = 0; i < Cmd.size(); ++i) {
        Cmd[i].onClick = [this, i] {
            answer_ = static_cast<ReplacementAnswer>(i);
            close();
        };
    }
}

std::vector<Button*> frmConfirm::buttons() {
    return {&Cmd[0], &Cmd[1], &Cmd[2], &Cmd[3]};
}

}  // namespace coffrelune
