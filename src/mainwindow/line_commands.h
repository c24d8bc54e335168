#pragma once

#include <functional>
#include <string>

#include "mainwindow/line_rows.h"
#include "platform/commands.h"
#include "platform/desktop_services.h"

namespace coffrelune {

/// The commands on one line: those of the row menu `MenuPop`, which the toolbar offers as well.
/// They act on the row and side of the label that was pressed last.
class LineCommands {
  public:
    LineCommands(SystemMod& system, Desktop& desktop, MainDialogs& dialogs, LineRows& rows);

    CommandBar MenuPop;
    /// The menu is ready to be opened at the pointer.
    std::function<void()> onPopup;
    /// The row or side that the commands act on has changed, or the number of rows has.
    std::function<void()> onTargetChanged;
    /// The line has been moved, and the commands now act on it where it went.
    std::function<void(int row, LineSide side)> onMoved;

    /// Adds the line commands to a bar, in the menu's order.
    static void addTo(CommandBar& bar);

    int row() const { return row_; }
    LineSide side() const { return side_; }
    void setTarget(int row, LineSide side);
    /// A label was right-clicked: sets the menu up for it and opens it.
    void openMenu(int row, LineSide side);
    /// Rows may have gone.
    void rowsChanged();

    bool canMoveUp() const { return row_ > 0; }
    bool canMoveDown() const { return row_ < rows_.count() - 1; }

    /// False when the key is none of the line commands.
    bool run(const std::string& key);

  private:
    void editPath();
    void showProperties();
    /// Exchanges the row with another one; the commands then act on where it went.
    void moveTo(int other);
    void reset();
    void writeLine(int index);

    SystemMod& system_;
    Desktop& desktop_;
    MainDialogs& dialogs_;
    LineRows& rows_;
    int row_ = 0;
    LineSide side_ = LineSide::left;
};

/// Moves every destination to another drive, keeping the rest of each path.
class DestinationChange {
  public:
    DestinationChange(SystemMod& system, Desktop& desktop, MainDialogs& dialogs, LineRows& rows);

    /// Refused with a message when the destinations lie on different drives; otherwise asks for the
    /// drive. Destinations without a drive letter stay as they are.
    void run();

  private:
    bool onOneDrive() const;
    void changeTo(const std::string& drive);

    SystemMod& system_;
    Desktop& desktop_;
    MainDialogs& dialogs_;
    LineRows& rows_;
};

}  // namespace coffrelune
