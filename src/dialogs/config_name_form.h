#pragma once

#include "dialogs/text_dialog.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// Asks for the name of a new configuration. `SystemMod::dialogText` holds it afterwards in
/// ProperCase; empty when the dialog was cancelled or the name is reserved.
class ConfigNameForm final : public TextDialog {
  public:
    explicit ConfigNameForm(SystemMod& system);

    Label Lbl;
    std::vector<Label*> labels() override { return {&Lbl}; }

  private:
    void accept() override;

    SystemMod& system_;
};

}  // namespace coffrelune
