#pragma once

#include <array>
#include <string>
#include <vector>

#include "engine/run_display.h"
#include "platform/controls.h"

namespace coffrelune {

/// Asks whether an existing file may be replaced. A fresh one is made for each question.
class frmConfirm final : public Window {
  public:
    explicit frmConfirm(const std::string& fileName);

    std::array<Button, 4> Cmd;  // by answer: "&Oui", "&Tous", "&Non", "Annuler"
    std::array<Label, 2> Lbl;   // upper, lower
    Picture Image1;

    /// That of the pressed button; `cancel` when the window was closed without one, since a
    /// question that nobody answered grants nothing.
    ReplacementAnswer answer() const { return answer_; }

    std::vector<Button*> buttons() override;
    std::vector<Label*> labels() override { return {&Lbl[0], &Lbl[1]}; }

  private:
    ReplacementAnswer answer_ = ReplacementAnswer::cancel;
};

}  // namespace coffrelune
