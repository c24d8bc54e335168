#pragma once

#include <string>

#include "platform/task_scheduler.h"

namespace coffrelune {

// What is planned for a configuration; the time is the caller's. `program`: in the core's form.

/// The console, which replaces files without asking, as a run that nobody watches does.
PlannedTask plannedConsole(const std::string& program, const std::string& configuration);

/// The program with windows: "/Auto".
PlannedTask plannedWindow(const std::string& program, const std::string& configuration);

/// `when` of a PlannedEntry for a person: "chaque jour à 08:05", "lundi et jeudi à 08:05". What the
/// program does not write itself stays as it is.
std::string spokenPlan(const std::string& when);

/// What became of a configuration's planned run, for the user; `text` is empty when it had none.
struct PlanFate {
    Status status;
    std::string text;
};

/// After a configuration has been renamed: its planned run goes with it. One that cannot stays as
/// it is.
PlanFate movePlan(TaskScheduler& scheduler, const std::string& from, const std::string& to);

/// After a configuration has been erased: its planned run has nothing left to save.
PlanFate erasePlan(TaskScheduler& scheduler, const std::string& name);

/// The program with windows that lies beside the console.
std::string programBeside(const std::string& console);

}  // namespace coffrelune
