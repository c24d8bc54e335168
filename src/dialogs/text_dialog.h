#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/controls.h"
#include "platform/input_controls.h"

namespace coffrelune {

/// What the small dialogs share: one text, OK, "&Annuler", and a button that empties the text.
class TextDialog : public Window {
  public:
    TextBox Txt;
    std::array<Button, 3> Cmd;  // 0 OK, 1 "&Annuler", 2 clear

    std::vector<Button*> buttons() override { return {&Cmd[0], &Cmd[1], &Cmd[2]}; }
    Button* defaultButton() override { return &Cmd[0]; }
    Button* cancelButton() override { return &Cmd[1]; }

  protected:
    /// `name` says what the text is.
    TextDialog(std::string caption, std::string name);

    /// OK was pressed; the dialog closes afterwards.
    virtual void accept() = 0;
};

}  // namespace coffrelune
