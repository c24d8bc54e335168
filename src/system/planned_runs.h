#pragma once

#include <string>

#include "platform/task_scheduler.h"

namespace coffrelune {

// What is planned for a configuration; the time is the caller's. `program`: in the core's form.

/// The console, which replaces files without asking, as a run that nobody watches does.
PlannedTask plannedConsole(const std::string& program, const std::string& configuration);

/// The program with windows: "/Auto".
PlannedTask plannedWindow(const std::string& program, const std::string& configuration);

/// The program with windows that lies beside the console.
std::string programBeside(const std::string& console);

}  // namespace coffrelune
