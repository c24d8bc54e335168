#include "platform/input_controls.h"

#include <algorithm>

namespace coffrelune {

void TextBox::setText(std::string text) {
    if (text == text_) return;
    text_ = std::move(text);
    changed();
}

void TextBox::setReadOnly(bool readOnly) {
    if (readOnly == readOnly_) return;
    readOnly_ = readOnly;
    changed();
}

void TextBox::takeFocus() {
    focused_ = true;
    changed();
}

void TextBox::enter() {
    if (enabled() && visible()) focused_ = true;
}

void TextBox::type(const std::string& text) {
    if (!enabled() || !visible() || readOnly_) return;
    setText(text);
    if (onType) onType();
}

void TextBox::leave() {
    if (!focused_) return;
    focused_ = false;
    if (onLeave) onLeave();
}

std::string ListBox::selectedText() const {
    return selection_ < 0 ? std::string() : entries_[static_cast<std::size_t>(selection_)];
}

void ListBox::clear() {
    entries_.clear();
    selection_ = -1;
    changed();
}

void ListBox::add(std::string entry) {
    entries_.push_back(std::move(entry));
    changed();
}

void ListBox::remove(int index) {
    entries_.erase(entries_.begin() + index);
    if (selection_ == index) {
        selection_ = -1;
    } else if (selection_ > index) {
        --selection_;
    }
    changed();
}

void ListBox::select(int index) {
    if (index == selection_ || index >= static_cast<int>(entries_.size())) return;
    selection_ = std::max(index, -1);
    changed();
}

void ListBox::pick(int index) {
    if (!enabled() || !visible()) return;
    select(index);
    if (onPick) onPick();
}

void ListBox::doubleClick(int index) {
    pick(index);
    if (enabled() && visible() && onDoubleClick) onDoubleClick();
}

void OptionButton::setChecked(bool checked) {
    if (checked == checked_) return;
    checked_ = checked;
    changed();
}

void OptionButton::click() {
    if (!enabled() || !visible()) return;
    setChecked(true);
    if (onClick) onClick();
}

void TabStrip::add(std::string key, std::string caption) {
    if (tabs_.empty()) selectedKey_ = key;
    tabs_.push_back({std::move(key), std::move(caption)});
    changed();
}

void TabStrip::select(const std::string& key) {
    if (key == selectedKey_) return;
    selectedKey_ = key;
    changed();
}

void TabStrip::pick(const std::string& key) {
    if (!enabled() || !visible() || key == selectedKey_) return;
    const std::string old = selectedKey_;
    select(key);
    if (onPick && !onPick(key)) select(old);
}

}  // namespace coffrelune
