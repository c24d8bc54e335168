#pragma once

#include <wx/toplevel.h>

namespace coffrelune {

/// Leaves no window without a focus: a control that is disabled or hidden while it has the focus
/// hands it to the next one in the order of the tabulations, and gets it back when it is enabled
/// again and the user has not gone elsewhere.
class FocusKeeper {
  public:
    explicit FocusKeeper(wxTopLevelWindow& window);
    FocusKeeper(const FocusKeeper&) = delete;
    FocusKeeper& operator=(const FocusKeeper&) = delete;

    /// To be called when controls may have changed.
    void keep();

  private:
    void handOn();
    bool handBack();

    wxTopLevelWindow& window_;
    wxWindowRef last_;      // had the focus last
    wxWindowRef home_;      // where it belongs, while that is disabled
    wxWindowRef handedTo_;  // who has it meanwhile
};

}  // namespace coffrelune
