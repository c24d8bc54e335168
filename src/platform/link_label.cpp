#include "platform/link_label.h"

namespace coffrelune {

void LinkLabel::click() {
    if (enabled() && visible() && onOpen) onOpen();
}

void LinkLabel::drop() {
    click();
}

void LinkLabel::hover(bool over) {
    if (over == hovered_) return;
    hovered_ = over;
    changed();
}

}  // namespace coffrelune
