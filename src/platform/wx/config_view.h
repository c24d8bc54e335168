#pragma once

#include "dialogs/config_form.h"
#include "platform/wx/dialog_view.h"

namespace coffrelune {

class ConfigView final : public DialogView {
  public:
    ConfigView(wxWindow* parent, ViewContext& context, ConfigForm& form);

  private:
    wxSizer* makeConfigurations();
    wxSizer* makeOptions();
    wxSizer* makeSounds(wxWindow* frame);

    ConfigForm& form_;
};

}  // namespace coffrelune
