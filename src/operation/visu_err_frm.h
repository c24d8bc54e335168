#pragma once

#include <array>
#include <vector>

#include "platform/controls.h"
#include "platform/long_lists.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// Shows the error list of the current configuration for the current operation kind.
class VisuErrFrm final : public Window {
  public:
    explicit VisuErrFrm(SystemMod& system);

    std::array<Label, 2> Lbl;  // 0 configuration and kind, 1 count
    TextLog ListeTxt;
    Button Cmd{"&Fermer"};

    std::vector<Button*> buttons() override { return {&Cmd}; }
    std::vector<Label*> labels() override { return {&Lbl[0], &Lbl[1]}; }

  private:
    void LitErreurs();

    SystemMod& system_;
};

}  // namespace coffrelune
