#pragma once

#include "mainwindow/line_rows.h"
#include "platform/desktop_services.h"

namespace coffrelune {

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
