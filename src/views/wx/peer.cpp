#include "views/wx/peer.h"

#include "views/wx/text.h"

namespace coffrelune {

Peer::Peer(ViewContext& context, Control& control, wxWindow& widget)
    : context_(context), control_(&control), widget_(widget) {
    control.attach(this);
}

Peer::~Peer() {
    if (control_ != nullptr) control_->attach(nullptr);
    context_.refresher.forget(*this);
}

void Peer::controlGone(Control&) {
    control_ = nullptr;
    context_.refresher.forget(*this);
}

void Peer::refresh() {
    if (control_ == nullptr) return;
    show();
    showState();
}

void Peer::showState() {
    showEnabled();
    if (widget_.Show(control_->visible())) sizeChanged();
    if (control_->toolTip() == shownToolTip_) return;
    shownToolTip_ = control_->toolTip();
    if (shownToolTip_.empty()) {
        widget_.UnsetToolTip();
    } else {
        widget_.SetToolTip(toWx(shownToolTip_));
    }
}

// A control that is disabled for a while, as the button that launches a run, gets its focus back.
void Peer::showEnabled() {
    const bool enabled = control_->enabled();
    if (!enabled && widget_.IsThisEnabled()) hadFocus_ = widget_.HasFocus();
    if (!widget_.Enable(enabled)) return;
    widget_.Refresh();
    if (enabled && hadFocus_) widget_.SetFocus();
}

void Peer::sizeChanged() {
    context_.refresher.relayout(wxGetTopLevelParent(&widget_));
}

}  // namespace coffrelune
