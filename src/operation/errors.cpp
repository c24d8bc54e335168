#include "operation/errors.h"

#include <algorithm>
#include <array>

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

namespace {

struct Meaning {
    std::uint32_t number;
    const char* words;
};

constexpr std::array meanings = {
    Meaning{error_number::invalidFunction, "opération impossible ici"},
    Meaning{error_number::fileNotFound, "fichier introuvable"},
    Meaning{error_number::pathNotFound, "répertoire introuvable"},
    Meaning{error_number::tooManyOpenFiles, "trop de fichiers ouverts"},
    Meaning{error_number::accessDenied, "accès refusé"},
    Meaning{error_number::notEnoughMemory, "mémoire insuffisante"},
    Meaning{error_number::invalidData, "données incorrectes"},
    Meaning{error_number::notSameDevice, "sur un autre disque"},
    Meaning{error_number::writeProtect, "disque protégé en écriture"},
    Meaning{error_number::notReady, "lecteur vide ou débranché"},
    Meaning{error_number::generalFailure, "panne du périphérique"},
    Meaning{error_number::sharingViolation, "fichier utilisé par un autre programme"},
    Meaning{error_number::lockViolation, "fichier verrouillé par un autre programme"},
    Meaning{error_number::handleEof, "fichier raccourci pendant sa lecture"},
    Meaning{error_number::notSupported, "opération que ce disque ne connaît pas"},
    Meaning{error_number::deviceDoesNotExist, "disque absent"},
    Meaning{error_number::networkNameDeleted, "connexion au réseau perdue"},
    Meaning{error_number::invalidParameter, "refusé par prudence, voir le journal"},
    Meaning{error_number::diskFull, "disque plein"},
    Meaning{error_number::timedOut, "le disque ou le serveur ne répond pas à temps"},
    Meaning{error_number::invalidName, "nom que ce disque refuse"},
    Meaning{error_number::directoryNotEmpty, "répertoire non vide"},
    Meaning{error_number::alreadyExists, "nom déjà pris"},
    Meaning{error_number::nameTooLong, "nom trop long"},
    Meaning{error_number::fileTooLarge, "fichier trop grand pour ce disque"},
    Meaning{error_number::notADirectory, "un fichier ou un lien tient la place du répertoire"},
    Meaning{error_number::operationAborted, "opération interrompue par le système"},
    Meaning{error_number::ioDevice, "erreur de lecture ou d'écriture du disque"},
    Meaning{error_number::connectionRefused, "connexion refusée par le serveur"},
    Meaning{error_number::networkUnreachable, "réseau injoignable"},
    Meaning{error_number::hostUnreachable, "serveur injoignable"},
    Meaning{error_number::requestAborted, "interrompu"},
    Meaning{error_number::cannotResolveName, "lien qui ne mène nulle part"},
};

}  // namespace

std::string errorMeaning(std::uint32_t number) {
    const auto* const found =
        std::find_if(meanings.begin(), meanings.end(),
                     [number](const Meaning& meaning) { return meaning.number == number; });
    return found == meanings.end() ? std::string() : found->words;
}

std::string meaningOfErrorLine(std::string_view line) {
    constexpr std::string_view before = "Erreur: ";
    constexpr std::string_view after = " - Fichier: ";
    if (!line.starts_with(before)) return {};
    line.remove_prefix(before.size());
    const std::string number(line.substr(0, line.find(after)));
    const std::int32_t value = leadingNumber(number);
    if (number.size() == line.size() || value <= 0 || std::to_string(value) != number) return {};
    return errorMeaning(static_cast<std::uint32_t>(value));
}

VisuErrFrm::VisuErrFrm(SystemMod& system)
    : search(system, ListeTxt, "Liste des erreurs.txt"), system_(system) {
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
