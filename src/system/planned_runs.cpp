#include "system/planned_runs.h"

#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
namespace {

std::string quoted(const std::string& name) {
    return "« " + name + " »";
}

/// Another copy of the program may have planned a run under the same name.
bool hasPlan(TaskScheduler& scheduler, const std::string& name) {
    PlannedEntry entry;
    return scheduler.read(name, entry).ok() && entry.sameSettings;
}

std::string wayOut(const Status& status, const std::string& name) {
    return " (erreur " + std::to_string(status.code()) +
           "). Pour la retirer : coffrelune-console planifier retirer --config \"" + name + "\"";
}

}  // namespace

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

PlanFate movePlan(TaskScheduler& scheduler, const std::string& from, const std::string& to) {
    if (!hasPlan(scheduler, from)) return {};
    std::vector<WordChange> changes = {{{"--config", from}, {"--config", to}}};
    // What follows a "/" on the command line of the windows is another name.
    if (to.find('/') == std::string::npos) {
        changes.push_back({{"/Auto", "/" + from}, {"/Auto", "/" + to}});
    }
    Status moved = scheduler.rename(from, to, changes);
    if (moved.ok())
        return {moved, "La sauvegarde planifiée porte maintenant sur " + quoted(to) + "."};
    return {moved, "La planification de " + quoted(from) + " n'a pas pu suivre le nouveau nom" +
                       wayOut(moved, from)};
}

PlanFate erasePlan(TaskScheduler& scheduler, const std::string& name) {
    if (!hasPlan(scheduler, name)) return {};
    Status removed = scheduler.remove(name);
    if (removed.ok()) return {removed, "La planification de " + quoted(name) + " est retirée."};
    return {removed, "La planification de " + quoted(name) + " n'a pas pu être retirée" +
                         wayOut(removed, name)};
}

std::string programBeside(const std::string& console) {
    const SplitPath path = splitPath(console);
    const bool windows =
        path.last.size() > 4 && equalIgnoringCase(path.last.substr(path.last.size() - 4), ".exe");
    return path.parent + (windows ? "coffrelune.exe" : "coffrelune");
}

}  // namespace coffrelune
