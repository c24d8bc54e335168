#pragma once

#include <functional>
#include <string>

#include "settings/system_mod.h"

namespace coffrelune {

/// Everything that the main window opens over itself goes through here, so that it knows when
/// something is open: the scheduler's ticks do nothing meanwhile, and nothing is opened twice.
class MainDialogs {
  public:
    explicit MainDialogs(SystemMod& system) : system_(system) {}

    /// Keeps the main window busy while it lives: a dialog, a message box, an operation.
    class Hold {
      public:
        explicit Hold(MainDialogs& dialogs) : dialogs_(dialogs) { ++dialogs_.open_; }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;
        ~Hold() { --dialogs_.open_; }

      private:
        MainDialogs& dialogs_;
    };

    bool busy() const { return open_ > 0; }

    /// Stores what was typed and not stored yet; false when it was refused, with its message.
    std::function<bool()> commitFields;

    /// To be asked before a command of the user: true when nothing is open and what was typed could
    /// be stored.
    bool ready() { return !busy() && (!commitFields || commitFields()); }

    void show(Window& window);
    /// An empty title stands for the program's.
    Answer say(const std::string& text, MessageIcon icon = MessageIcon::information,
               MessageButtons buttons = MessageButtons::ok, const std::string& title = {});
    /// Asks before something is overwritten, deleted or reset. An empty title as above.
    bool confirmLoss(const std::string& question, const std::string& title = {});
    /// Paths in the core's form; empty when cancelled.
    std::string chooseFolder(bool includeFiles, const std::string& prompt,
                             const std::string& start);
    std::string chooseFile(const std::string& title, const std::string& filter);

  private:
    SystemMod& system_;
    int open_ = 0;
};

}  // namespace coffrelune
