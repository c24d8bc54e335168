#include "operation/visu_err_frm.h"

#include "operation/error_list.h"

namespace coffrelune {
namespace {

constexpr std::array<const char*, 3> kindNames = {"Sauvegarde", "Restauration", "Comparaison"};

}  // namespace

VisuErrFrm::VisuErrFrm(SystemMod& system) : system_(system) {
    setCaption("Liste des dernières erreurs de sauvegarde");
    Lbl[0].setCaption("Configuration : " + system.configurationName + " (" +
                      kindNames[static_cast<std::size_t>(system.operationKind)] + ")");
    // The backup's count whatever the kind shown: it is the one that people ask for.
    Lbl[1].setCaption("Nombre d'erreur(s): " +
                      std::to_string(system.lastResult(OperationKind::backup).errorCount));
    Cmd.onClick = [this] { close(); };
    LitErreurs();
}

void VisuErrFrm::LitErreurs() {
    WindowService& windows = system_.platform.windows;
    windows.showWaiting(true);
    std::string text = readErrorList(system_, system_.operationKind);
    // The last line end ends the last line; it begins no empty one.
    if (text.size() >= 2 && text.compare(text.size() - 2, 2, "\r\n") == 0) {
        text.resize(text.size() - 2);
    }
    if (!text.empty()) ListeTxt.append(text);
    windows.showWaiting(false);
}

}  // namespace coffrelune
