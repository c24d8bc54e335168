#include "mainwindow/label_drag.h"

#include "system/paths.h"

namespace coffrelune {

LabelDrag::LabelDrag(SystemMod& system, MainDialogs& dialogs, LineRows& rows)
    : system_(system), dialogs_(dialogs), rows_(rows) {}

void LabelDrag::press(int row, LineSide side) {
    data_ = rows_.row(row).label(side).path();
}

void LabelDrag::setUnderWay(bool underWay) {
    if (underWay) {
        hold_.emplace(dialogs_);
    } else {
        hold_.reset();
    }
}

LabelDrag::Effect LabelDrag::over(const PathLabel::Dragged& dragged) {
    return dragged.acceptable() ? Effect::copy : Effect::none;
}

void LabelDrag::drop(int row, LineSide side, const PathLabel::Dragged& dragged) {
    hold_.reset();  // the drag ends here
    if (over(dragged) == Effect::none || !dialogs_.ready()) return;
    const std::string dropped = pathOf(dragged);
    // An empty text is no path; emptying a line has its own command, which asks.
    if (dropped.empty()) return;
    rows_.edit(row, side, system_.platform.drives.fromWindow(dropped));
}

std::string LabelDrag::pathOf(const PathLabel::Dragged& dragged) const {
    if (!dragged.isText) return dragged.files.front();
    // What comes from one of our own labels is a path already, whatever its name looks like.
    return dragged.text == data_ ? dragged.text : pathOfDroppedText(dragged.text);
}

}  // namespace coffrelune
