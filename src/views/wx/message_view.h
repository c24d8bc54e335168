#pragma once

#include <wx/dialog.h>

#include "platform/services.h"

class wxButton;

namespace coffrelune {

class Pictures;

/// A message box: picture, text, one or two buttons. The desktop's own have lost their picture,
/// which says how serious a message is, and speak the desktop's language, not the program's.
class MessageView final : public wxDialog {
  public:
    MessageView(wxWindow* parent, Pictures& pictures, const MessageBoxText& message);

    /// What was pressed; Escape and the close box refuse, or acknowledge where there is one button.
    Answer ask();

  private:
    wxSizer* makeText(Pictures& pictures, const MessageBoxText& message);
    wxSizer* makeButtons(const MessageBoxText& message);
    wxButton* addButton(wxSizer& row, const char* caption, Answer answer);

    Answer answer_;
};

}  // namespace coffrelune
