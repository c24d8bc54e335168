#include "dialogs/frm_about.h"

#include "settings/registres.h"
#include "settings/setting_names.h"
#include "system/sounds.h"

namespace coffrelune {
namespace {

// The build gives both to the properties of the program's file too.
constexpr const char* productTitle = COFFRELUNE_PRODUCT;
constexpr const char* comments = COFFRELUNE_COMMENTS;
constexpr const char* notice =
    "Ce logiciel est fourni « en l'état », sans garantie d'aucune sorte. Il est libre, sous "
    "licence "
    "MIT. Vérifiez de temps en temps que vos sauvegardes se relisent.";
constexpr const char* licenceAddress = "https://opensource.org/license/mit";

}  // namespace

frmAbout::frmAbout(SystemMod& system, Desktop& desktop)
    : TitleLbl(productTitle),
      VersionLbl("Version " + system.programVersion),
      CommentLbl(comments),
      NoticeLbl(notice),
      WebLbl("Texte de la licence MIT"),
      system_(system),
      desktop_(desktop) {
    setCaption(std::string("À propos de ") + productTitle);
    picIcon.setImage("coffrelune");
    WebLbl.setAddress(licenceAddress);
    WebLbl.onOpen = [this] { desktop_.shell.open(WebLbl.address(), ""); };
    AutoCheck.setChecked(system_.AutoStart != 0);
    cmdOK.onClick = [this] { closeBox(); };
    playSystemSound(system_.platform.sounds, desktop_.shell, "SystemStart");
}

std::vector<Label*> frmAbout::labels() {
    return {&TitleLbl, &VersionLbl, &CommentLbl, &NoticeLbl, &WebLbl};
}

void frmAbout::closeBox() {
    applyAutoStart();
    close();
}

// Compared as on and off: a box that nobody touched writes nothing, whatever number stands for "on"
// in the file.
void frmAbout::applyAutoStart() {
    const bool on = AutoCheck.checked();
    if (on == (system_.AutoStart != 0)) return;
    system_.AutoStart = on ? -1 : 0;
    system_.keep(globalSection, "AutoStart", on ? "-1" : "0");
    Registres(desktop_.registry).setAutoStart(on, system_.executablePath);
}

}  // namespace coffrelune
