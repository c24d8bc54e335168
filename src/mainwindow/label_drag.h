#pragma once

#include <optional>
#include <string>

#include "mainwindow/line_rows.h"

namespace coffrelune {

/// Dragging a path from one label to another, and folders from the system's file manager to a
/// label.
class LabelDrag {
  public:
    enum class Effect { none, copy };

    LabelDrag(SystemMod& system, MainDialogs& dialogs, LineRows& rows);

    /// The left button went down on a label: its full path is what may now be dragged.
    void press(int row, LineSide side);
    /// The text that the press offers; empty when there is nothing to drag.
    const std::string& data() const { return data_; }

    /// While a path is dragged no backup may start by itself: its window would take the mouse away.
    void setUnderWay(bool underWay);

    /// What dropping this on a label would do.
    static Effect over(const PathLabel::Dragged& dragged);
    /// The text, or the first of several files, becomes the label's path and is stored.
    void drop(int row, LineSide side, const PathLabel::Dragged& dragged);

  private:
    std::string pathOf(const PathLabel::Dragged& dragged) const;

    SystemMod& system_;
    MainDialogs& dialogs_;
    LineRows& rows_;
    std::string data_;
    std::optional<MainDialogs::Hold> hold_;  // during a drag
};

}  // namespace coffrelune
