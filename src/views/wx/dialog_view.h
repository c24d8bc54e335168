#pragma once

#include <wx/dialog.h>

#include "views/wx/focus.h"
#include "views/wx/peer.h"

namespace coffrelune {

/// The native side of a modal window: raises the window's events, and ends when the window has
/// closed itself. A deriving class makes the widgets and ends its constructor with arrange().
class DialogView : public wxDialog {
  public:
    DialogView(const DialogView&) = delete;
    DialogView& operator=(const DialogView&) = delete;
    ~DialogView() override;

    /// Returns when the window has closed.
    void run();

  protected:
    /// `resizable` windows can also be maximised.
    DialogView(wxWindow* parent, ViewContext& context, Window& model, bool resizable);

    /// Puts the contents into place, and the window over its parent. `defaultButton` is pressed by
    /// Enter; null for none.
    void arrange(wxSizer* contents, wxButton* defaultButton);

    /// A row of buttons at the right edge, as wide as the widest.
    static wxSizer* buttonRow(const std::vector<wxButton*>& buttons);
    /// Space around groups of controls, and between controls, in pixels of this window.
    int wide() const;
    int narrow() const;

    Peers peers;

  private:
    void bindEvents();
    void pressEscape();
    void endWhenClosed();

    Window& model_;
    FocusKeeper focus_{*this};
};

}  // namespace coffrelune
