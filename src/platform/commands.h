#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/controls.h"

namespace coffrelune {

/// Commands of a menu or a toolbar, known by their keys.
class CommandBar : public Control {
  public:
    struct Command {
        std::string key;
        std::string caption;
        std::string toolTip;
        bool enabled = true;
        bool visible = true;
    };

    void add(Command command);
    const std::vector<Command>& commands() const { return commands_; }
    const Command* find(const std::string& key) const;  // null when there is none
    void setEnabled(const std::string& key, bool enabled);
    void setVisible(const std::string& key, bool visible);
    using Control::setEnabled;
    using Control::setVisible;

    /// The user picks a command; nothing while it is disabled or hidden.
    void pick(const std::string& key);

    std::function<void(const std::string& key)> onPick;

  private:
    std::vector<Command> commands_;
};

/// A label that opens an address. The peer shows it in another colour while it is hovered.
class LinkLabel : public Label {
  public:
    using Label::Label;

    const std::string& address() const { return address_; }
    void setAddress(std::string address) { address_ = std::move(address); }
    bool hovered() const { return hovered_; }

    // The user's events: a click, something dropped on the label, the pointer over it or gone.
    void click();
    void drop();
    void hover(bool over);

    std::function<void()> onOpen;  // for a click and for a drop

  private:
    std::string address_;
    bool hovered_ = false;
};

/// Raises `onTick` every `interval` milliseconds while enabled. The window system drives tick();
/// no tick comes while a dialog or a message box is open.
class Timer : public Control {
  public:
    Timer() { Control::setEnabled(false); }

    int interval() const { return interval_; }  // milliseconds
    void setInterval(int milliseconds);
    void tick();

    std::function<void()> onTick;

  private:
    int interval_ = 0;
};

/// A label that shows a path: the full path is held apart from what there is room to display. The
/// peer shortens it to its width (pathCaption), puts caption and tool tip back through show(), and
/// does so again after each change of the path or of the width. Without a peer both stay empty.
class PathLabel : public Label {
  public:
    using Label::Label;

    const std::string& path() const { return path_; }
    void setPath(std::string path);
    /// What is displayed of the path; leaves the path as it is. The peer is told once, and not at
    /// all when nothing changes, so it may call this while it is being told of another change.
    void show(std::string caption, std::string toolTip) {
        setTexts(std::move(caption), std::move(toolTip));
    }

    /// What is dragged over the label, or dropped on it.
    struct Dragged {
        bool isText = false;
        std::string text;
        std::vector<std::string> files;  // in the form in which the system names them

        bool acceptable() const { return isText || !files.empty(); }
    };

    // The user's events.
    void press();       // left button down: records the row, may start a drag
    void rightClick();  // opens the row menu
    void drop(const Dragged& dragged);
    void drag(bool underWay);  // the path is being dragged away, or no longer
    /// A path has been typed in the label's place; only an editable label offers that.
    void edit(const std::string& typed);
    void empty();  // the key that deletes
    bool editable() const { return static_cast<bool>(onEdit); }
    /// Texts that what has been typed may become; none when nobody knows.
    std::vector<std::string> complete(const std::string& typed) const;

    std::function<void()> onPress;
    std::function<void()> onRightClick;
    std::function<void(const Dragged&)> onDrop;
    std::function<void(bool underWay)> onDrag;
    std::function<void(const std::string& typed)> onEdit;
    std::function<void()> onEmpty;
    std::function<std::vector<std::string>(const std::string& typed)> onComplete;

  private:
    std::string path_;
};

}  // namespace coffrelune
