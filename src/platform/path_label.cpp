#include "platform/path_label.h"

namespace coffrelune {

void PathLabel::setPath(std::string path) {
    if (path == path_) return;
    path_ = std::move(path);
    changed();
}

void PathLabel::press() {
    if (enabled() && visible() && onPress) onPress();
}

void PathLabel::rightClick() {
    if (enabled() && visible() && onRightClick) onRightClick();
}

void PathLabel::drop(const Dragged& dragged) {
    if (enabled() && visible() && dragged.acceptable() && onDrop) onDrop(dragged);
}

void PathLabel::drag(bool underWay) {
    if (onDrag) onDrag(underWay);
}

}  // namespace coffrelune
