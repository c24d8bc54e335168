#pragma once

#include <functional>
#include <string>
#include <vector>

#include "mainwindow/line_rows.h"
#include "platform/desktop_services.h"
#include "platform/input_controls.h"
#include "settings/configurations.h"

namespace coffrelune {

/// The configuration in use: its label, the choice of another one beside it, and the dialogs that
/// choose, name, copy and describe it.
class ConfigurationPanel {
  public:
    ConfigurationPanel(SystemMod& system, Desktop& desktop, MainDialogs& dialogs, LineRows& rows);

    Label ConfigLbl;   // "Travail (description)"
    ListBox ConfigCb;  // drop-down of all of them
    Button RenameCmd{"Re&nommer..."};
    Button DuplicateCmd{"&Dupliquer..."};

    /// Another configuration, or the same one with another number of lines, has been loaded:
    /// everything is to be shown again.
    std::function<void()> onLoaded;

    void showName();
    /// Configurations and options. A dialog that changed neither the configuration nor the number
    /// of lines reloads nothing: a backup that is due, and the list of a comparison, survive it.
    void choose();
    void describe();

  private:
    void pick();
    void rename();
    void renamePlan(const std::string& from, const std::string& to);
    void duplicate();
    void load(const std::string& name);
    /// Empty when the dialog was cancelled or the name reserved.
    std::string askName(const std::string& title, const std::string& proposed);
    bool refused(ConfigurationRefusal refusal, const std::string& title);

    SystemMod& system_;
    TaskScheduler* tasks_;
    MainDialogs& dialogs_;
    LineRows& rows_;
    std::vector<ListedConfiguration> listed_;  // by position in ConfigCb
};

}  // namespace coffrelune
