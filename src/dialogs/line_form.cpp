#include "dialogs/line_form.h"

namespace coffrelune {
namespace {

const char* captionFor(const std::string& request) {
    const bool source = !request.empty() && request.front() == '1';
    return source ? "Répertoire source" : "Répertoire destination";
}

}  // namespace

LineForm::LineForm(SystemMod& system)
    : TextDialog(captionFor(system.dialogText), "Répertoire"), system_(system) {
    if (!system.dialogText.empty()) Txt.setText(system.dialogText.substr(1));
    system_.dialogText = cancelled;
}

void LineForm::accept() {
    system_.dialogText = Txt.text();
}

}  // namespace coffrelune
