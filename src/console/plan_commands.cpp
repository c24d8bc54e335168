// The runs that the system starts by itself.
#include <nlohmann/json.hpp>

#include "console/preparation.h"
#include "console/settings_commands.h"
#include "settings/configurations.h"
#include "system/date_time.h"
#include "system/planned_runs.h"
#include "system/text.h"

namespace coffrelune::console {
namespace {

using Json = nlohmann::ordered_json;

ExitStatus planFailed(Session& session, const Status& status) {
    const bool none = status.code() == error_number::notSupported;
    return refuse(session, none ? "Ce système n'a ni gestionnaire systemd de session ni crontab."
                                : "La planification n'a pas pu être changée (erreur " +
                                      std::to_string(status.code()) + ").");
}

void sayEntry(Terminal& terminal, const std::string& name, const PlannedEntry& entry) {
    terminal.result(visibleControls(name) + " : " + spokenPlan(entry.when));
    terminal.result("  dans : " + visibleControls(entry.place));
    terminal.result("  lance : " + visibleControls(entry.command));
}

ExitStatus showPlans(Session& session, const Arguments& arguments, TaskScheduler& scheduler) {
    SystemMod& system = session.system();
    std::vector<std::string> names;
    if (arguments.configuration.empty()) {
        for (const ListedConfiguration& one : listConfigurations(system)) {
            names.push_back(one.name);
        }
    } else {
        names.push_back(system.configurationName);
    }
    Json list = Json::array();
    for (const std::string& name : names) {
        PlannedEntry entry;
        if (!scheduler.read(name, entry).ok()) continue;
        list.push_back({{"configuration", name},
                        {"when", entry.when},
                        {"place", entry.place},
                        {"command", entry.command}});
        if (!arguments.json) sayEntry(session.terminal(), name, entry);
    }
    if (arguments.json) {
        session.terminal().result(
            Json{{"planned", list}}.dump(2, ' ', false, Json::error_handler_t::replace));
    } else if (list.empty()) {
        session.terminal().say("Rien n'est planifié.");
    }
    return ExitStatus::clean;
}

ExitStatus addPlan(Session& session, const Arguments& arguments, TaskScheduler& scheduler) {
    const SystemMod& system = session.system();
    if (!settingsUsable(session.system())) return ExitStatus::wrongUse;
    // What follows a "/" on the command line of the windows is another name.
    if (arguments.plan.withWindows && system.configurationName.find('/') != std::string::npos) {
        return refuse(session,
                      "--fenetre ne peut pas nommer une configuration qui contient « / ».");
    }
    const std::string program = session.native().drives().fromNative(executablePath());
    PlannedTask task = arguments.plan.withWindows
                           ? plannedWindow(programBeside(program), system.configurationName)
                           : plannedConsole(program, system.configurationName);
    task.time = arguments.plan.time;
    task.days = arguments.plan.days;
    std::string advice;
    const Status written = scheduler.write(task, advice);
    if (!written.ok()) return planFailed(session, written);
    PlannedEntry entry;
    if (scheduler.read(task.name, entry).ok()) {
        if (arguments.json) return showPlans(session, arguments, scheduler);
        sayEntry(session.terminal(), task.name, entry);
    }
    if (!advice.empty()) session.terminal().say(advice);
    return ExitStatus::clean;
}

ExitStatus removePlan(Session& session, TaskScheduler& scheduler) {
    const std::string name = session.system().configurationName;
    const Status removed = scheduler.remove(name);
    if (removed.saysAbsent()) {
        return refuse(session, "Rien n'est planifié pour « " + visibleControls(name) + " ».");
    }
    if (!removed.ok()) return planFailed(session, removed);
    session.terminal().say("La planification de « " + visibleControls(name) + " » est retirée.");
    return ExitStatus::clean;
}

}  // namespace

ExitStatus plan(Session& session, const Arguments& arguments) {
    ExitStatus refusal = ExitStatus::clean;
    if (!prepareReading(session, arguments, refusal)) return refusal;
    const auto scheduler = makeTaskScheduler(session.native());
    switch (arguments.edit.action) {
        case Action::add:
            return addPlan(session, arguments, *scheduler);
        case Action::erase:
            return removePlan(session, *scheduler);
        default:
            return showPlans(session, arguments, *scheduler);
    }
}

}  // namespace coffrelune::console
