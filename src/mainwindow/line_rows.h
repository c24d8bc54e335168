#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "mainwindow/main_dialogs.h"
#include "operation/line_texts.h"
#include "platform/commands.h"

namespace coffrelune {

/// The controls of one line.
struct LineRow {
    Picture Img;   // "ligne-selectionnee" or "ligne-non-selectionnee"
    Label NumLbl;  // "1."
    CheckBox ChkS;
    PathLabel LblS;
    Button CmdS{"..."};
    PathLabel LblD;
    Button CmdD{"..."};
    Button CmdEx{"Exclusions"};
    Picture ImgOk;  // the done mark, hidden until the line has been worked on

    PathLabel& label(LineSide side) { return side == LineSide::left ? LblS : LblD; }
};

/// The lines of the current configuration, one row each whether it is filled or not, in the layout
/// of the current operation kind. Every edit is stored at once.
class LineRows {
  public:
    /// Height of a row in twips, 15 to a pixel: row i stands i times this below row 0.
    static constexpr int rowPitch = 480;

    LineRows(SystemMod& system, MainDialogs& dialogs);

    /// Told after rows have come or gone: the window follows.
    std::function<void()> onRowsChanged;
    // What the user does with a label.
    std::function<void(int row, LineSide side)> onPress;
    std::function<void(int row, LineSide side)> onRightClick;
    std::function<void(int row, LineSide side, const PathLabel::Dragged& dragged)> onDrop;
    std::function<void(bool underWay)> onDrag;
    /// A path of a line has changed.
    std::function<void()> onEdited;

    int count() const { return static_cast<int>(rows_.size()); }
    LineRow& row(int index) { return *rows_[static_cast<std::size_t>(index)]; }
    const LineRow& row(int index) const { return *rows_[static_cast<std::size_t>(index)]; }

    /// Sets the highest index and stores the number of lines. Lines that stay keep their contents;
    /// the new rows are shown by the next ShowLines.
    void SetRowCount(int highest);

    /// Fills every row from the shared state. A row without both paths cannot be ticked: its tick,
    /// if it has one, is taken away and that is stored.
    void ShowLines();

    /// What a row's button says of its exclusions, after they have changed.
    void showExclusionCount(int index);

    /// The label's text becomes the line's, and is stored.
    void StoreSource(int index);
    void StoreDestination(int index);
    /// Puts a path into a label and stores it.
    void edit(int index, LineSide side, const std::string& path);

    void chooseSource(int index, bool includeFiles);
    void chooseDestination(int index);
    void showExclusions(int index);

  private:
    std::unique_ptr<LineRow> makeRow(int index);
    void bindLabel(PathLabel& label, int index, LineSide side);
    void resize(int count);
    void typePath(int index, LineSide side, const std::string& typed);
    void emptyPath(int index, LineSide side);
    void showRow(int index);
    void checkRow(int index);
    void select(int index);

    SystemMod& system_;
    MainDialogs& dialogs_;
    std::vector<std::unique_ptr<LineRow>> rows_;
};

}  // namespace coffrelune
