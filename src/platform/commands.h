#pragma once

#include <functional>
#include <string>
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

}  // namespace coffrelune
