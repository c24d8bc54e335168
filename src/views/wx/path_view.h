#pragma once

#include <wx/window.h>

#include "platform/commands.h"
#include "views/wx/peer.h"

namespace coffrelune {

/// The native side of a PathLabel: one line in a field's colours, of which the toolkit has nothing
/// alike. It takes the focus, so that what the mouse does with a label the keyboard does too: the
/// menu key, Enter and F2 open the menu; copy and paste do what dragging does.
class PathView final : public wxWindow {
  public:
    PathView(wxWindow* parent, PathLabel& label, const std::string& name);

    /// The text to draw; `full` is what readers are told.
    void display(const std::string& caption, const std::string& full);

    bool AcceptsFocus() const override { return IsShown() && IsEnabled(); }
    bool AcceptsFocusFromKeyboard() const override { return AcceptsFocus(); }

  private:
    wxSize DoGetBestClientSize() const override;
    void bindMouse();
    void bindKeys();
    void paint();
    void startDrag();
    void copy() const;
    void paste();

    PathLabel& label_;
    std::string name_;
    wxString caption_;
    wxPoint pressedAt_;
};

/// `name` says which path it is ("Source 1").
PathView* makePath(Peers& peers, wxWindow* parent, PathLabel& label, const std::string& name);

}  // namespace coffrelune
