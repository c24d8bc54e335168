#pragma once

#include <array>

#include "platform/controls.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// Three short steps to a first backup, there as long as no line is filled.
class FirstSteps {
  public:
    explicit FirstSteps(SystemMod& system);

    Label TitleLbl{"Première sauvegarde :"};
    std::array<Label, 3> Lbl;

    /// To be called when the lines or the tab have changed.
    void show();

  private:
    SystemMod& system_;
};

}  // namespace coffrelune
