#include "dialogs/config_name_form.h"

#include "system/text.h"

namespace coffrelune {
namespace {

constexpr const char* reservedName = "Position";

}  // namespace

ConfigNameForm::ConfigNameForm(SystemMod& system)
    : TextDialog("Nouvelle configuration", "Nom de la configuration"),
      Lbl("Nom de la configuration :"),
      system_(system) {
    system_.dialogText.clear();
}

void ConfigNameForm::accept() {
    system_.dialogText = ProperCase(Txt.text());
    if (system_.dialogText != reservedName) return;
    system_.platform.windows.showMessage(
        {"Impossible, nom réservé !", caption(), MessageIcon::information, MessageButtons::ok});
    system_.dialogText.clear();
}

}  // namespace coffrelune
