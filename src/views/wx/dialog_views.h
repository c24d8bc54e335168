#pragma once

#include <memory>

#include "views/wx/dialog_view.h"

namespace coffrelune {

/// The view of a dialog of the program; null for a window that has none.
std::unique_ptr<DialogView> makeDialogView(wxWindow* parent, ViewContext& context, Window& window);

}  // namespace coffrelune
