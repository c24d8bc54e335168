#pragma once

#include "console/arguments.h"
#include "platform/native/native_platform.h"
#include "settings/system_mod.h"
#include "views/terminal/interrupt_signals.h"
#include "views/terminal/terminal.h"
#include "views/terminal/terminal_windows.h"

namespace coffrelune::console {

/// Everything that a command stands on: the system's services, the terminal as window system, and
/// the shared state (not loaded yet).
class Session {
  public:
    explicit Session(const Arguments& arguments);

    Terminal& terminal() { return terminal_; }
    SystemMod& system() { return system_; }
    InstanceGuard& guard() { return native_.guard(); }
    OperationStage& stage() { return windows_; }
    NativePlatform& native() { return native_; }

  private:
    ProgramContext context(const Arguments& arguments);

    Terminal terminal_;
    NativePlatform native_;
    InterruptSignals signals_;
    TerminalWindows windows_;
    Platform platform_;
    SystemMod system_;
};

}  // namespace coffrelune::console
