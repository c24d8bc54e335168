#pragma once

#include <string>
#include <vector>

#include "platform/commands.h"
#include "platform/desktop_services.h"
#include "platform/input_controls.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// The program's identity, and the choice to start it with the system. `SystemMod::AutoStart` must
/// have been read before.
class frmAbout final : public Window {
  public:
    frmAbout(SystemMod& system, Desktop& desktop);

    Picture picIcon;
    Label TitleLbl;
    Label VersionLbl;
    Label CommentLbl;
    Frame NoticeFrame{"Avertissement:"};
    Label NoticeLbl;
    LinkLabel WebLbl;
    CheckBox AutoCheck{"&Lancement automatique au démarrage de Windows"};
    Button cmdOK{"OK"};

    /// However the box closes, the choice is carried out.
    void closeBox() override;
    std::vector<Button*> buttons() override { return {&cmdOK}; }
    std::vector<Label*> labels() override;
    Button* defaultButton() override { return &cmdOK; }
    Button* cancelButton() override { return &cmdOK; }

  private:
    void applyAutoStart();

    SystemMod& system_;
    Desktop& desktop_;
};

}  // namespace coffrelune
