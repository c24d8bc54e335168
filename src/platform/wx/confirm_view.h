#pragma once

#include "operation/frm_confirm.h"
#include "platform/wx/dialog_view.h"

namespace coffrelune {

class ConfirmView final : public DialogView {
  public:
    ConfirmView(wxWindow* parent, ViewContext& context, frmConfirm& form);
};

}  // namespace coffrelune
