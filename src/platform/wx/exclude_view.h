#pragma once

#include "dialogs/exclude_form.h"
#include "platform/wx/dialog_view.h"

namespace coffrelune {

class ExcludeView final : public DialogView {
  public:
    ExcludeView(wxWindow* parent, ViewContext& context, ExcludeForm& form);

  private:
    wxSizer* makeSource();
    wxSizer* makeModes();
    wxSizer* makeExcluded();

    ExcludeForm& form_;
    wxWindow* firstFocus_ = nullptr;
};

}  // namespace coffrelune
