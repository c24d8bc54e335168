#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/controls.h"

namespace coffrelune {

/// A label that shows a path: the full path is held apart from what there is room to display. The
/// peer shortens it to its width, sets caption and tool tip back through show(), and does so again
/// when the width changes.
class PathLabel : public Label {
  public:
    using Label::Label;

    const std::string& path() const { return path_; }
    void setPath(std::string path);

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

    std::function<void()> onPress;
    std::function<void()> onRightClick;
    std::function<void(const Dragged&)> onDrop;

  private:
    std::string path_;
};

}  // namespace coffrelune
