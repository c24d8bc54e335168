#include "views/wx/focus.h"

#include <algorithm>
#include <vector>

namespace coffrelune {
namespace {

bool usable(const wxWindow& widget) {
    return widget.IsEnabled() && widget.IsShownOnScreen();
}

// Everything below a window, in the order of the tabulations.
void collect(const wxWindow& window, std::vector<wxWindow*>& found) {
    for (wxWindow* child : window.GetChildren()) {
        if (child->IsTopLevel()) continue;
        found.push_back(child);
        collect(*child, found);
    }
}

wxWindow* nextUsable(const wxWindow& window, const wxWindow* from) {
    std::vector<wxWindow*> widgets;
    collect(window, widgets);
    const auto place = std::find(widgets.begin(), widgets.end(), from);
    if (place != widgets.end()) std::rotate(widgets.begin(), place + 1, widgets.end());
    const auto next = std::find_if(widgets.begin(), widgets.end(), [](const wxWindow* widget) {
        return usable(*widget) && widget->AcceptsFocusFromKeyboard();
    });
    return next == widgets.end() ? nullptr : *next;
}

}  // namespace

FocusKeeper::FocusKeeper(wxTopLevelWindow& window) : window_(window) {
    window.Bind(wxEVT_CHILD_FOCUS, [this](wxChildFocusEvent& event) {
        event.Skip();
        wxWindow* focused = wxWindow::FindFocus();
        if (focused != nullptr && window_.IsDescendant(focused)) last_ = focused;
    });
    // A control may have been disabled while another window was in front.
    window.Bind(wxEVT_ACTIVATE, [this](wxActivateEvent& event) {
        event.Skip();
        if (event.GetActive()) window_.CallAfter([this] { keep(); });
    });
}

void FocusKeeper::keep() {
    if (!window_.IsActive() || handBack()) return;
    if (last_ == nullptr || usable(*last_)) return;
    const wxWindow* focused = wxWindow::FindFocus();
    if (focused == nullptr || focused == last_ || !usable(*focused)) handOn();
}

void FocusKeeper::handOn() {
    // What has been hidden is done with.
    home_ = last_->IsShownOnScreen() ? last_.get() : nullptr;
    handedTo_ = nextUsable(window_, last_);
    if (handedTo_ != nullptr) handedTo_->SetFocus();
}

bool FocusKeeper::handBack() {
    if (home_ == nullptr || !usable(*home_)) return false;
    const wxWindow* focused = wxWindow::FindFocus();
    const bool waited = focused == nullptr || focused == handedTo_;
    if (waited) home_->SetFocus();
    home_ = nullptr;
    return waited;
}

}  // namespace coffrelune
