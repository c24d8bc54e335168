#include "operation/error_causes.h"

#include "platform/status.h"
#include "system/text.h"

namespace coffrelune {

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

}  // namespace coffrelune
