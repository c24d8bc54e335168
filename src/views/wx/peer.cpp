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
    if (widget_.Enable(control_->enabled())) widget_.Refresh();
    if (widget_.Show(control_->visible())) sizeChanged();
    if (control_->toolTip() == shownToolTip_) return;
    shownToolTip_ = control_->toolTip();
    if (shownToolTip_.empty()) {
        widget_.UnsetToolTip();
    } else {
        widget_.SetToolTip(toWx(shownToolTip_));
    }
}

void Peer::sizeChanged() {
    context_.refresher.relayout(wxGetTopLevelParent(&widget_));
}

}  // namespace coffrelune
