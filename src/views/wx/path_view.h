#pragma once

#include <wx/textctrl.h>
#include <wx/window.h>

#include "platform/commands.h"
#include "views/wx/peer.h"

namespace coffrelune {

/// The native side of a PathLabel: one line in a field's colours, of which the toolkit has nothing
/// alike. It takes the focus, so that what the mouse does with a label the keyboard does too: the
/// menu key and Enter open the menu; copy and paste do what dragging does. One that is editable is
/// edited in its place by typing, F2 or a double click.
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
    void beginEdit(const wxString& text, bool select);
    void endEdit(bool keep);
    void leaveEdit();

    PathLabel& label_;
    std::string name_;
    wxString caption_;
    wxPoint pressedAt_;
    wxTextCtrl* editor_ = nullptr;  // while the path is edited
};

/// `name` says which path it is ("Source 1").
PathView* makePath(Peers& peers, wxWindow* parent, PathLabel& label, const std::string& name);

}  // namespace coffrelune
