#pragma once

#include <functional>

#include "mainwindow/line_rows.h"

namespace coffrelune {

/// The configuration in use: its label, and the dialogs that choose and describe it.
class ConfigurationPanel {
  public:
    ConfigurationPanel(SystemMod& system, MainDialogs& dialogs, LineRows& rows);

    Label ConfigLbl;  // "Travail (description)"

    /// Another configuration, or the same one with another number of lines, has been loaded:
    /// everything is to be shown again.
    std::function<void()> onLoaded;

    void showName();
    /// Configurations and options. A dialog that changed neither the configuration nor the number
    /// of lines reloads nothing: a backup that is due, and the list of a comparison, survive it.
    void choose();
    void describe();

  private:
    SystemMod& system_;
    MainDialogs& dialogs_;
    LineRows& rows_;
};

}  // namespace coffrelune
