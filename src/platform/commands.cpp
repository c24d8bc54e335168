#include "platform/commands.h"

#include <algorithm>

namespace coffrelune {

void CommandBar::add(Command command) {
    commands_.push_back(std::move(command));
    changed();
}

const CommandBar::Command* CommandBar::find(const std::string& key) const {
    const auto found = std::find_if(commands_.begin(), commands_.end(),
                                    [&](const Command& command) { return command.key == key; });
    return found == commands_.end() ? nullptr : &*found;
}

void CommandBar::setEnabled(const std::string& key, bool enabled) {
    for (Command& command : commands_) {
        if (command.key == key) command.enabled = enabled;
    }
    changed();
}

void CommandBar::setVisible(const std::string& key, bool visible) {
    for (Command& command : commands_) {
        if (command.key == key) command.visible = visible;
    }
    changed();
}

void CommandBar::pick(const std::string& key) {
    const Command* command = find(key);
    if (!enabled() || command == nullptr || !command->enabled || !command->visible) return;
    if (onPick) onPick(key);
}

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

void Timer::setInterval(int milliseconds) {
    if (milliseconds == interval_) return;
    interval_ = milliseconds;
    changed();
}

void Timer::tick() {
    if (enabled() && onTick) onTick();
}

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

void PathLabel::edit(const std::string& typed) {
    if (enabled() && onEdit) onEdit(typed);
}

void PathLabel::empty() {
    if (enabled() && onEmpty) onEmpty();
}

std::vector<std::string> PathLabel::complete(const std::string& typed) const {
    return onComplete ? onComplete(typed) : std::vector<std::string>();
}

}  // namespace coffrelune
