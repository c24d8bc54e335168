// What a volume has made of the times of the files of a line, in words for the user.
#include "engine/copie_mod.h"
#include "system/paths.h"

namespace coffrelune {

// Once per run and volume. Where nothing is compared, or a later copy is kept, to round does not
// make files be copied again.
void CopieMod::tellTimes(KeptTimes kept) {
    const CopyOptions& options = run_.system.options;
    const bool rounded = kept == KeptTimes::rounded && options.DatesArrondies == 0;
    if (!trees_->backsUp() || !decision_.compare || decision_.newerOnly) return;
    if (!rounded && kept != KeptTimes::lost) return;
    const std::string& volume = trees_->writtenVolume();
    if (!toldVolumes_.insert(volume.empty() ? volumeOf(roots().target) : volume).second) return;
    const std::string again = " : tous les fichiers y sont recopiés à chaque sauvegarde.";
    std::string reason = "Le volume de " + roots().target;
    if (rounded) {
        reason +=
            " arrondit les dates" + again +
            " Pour n'y copier que les fichiers modifiés, acceptez les dates arrondies (bouton "
            "« Accepter les dates arrondies », ou --dates-arrondies).";
    } else {
        reason += " ne garde pas les dates" + again +
                  " Avec l'option « Copie seulement les fichiers plus récents », seuls les "
                  "fichiers modifiés depuis leur copie le sont.";
    }
    statistics_.roundsDates |= rounded;
    statistics_.dateReasons.push_back(reason);
    display_.AjouteECTxt(reason);
}

}  // namespace coffrelune
