// What the engine shows and asks through the operation window.
#include "operation/copie.h"
#include "operation/frm_confirm.h"
#include "system/display_text.h"

namespace coffrelune {

void Copie::showSource(const std::string& path) {
    Lbl[1].setCaption("De: " + visibleControls(path));
}

void Copie::showDestination(const std::string& path) {
    Lbl[3].setCaption("Vers: " + visibleControls(path));
}

void Copie::showFile(const std::string& path) {
    Lbl[4].setCaption(visibleControls(path));
}

void Copie::showPercentage(int percent, const std::string& caption) {
    ProgBar.setValue(percent);
    Lbl[0].setCaption(caption);
}

void Copie::showRemainingTime(const std::string& caption) {
    Lbl[2].setCaption(caption);
}

void Copie::showRate(const std::string& caption) {
    Lbl[5].setCaption(caption);
}

void Copie::showCount(const std::string& caption) {
    Lbl[3].setCaption(caption);
}

void Copie::addToComparison(const std::string& line) {
    host_.comparisonList().append(visibleControls(line));
}

void Copie::AjouteECTxt(const std::string& text) {
    ECTxt.append(visibleControls(text));
    runPendingEvents();
}

void Copie::MajErreurImg() {
    const auto kind = static_cast<std::size_t>(system_.operationKind);
    if (kind >= ImgAtt.size()) return;  // a comparison has no picture with an error mark
    ImgSens[0].setImage(ImgSens[kind + 4].image());
    ImgAtt[kind].setVisible(true);
}

void Copie::showCritical(const std::string& text) {
    const std::string line = visibleControls(text);
    if (statistics_.unattended) {
        AjouteECTxt(line);
        system_.platform.windows.notice(line);
    } else {
        (void)system_.platform.windows.showMessage({line, caption(), MessageIcon::critical});
    }
}

int Copie::DemandeRemplacement(const std::string& fileName) {
    frmConfirm question(visibleControls(fileName));
    system_.platform.windows.showModal(question);
    runPendingEvents();
    return question.answer();
}

void Copie::runPendingEvents() {
    system_.platform.windows.runPendingEvents();
}

}  // namespace coffrelune
