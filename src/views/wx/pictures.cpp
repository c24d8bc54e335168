#include "views/wx/pictures.h"

#include "views/wx/desktop.h"

namespace coffrelune {

const wxBitmapBundle& Pictures::find(const std::string& name, int size) {
    const auto key = std::make_pair(name, size);
    const auto found = known_.find(key);
    if (found != known_.end()) return found->second;
    const std::string svg(iconSvg(name));
    wxBitmapBundle drawn = svg.empty() ? systemPicture(name)
                                       : wxBitmapBundle::FromSVG(svg.c_str(), wxSize(size, size));
    return known_.emplace(key, std::move(drawn)).first->second;
}

const wxBitmapBundle& Pictures::findFaint(const std::string& name, int size) {
    const auto key = std::make_pair(name, size);
    const auto found = faint_.find(key);
    if (found != faint_.end()) return found->second;
    std::string svg(iconSvg(name));
    const auto start = svg.find("<svg");
    const auto content = start == std::string::npos ? start : svg.find('>', start);
    const auto end = svg.rfind("</svg>");
    if (content == std::string::npos || end == std::string::npos) return find(name, size);
    svg.insert(end, "</g>");
    svg.insert(content + 1, R"(<g opacity="0.35">)");
    return faint_.emplace(key, wxBitmapBundle::FromSVG(svg.c_str(), wxSize(size, size)))
        .first->second;
}

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
