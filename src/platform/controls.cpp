#include "platform/controls.h"

#include <algorithm>

namespace coffrelune {
namespace {

// Sets a value and says whether that changed anything: peers redraw only then.
template <typename Value>
bool assign(Value& field, Value value) {
    if (field == value) return false;
    field = std::move(value);
    return true;
}

}  // namespace

void Control::changed() {
    if (peer_ != nullptr) peer_->controlChanged(*this);
}

void Control::setCaption(std::string caption) {
    if (assign(caption_, std::move(caption))) changed();
}

void Control::setToolTip(std::string toolTip) {
    if (assign(toolTip_, std::move(toolTip))) changed();
}

void Control::setSpokenName(std::string name) {
    if (assign(spokenName_, std::move(name))) changed();
}

void Control::setTexts(std::string caption, std::string toolTip) {
    const bool otherCaption = assign(caption_, std::move(caption));
    const bool otherToolTip = assign(toolTip_, std::move(toolTip));
    if (otherCaption || otherToolTip) changed();
}

void Control::setVisible(bool visible) {
    if (assign(visible_, visible)) changed();
}

void Control::setEnabled(bool enabled) {
    if (assign(enabled_, enabled)) changed();
}

void Button::click() {
    if (enabled() && visible() && onClick) onClick();
}

void CheckBox::setChecked(bool checked) {
    if (assign(checked_, checked)) changed();
}

void CheckBox::click() {
    if (!enabled() || !visible()) return;
    setChecked(!checked_);
    if (onClick) onClick();
}

void Picture::setImage(std::string image) {
    if (assign(image_, std::move(image))) changed();
}

void ProgressBar::setValue(int value) {
    if (assign(value_, std::clamp(value, 0, 100))) changed();
}

void ProgressBar::setIndeterminate(bool indeterminate) {
    if (assign(indeterminate_, indeterminate)) changed();
}

}  // namespace coffrelune
