#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/controls.h"
#include "platform/input_controls.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// What the small dialogs share: one text, OK, "&Annuler", and a button that empties the text.
class TextDialog : public Window {
  public:
    enum CmdIndex : std::size_t { okCmd, cancelCmd, clearCmd, cmdCount };

    TextBox Txt;
    std::array<Button, cmdCount> Cmd;

    std::vector<Button*> buttons() override { return {&Cmd[0], &Cmd[1], &Cmd[2]}; }
    Button* defaultButton() override { return &Cmd[okCmd]; }
    Button* cancelButton() override { return &Cmd[cancelCmd]; }

  protected:
    /// `name` says what the text is.
    TextDialog(std::string caption, std::string name);

    /// OK was pressed; the dialog closes afterwards.
    virtual void accept() = 0;
};

/// Asks for the name of a configuration, a new one unless the title says otherwise.
/// `SystemMod::dialogText` holds it afterwards in ProperCase; empty when the dialog was cancelled
/// or the name is reserved.
class ConfigNameForm final : public TextDialog {
  public:
    explicit ConfigNameForm(SystemMod& system, std::string title = "Nouvelle configuration",
                            std::string proposed = {});

    Label Lbl;
    std::vector<Label*> labels() override { return {&Lbl}; }

  private:
    void accept() override;

    SystemMod& system_;
};

/// Edits the description of the current configuration, in the shared state and in the settings.
class DescriptionForm final : public TextDialog {
  public:
    explicit DescriptionForm(SystemMod& system);

  private:
    void accept() override;

    SystemMod& system_;
};

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
