#include "system/planned_runs.h"

#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {

PlannedTask plannedConsole(const std::string& program, const std::string& configuration) {
    PlannedTask task;
    task.name = configuration;
    task.program = program;
    task.arguments = {"sauvegarder", "--config", configuration, "--ecraser", "--notifier"};
    return task;
}

PlannedTask plannedWindow(const std::string& program, const std::string& configuration) {
    PlannedTask task;
    task.name = configuration;
    task.program = program;
    task.arguments = {"/Auto", "/" + configuration};
    return task;
}

std::string programBeside(const std::string& console) {
    const SplitPath path = splitPath(console);
    const bool windows =
        path.last.size() > 4 && equalIgnoringCase(path.last.substr(path.last.size() - 4), ".exe");
    return path.parent + (windows ? "coffrelune.exe" : "coffrelune");
}

}  // namespace coffrelune
