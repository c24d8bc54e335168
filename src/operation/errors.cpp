#include "operation/errors.h"

#include "platform/status.h"
#include "settings/setting_names.h"
#include "system/text.h"

namespace coffrelune {

std::string errorListPath(const SystemMod& system, OperationKind kind) {
    return errorListPath(system, system.configurationName, kind);
}

Status EcritErreurs(SystemMod& system, const std::string& journal) {
    if (system.homeDirectory.empty()) return {};
    std::string bytes;
    // Characters outside the code page become "?": the list is for reading.
    (void)system.platform.ansi.encode(journal, bytes);
    return system.platform.files.writeWhole(errorListPath(system, system.operationKind), bytes,
                                            Durability::now);
}

std::string readErrorList(SystemMod& system, OperationKind kind) {
    constexpr std::uint64_t largest = std::uint64_t{1} << 30;
    std::string bytes;
    const Status read =
        system.platform.files.readWhole(errorListPath(system, kind), largest, bytes);
    return read.ok() ? system.platform.ansi.decode(bytes) : std::string();
}

std::string errorCause(std::uint32_t number, const std::string& sharingPath) {
    switch (number) {
        case error_number::none:
            return {};
        case error_number::pathNotFound:
            return "Répertoire non trouvé.";
        case error_number::accessDenied:
            return "Accès disque destination refusé.";
        case error_number::writeProtect:
            return "Ce disque est protégé en écriture.\n"
                   "Retirez la protection en écriture ou utilisez un autre disque.";
        case error_number::notReady:
            return "Il n'y a pas de disque dans le lecteur destination.";
        case error_number::generalFailure:
            return "Le disque destination n'est pas formaté.";
        case error_number::sharingViolation:
        case error_number::lockViolation:
            return "Impossible de copier: " + visibleControls(sharingPath) +
                   ", Violation de partage.\n"
                   "Le fichier source ou destination est peut-être en cours d'utilisation.";
        case error_number::deviceDoesNotExist:
            return "Le disque destination n'existe pas.";
        case error_number::diskFull:
            return "Le disque destination est plein.";
        default:
            return "Erreur " + std::to_string(number);
    }
}

VisuErrFrm::VisuErrFrm(SystemMod& system) : system_(system) {
    setCaption("Liste des dernières erreurs de sauvegarde");
    Lbl[0].setCaption("Configuration : " + system.configurationName + " (" +
                      wordsOf(system.operationKind).title + ")");
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
