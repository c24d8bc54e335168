#pragma once

#include "dialogs/frm_about.h"
#include "platform/wx/dialog_view.h"

namespace coffrelune {

class AboutView final : public DialogView {
  public:
    AboutView(wxWindow* parent, ViewContext& context, frmAbout& form);
};

}  // namespace coffrelune
