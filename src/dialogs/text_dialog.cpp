#include "dialogs/text_dialog.h"

namespace coffrelune {

TextDialog::TextDialog(std::string caption, std::string name)
    : Txt(std::move(name)), Cmd{Button("OK"), Button("&Annuler"), Button("E&ffacer")} {
    setCaption(std::move(caption));
    Cmd[2].setToolTip("Effacer le texte");
    Cmd[0].onClick = [this] {
        accept();
        close();
    };
    Cmd[1].onClick = [this] { close(); };
    Cmd[2].onClick = [this] {
        Txt.setText("");
        Txt.takeFocus();
    };
}

}  // namespace coffrelune
