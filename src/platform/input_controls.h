#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/controls.h"

namespace coffrelune {

/// One line of text. The user's events come from enter(), type() and leave(); a program's setText()
/// raises none.
class TextBox : public Control {
  public:
    using Control::Control;

    const std::string& text() const { return text_; }
    void setText(std::string text);
    /// What the user types into a read-only field has no effect.
    bool readOnly() const { return readOnly_; }
    void setReadOnly(bool readOnly);
    bool focused() const { return focused_; }
    /// The program puts the focus here; the peer follows, no event is raised.
    void takeFocus();

    /// The user enters the field (nothing for one that has the focus already), replaces its whole
    /// text, leaves it for another control of the same window. Losing the focus to another program
    /// is not leaving.
    void enter();
    void type(const std::string& text);
    void leave();

    std::function<void()> onType;
    std::function<void()> onLeave;

  private:
    std::string text_;
    bool readOnly_ = false;
    bool focused_ = false;
};

/// A list, or a drop-down list, of texts; -1 as no selection. How far it scrolls to the side is its
/// view's affair.
class ListBox : public Control {
  public:
    using Control::Control;

    const std::vector<std::string>& entries() const { return entries_; }
    int selection() const { return selection_; }
    std::string selectedText() const;  // empty without a selection

    void clear();
    void add(std::string entry);
    void remove(int index);  // the selection goes with its entry
    void select(int index);  // by the program: raises no event

    /// The user selects an entry, or double-clicks it.
    void pick(int index);
    void doubleClick(int index);

    std::function<void()> onPick;
    std::function<void()> onDoubleClick;

  private:
    std::vector<std::string> entries_;
    int selection_ = -1;
};

/// One of several exclusive choices; its window unticks the others.
class OptionButton : public Control {
  public:
    using Control::Control;

    bool checked() const { return checked_; }
    void setChecked(bool checked);
    void click();

    std::function<void()> onClick;

  private:
    bool checked_ = false;
};

/// A group with a caption; disabling it disables what it holds.
class Frame : public Control {
  public:
    using Control::Control;
};

/// Tabs known by their keys. `onPick` is asked when the user picks a tab: false keeps the old one.
class TabStrip : public Control {
  public:
    struct Tab {
        std::string key;
        std::string caption;
    };

    void add(std::string key, std::string caption);
    const std::vector<Tab>& tabs() const { return tabs_; }
    const std::string& selectedKey() const { return selectedKey_; }
    void select(const std::string& key);  // by the program: raises no event
    void pick(const std::string& key);    // by the user

    std::function<bool(const std::string& key)> onPick;

  private:
    std::vector<Tab> tabs_;
    std::string selectedKey_;
};

}  // namespace coffrelune
