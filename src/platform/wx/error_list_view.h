#pragma once

#include "operation/visu_err_frm.h"
#include "platform/wx/dialog_view.h"

namespace coffrelune {

class ErrorListView final : public DialogView {
  public:
    ErrorListView(wxWindow* parent, ViewContext& context, VisuErrFrm& form);
};

}  // namespace coffrelune
