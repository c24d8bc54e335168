#pragma once

#include "dialogs/text_dialog.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// Lets the user type a line's directory. Takes `SystemMod::dialogText`: "1" for the source or
/// anything else for the destination, then the current path. Leaves there what was typed, exactly;
/// "@" when the dialog was cancelled.
class LineForm final : public TextDialog {
  public:
    static constexpr const char* cancelled = "@";

    explicit LineForm(SystemMod& system);

  private:
    void accept() override;

    SystemMod& system_;
};

}  // namespace coffrelune
