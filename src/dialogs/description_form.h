#pragma once

#include "dialogs/text_dialog.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// Edits the description of the current configuration, in the shared state and in the settings.
class DescriptionForm final : public TextDialog {
  public:
    explicit DescriptionForm(SystemMod& system);

  private:
    void accept() override;

    SystemMod& system_;
};

}  // namespace coffrelune
