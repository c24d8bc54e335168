#include "dialogs/description_form.h"

#include "system/text.h"

namespace coffrelune {

DescriptionForm::DescriptionForm(SystemMod& system)
    : TextDialog("Configuration : " + system.configurationName, "Description"), system_(system) {
    Txt.setText(system.description);
}

void DescriptionForm::accept() {
    system_.description = Txt.text();
    (void)system_.WriteSetting(system_.configurationName, "Description",
                               QuoteValue(system_.description));
}

}  // namespace coffrelune
