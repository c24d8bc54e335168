#pragma once

#include "dialogs/drive_list_frm.h"
#include "platform/wx/dialog_view.h"

namespace coffrelune {

class DriveListView final : public DialogView {
  public:
    DriveListView(wxWindow* parent, ViewContext& context, DriveListFrm& form);
};

}  // namespace coffrelune
