#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/controls.h"

namespace coffrelune {

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

    std::function<void()> onPress;
    std::function<void()> onRightClick;
    std::function<void(const Dragged&)> onDrop;
    std::function<void(bool underWay)> onDrag;

  private:
    std::string path_;
};

}  // namespace coffrelune
