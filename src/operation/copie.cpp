#include "operation/copie.h"

#include "operation/needed_space.h"
#include "system/text.h"

namespace coffrelune {

frmConfirm::frmConfirm(const Replacement& replacement)
    : Cmd{Button("&Oui"), Button("&Tous"), Button("&Non"), Button("Annuler")},
      Lbl{Label("Ce dossier contient déjà un fichier appelé '"),
          Label("Etes-vous sûr de vouloir remplacer ce fichier ?")} {
    setCaption("Confirmation du remplacement du fichier");
    Lbl[0].setCaption(Lbl[0].caption() + visibleControls(replacement.fileName) + "'");
    for (std::size_t i = 0; i < Facts.size(); ++i) {
        Facts.at(i).setCaption(visibleControls(replacement.facts.at(i)));
    }
    Image1.setImage("attention");
    for (std::size_t i = 0; i < Cmd.size(); ++i) {
        Cmd[i].onClick = [this, i] {
            answer_ = static_cast<ReplacementAnswer>(i);
            close();
        };
    }
}

std::vector<Button*> frmConfirm::buttons() {
    return {&Cmd[0], &Cmd[1], &Cmd[2], &Cmd[3]};
}

std::vector<Label*> frmConfirm::labels() {
    return {&Lbl[0], &Facts[0], &Facts[1], &Facts[2], &Lbl[1]};
}

void WindowStage::show(Operation& operation, OperationHost& host) {
    Copie window(system_, operation, host);
    system_.platform.windows.showModal(window);
}

Copie::Copie(SystemMod& system, Operation& operation, OperationHost& host)
    : system_(system), operation_(operation), host_(host) {
    Cmd.onClick = [this] { press(); };
    AnalyseChk.onClick = [this] { system_.SuiviAnalyse = AnalyseChk.checked() ? -1 : 0; };
    AnalyseChk.setChecked(system_.SuiviAnalyse != 0);
    AnalyseChk.setVisible(false);
    ImgSrc.setImage("lecteur");
    ImgDest.setImage("lecteur");
    showDirection(false);
    for (Picture& mark : ImgAtt) {
        mark.setImage("attention");
        mark.setVisible(false);
    }
    setCaption(operationCaption(system_));
    ProgBar.setSpokenName("Progression");
    ProgBar.setValue(0);
    operation_.begin(*this);
}

// A comparison has no picture with an error mark.
void Copie::showDirection(bool withErrors) {
    switch (system_.operationKind) {
        case OperationKind::backup:
            ImgSens.setImage(withErrors ? "sens-sauvegarde-erreur" : "sens-sauvegarde");
            break;
        case OperationKind::restore:
            ImgSens.setImage(withErrors ? "sens-restauration-erreur" : "sens-restauration");
            break;
        case OperationKind::comparison:
            ImgSens.setImage("sens-comparaison");
            break;
    }
}

void Copie::activated() {
    if (activated_) return;
    activated_ = true;
    operation_.run(*this);
    if (!operation_.waitsForUser()) {
        unload();
        return;
    }
    Lbl[remainingTimeLabel].setCaption("");
    Cmd.setCaption("Fermer");
    Cmd.setEnabled(true);
}

void Copie::press() {
    if (finished()) {
        unload();
        return;
    }
    const std::string word = wordsOf(system_.operationKind).word;
    const Answer answer = system_.platform.windows.showMessage(
        {"Voulez-vous interrompre la " + word + " ?", caption(), MessageIcon::question,
         MessageButtons::yesNo});
    if (answer == Answer::yes) requestInterruption();
}

void Copie::requestInterruption() {
    if (finished()) return;
    Cmd.setEnabled(false);
    stopping_ = true;
    // The file in progress is copied to its end.
    Lbl[remainingTimeLabel].setCaption("Arrêt demandé…");
    operation_.requestInterruption();
}

void Copie::unload() {
    operation_.end(ECTxt.text());
    close();
}

void Copie::showPhase(const std::string& phase, const std::string& detail) {
    ProgBar.setIndeterminate(true);
    Lbl[phaseLabel].setCaption(phase);
    Lbl[detailLabel].setCaption(detail);
}

void Copie::showCopyPhase(const std::string& remainingTime) {
    ProgBar.setIndeterminate(false);
    ProgBar.setValue(0);
    AnalyseChk.setVisible(false);
    if (!stopping_) Lbl[remainingTimeLabel].setCaption(remainingTime);
    Lbl[fileLabel].setCaption("");
    const auto free = [this](const std::string& drive) { return host_.freeSpace(drive); };
    for (const std::string& text : lackingSpace(system_, operation_.statistics(), free)) {
        AjouteECTxt(text);
        system_.platform.windows.notice(text);
    }
}

void Copie::showComparisonPhase(const std::string& phase) {
    ProgBar.setIndeterminate(true);
    Lbl[percentageLabel].setCaption("");
    Lbl[phaseLabel].setCaption(phase);
    Lbl[remainingTimeLabel].setCaption("");
    Lbl[rateLabel].setCaption("");
    host_.comparisonList().clear();
    host_.comparisonSummary().setCaption("");
}

void Copie::showSource(const std::string& path) {
    Lbl[phaseLabel].setCaption("De: " + visibleControls(path));
}

void Copie::showDestination(const std::string& path) {
    Lbl[detailLabel].setCaption("Vers: " + visibleControls(path));
}

void Copie::showFile(const std::string& path) {
    Lbl[fileLabel].setCaption(visibleControls(path));
}

void Copie::showPercentage(int percent, const std::string& caption) {
    constexpr int whole = 100;
    ProgBar.setValue(percent);
    // No time remains that could still be counted.
    if (percent == whole) showRemainingTime("");
    Lbl[percentageLabel].setCaption(caption);
}

void Copie::showRemainingTime(const std::string& caption) {
    if (!stopping_) Lbl[remainingTimeLabel].setCaption(caption);
}

void Copie::showRate(const std::string& caption) {
    Lbl[rateLabel].setCaption(caption);
}

void Copie::showCount(const std::string& caption) {
    Lbl[detailLabel].setCaption(caption);
}

void Copie::addToComparison(const std::string& line) {
    host_.comparisonList().append(visibleControls(line));
}

void Copie::showComparisonSummary(const std::string& summary) {
    host_.comparisonSummary().setCaption(summary);
}

void Copie::AjouteECTxt(const std::string& text) {
    ECTxt.append(visibleControls(text));
    runPendingEvents();
}

void Copie::MajErreurImg() {
    const auto kind = static_cast<std::size_t>(system_.operationKind);
    if (kind >= ImgAtt.size()) return;
    showDirection(true);
    ImgAtt[kind].setVisible(true);
}

void Copie::showCritical(const std::string& text) {
    const std::string line = visibleControls(text);
    if (operation_.unattended()) {
        AjouteECTxt(line);
        system_.platform.windows.notice(line);
    } else {
        (void)system_.platform.windows.showMessage({line, caption(), MessageIcon::critical});
    }
}

ReplacementAnswer Copie::DemandeRemplacement(const Replacement& replacement) {
    frmConfirm question(replacement);
    system_.platform.windows.showModal(question);
    runPendingEvents();
    return question.answer();
}

void Copie::runPendingEvents() {
    system_.platform.windows.runPendingEvents();
}

}  // namespace coffrelune
