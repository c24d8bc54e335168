// The window itself: how it opens, its button, how it closes.
#include "operation/copie.h"

#include "operation/error_list.h"

namespace coffrelune {
namespace {

constexpr std::array<const char*, 3> captions = {"Sauvegarde ...", "Restauration ...",
                                                 "Comparaison ..."};
constexpr std::array<const char*, 3> words = {"sauvegarde", "restauration", "comparaison"};
constexpr std::array<const char*, 6> directionImages = {"",
                                                        "sens-sauvegarde",
                                                        "sens-restauration",
                                                        "sens-comparaison",
                                                        "sens-sauvegarde-erreur",
                                                        "sens-restauration-erreur"};

}  // namespace

Copie::Copie(SystemMod& system, RunStatistics& statistics, OperationHost& host)
    : system_(system), statistics_(statistics), host_(host), engine_(system, statistics, *this) {
    Cmd.onClick = [this] { press(); };
    AnalyseChk.onClick = [this] { system_.SuiviAnalyse = AnalyseChk.checked() ? -1 : 0; };
    load();
}

void Copie::load() {
    const auto kind = static_cast<std::size_t>(system_.operationKind);
    AnalyseChk.setChecked(system_.SuiviAnalyse != 0);
    AnalyseChk.setVisible(false);
    ImgSrc.setImage("lecteur");
    ImgDest.setImage("lecteur");
    for (std::size_t i = 1; i < ImgSens.size(); ++i) {
        ImgSens[i].setImage(directionImages[i]);
        ImgSens[i].setVisible(false);
    }
    ImgSens[0].setImage(directionImages[kind + 1]);
    for (Picture& mark : ImgAtt) {
        mark.setImage("attention");
        mark.setVisible(false);
    }
    setCaption(captions[kind]);
    ProgBar.setValue(0);
    AjouteECTxt("Début de la " + caption());
    startTime_ = system_.platform.clock.now();
}

void Copie::activated() {
    if (activated_) return;
    activated_ = true;
    // Before the first events run, so that a stop requested among them counts.
    statistics_.interruptionRequested = false;
    runPendingEvents();
    if (system_.operationKind == OperationKind::comparison) {
        LanceComparaison();
    } else {
        LanceCopie();
    }
}

void Copie::press() {
    if (finished_) {
        unload();
        return;
    }
    const std::string word = words[static_cast<std::size_t>(system_.operationKind)];
    const Answer answer = system_.platform.windows.showMessage(
        {"Voulez-vous interrompre la " + word + " ?", caption(), MessageIcon::question,
         MessageButtons::yesNo});
    if (answer == Answer::yes) requestInterruption();
}

void Copie::requestInterruption() {
    if (finished_) return;
    Cmd.setEnabled(false);
    statistics_.interruptionRequested = true;
}

void Copie::unload() {
    // Neither outcome stops the run: it is over, and its result is still to be told.
    (void)system_.WriteSetting("Position", "SuiviAnalyse", std::to_string(system_.SuiviAnalyse));
    if (statistics_.errorCount > 0) {
        const Status written = EcritErreurs(system_, ECTxt.text());
        if (!written.ok()) {
            system_.platform.windows.notice("La liste des erreurs n'a pas pu être écrite dans " +
                                            written.path() + " (erreur " +
                                            std::to_string(written.code()) + ").");
        }
    }
    close();
}

}  // namespace coffrelune
