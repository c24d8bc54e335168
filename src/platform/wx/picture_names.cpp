#include "platform/wx/picture_names.h"

#include <map>

namespace coffrelune {

std::string spokenPicture(const std::string& image) {
    static const std::map<std::string, std::string> names = {
        {"ligne-selectionnee", "Ligne sélectionnée"},
        {"ligne-non-selectionnee", "Ligne non sélectionnée"},
        {"ligne-terminee", "Ligne terminée"},
        {"resultat-ok", "Réussite"},
        {"resultat-erreur", "Échec"},
        {"resultat-nombre", "Nombre"},
        {"lecteur", "Lecteur"},
        {"coffrelune", "Coffrelune"},
        {"attention", "Attention"},
        {"sens-sauvegarde", "Sauvegarde"},
        {"sens-restauration", "Restauration"},
        {"sens-comparaison", "Comparaison"},
        {"sens-sauvegarde-erreur", "Sauvegarde avec erreur"},
        {"sens-restauration-erreur", "Restauration avec erreur"},
    };
    const auto found = names.find(image);
    return found == names.end() ? std::string() : found->second;
}

}  // namespace coffrelune
