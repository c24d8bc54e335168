#include "mainwindow/configuration_panel.h"

#include "dialogs/config_form.h"
#include "dialogs/text_dialogs.h"

namespace coffrelune {

ConfigurationPanel::ConfigurationPanel(SystemMod& system, MainDialogs& dialogs, LineRows& rows)
    : system_(system), dialogs_(dialogs), rows_(rows) {}

void ConfigurationPanel::showName() {
    std::string caption = system_.configurationName;
    if (!system_.description.empty()) caption += " (" + system_.description + ")";
    ConfigLbl.setCaption(std::move(caption));
}

void ConfigurationPanel::choose() {
    ConfigForm form(system_);
    dialogs_.show(form);
    // Without a name every later setting would have nowhere to go.
    const std::string chosen = system_.selectedConfiguration.empty()
                                   ? system_.configurationName
                                   : system_.selectedConfiguration;
    const bool otherCount = system_.pendingMaximumIndex != system_.maximumIndex;
    if (chosen == system_.configurationName && !otherCount) return;
    system_.configurationName = chosen;
    if (otherCount) rows_.SetRowCount(system_.pendingMaximumIndex);
    // Also for the number alone: lines that it left out until now have stored paths.
    system_.LoadConfiguration();
    if (onLoaded) onLoaded();
}

void ConfigurationPanel::describe() {
    DescriptionForm form(system_);
    dialogs_.show(form);
    showName();
}

}  // namespace coffrelune
