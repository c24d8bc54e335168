#pragma once

#include "dialogs/text_dialog.h"
#include "platform/wx/dialog_view.h"

namespace coffrelune {

class TextDialogView final : public DialogView {
  public:
    TextDialogView(wxWindow* parent, ViewContext& context, TextDialog& form);
};

}  // namespace coffrelune
