#include "dialogs/text_dialogs.h"

#include <utility>

#include "settings/configurations.h"
#include "settings/setting_names.h"
#include "system/text.h"

namespace coffrelune {
namespace {

const char* captionFor(const std::string& request) {
    const bool source = !request.empty() && request.front() == '1';
    return source ? "Répertoire source" : "Répertoire destination";
}

}  // namespace

TextDialog::TextDialog(std::string caption, std::string name)
    : Txt(std::move(name)), Cmd{Button("OK"), Button("&Annuler"), Button("E&ffacer")} {
    setCaption(std::move(caption));
    Cmd[clearCmd].setToolTip("Effacer le texte");
    Cmd[okCmd].onClick = [this] {
        accept();
        close();
    };
    Cmd[cancelCmd].onClick = [this] { close(); };
    Cmd[clearCmd].onClick = [this] {
        Txt.setText("");
        Txt.takeFocus();
    };
}

ConfigNameForm::ConfigNameForm(SystemMod& system, std::string title, std::string proposed)
    : TextDialog(std::move(title), "Nom de la configuration"),
      Lbl("Nom de la configuration :"),
      system_(system) {
    Txt.setText(std::move(proposed));
    system_.dialogText.clear();
}

void ConfigNameForm::accept() {
    system_.dialogText = ProperCase(Txt.text());
    if (!isReserved(system_.dialogText)) return;
    system_.platform.windows.showMessage(
        {"Impossible, nom réservé !", caption(), MessageIcon::information, MessageButtons::ok});
    system_.dialogText.clear();
}

DescriptionForm::DescriptionForm(SystemMod& system)
    : TextDialog("Configuration : " + system.configurationName, "Description"), system_(system) {
    Txt.setText(system.description);
}

void DescriptionForm::accept() {
    // What cannot be written is told by the main window.
    (void)describeConfiguration(system_, Txt.text());
}

LineForm::LineForm(SystemMod& system)
    : TextDialog(captionFor(system.dialogText), "Répertoire"), system_(system) {
    if (!system.dialogText.empty()) Txt.setText(system.dialogText.substr(1));
    system_.dialogText = cancelled;
}

void LineForm::accept() {
    system_.dialogText = Txt.text();
}

}  // namespace coffrelune
