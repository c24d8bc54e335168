#pragma once

#include "operation/copie.h"
#include "views/wx/dialog_view.h"

namespace coffrelune {

/// The operation window: what is copied where, how far it has come, and its journal.
class CopieView final : public DialogView {
  public:
    CopieView(wxWindow* parent, ViewContext& context, Copie& form);

  private:
    wxSizer* makePictures();
    wxSizer* makeProgress();

    Copie& form_;
};

}  // namespace coffrelune
