#pragma once

#include <functional>
#include <string>

#include "mainwindow/configuration_panel.h"
#include "mainwindow/line_commands.h"

namespace coffrelune {

/// The toolbar `TB`: the commands on the line last pressed, and those on the whole.
class Toolbar {
  public:
    Toolbar(SystemMod& system, Desktop& desktop, MainDialogs& dialogs, LineCommands& lineCommands,
            ConfigurationPanel& configuration, DestinationChange& destinations);

    CommandBar TB;
    /// The user quits.
    std::function<void()> onQuit;

    /// The first line cannot go up, nor the last one down.
    void showTarget();

  private:
    void run(const std::string& key);
    void openManual();

    SystemMod& system_;
    Desktop& desktop_;
    MainDialogs& dialogs_;
    LineCommands& lineCommands_;
    ConfigurationPanel& configuration_;
    DestinationChange& destinations_;
};

}  // namespace coffrelune
