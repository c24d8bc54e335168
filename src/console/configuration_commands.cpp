#include "console/preparation.h"
#include "console/settings_commands.h"
#include "console/settings_json.h"
#include "platform/native/native_platform.h"
#include "settings/choices.h"
#include "settings/setting_names.h"
#include "system/planned_runs.h"
#include "system/text.h"

namespace coffrelune::console {
namespace {

std::string quoted(const std::string& name) {
    return "« " + visibleControls(name) + " »";
}

/// What became of the planned run, said after the change itself, which stands in any case.
ExitStatus tellPlan(Session& session, const PlanFate& plan) {
    const std::string text = visibleControls(plan.text);
    if (plan.status.ok()) {
        if (!text.empty()) session.terminal().say(text);
        return ExitStatus::clean;
    }
    session.terminal().warn(text);
    return ExitStatus::errors;
}

ExitStatus showConfigurations(Session& session, const Arguments& arguments) {
    ExitStatus refusal = ExitStatus::clean;
    if (!prepareReading(session, arguments, refusal)) return refusal;
    SystemMod& system = session.system();
    Terminal& terminal = session.terminal();
    if (arguments.json) {
        terminal.result(configurationsAsJson(system));
        return ExitStatus::clean;
    }
    const std::vector<ListedConfiguration> listed = listConfigurations(system);
    if (listed.empty()) terminal.say("Aucune configuration n'est enregistrée.");
    for (const auto& [name, entry] : listed) {
        terminal.result((name == system.configurationName ? "* " : "  ") + visibleControls(entry));
    }
    return ExitStatus::clean;
}

ExitStatus refuseUnknown(Session& session, const std::string& name) {
    return refuse(session, "La configuration " + quoted(name) + " n'existe pas.");
}

ConfigurationRefusal refusalOf(SystemMod& system, const std::string& name) {
    return refusalToAdd(system, listConfigurations(system), name);
}

ExitStatus add(Session& session, const Arguments::SettingsEdit& edit) {
    SystemMod& system = session.system();
    const std::string name = ProperCase(edit.name);
    const ConfigurationRefusal refusal = refusalOf(system, name);
    if (refusal != ConfigurationRefusal::none) return refuse(session, textOf(refusal));
    system.configurationName = name;
    system.LoadConfiguration();
    // A section without a key would be one that nobody sees the use of.
    Status stored = chooseSwitch(system, switchTable[1], false);
    if (stored.ok() && edit.text) stored = describeConfiguration(system, *edit.text);
    return conclude(session, stored, "Configuration ajoutée : " + quoted(name));
}

ExitStatus rename(Session& session, const Arguments::SettingsEdit& edit) {
    SystemMod& system = session.system();
    const std::string from = ProperCase(edit.name);
    const std::string to = ProperCase(edit.newName);
    if (!system.configurationExists(from)) return refuseUnknown(session, from);
    const ConfigurationRefusal refusal = refusalToRename(system, from, to);
    if (refusal != ConfigurationRefusal::none) return refuse(session, textOf(refusal));
    const ExitStatus status = conclude(session, renameConfiguration(system, from, to),
                                       "Configuration renommée : " + quoted(to));
    // A list of errors may have kept its old name; the section has not.
    if (!system.configurationExists(to)) return status;
    const ExitStatus planned =
        tellPlan(session, movePlan(*makeTaskScheduler(session.native()), from, to));
    return status == ExitStatus::clean ? planned : status;
}

ExitStatus duplicate(Session& session, const Arguments::SettingsEdit& edit) {
    SystemMod& system = session.system();
    const std::string from = ProperCase(edit.name);
    const std::string to = ProperCase(edit.newName);
    if (!system.configurationExists(from)) return refuseUnknown(session, from);
    const ConfigurationRefusal refusal = refusalOf(system, to);
    if (refusal != ConfigurationRefusal::none) return refuse(session, textOf(refusal));
    return conclude(session, duplicateConfiguration(system, from, to),
                    "Configuration ajoutée : " + quoted(to));
}

ExitStatus erase(Session& session, const Arguments& arguments) {
    SystemMod& system = session.system();
    const std::string name = ProperCase(arguments.edit.name);
    const ConfigurationRefusal refusal = refusalToErase(system, name);
    if (refusal != ConfigurationRefusal::none) return refuse(session, textOf(refusal));
    if (!system.configurationExists(name)) return refuseUnknown(session, name);
    if (!isConfirmed(session, arguments, "Voulez-vous effacer cette configuration ?")) {
        return ExitStatus::interrupted;
    }
    const ExitStatus status = conclude(session, eraseConfiguration(system, name),
                                       "Configuration effacée : " + quoted(name));
    if (status != ExitStatus::clean) return status;
    return tellPlan(session, erasePlan(*makeTaskScheduler(session.native()), name));
}

ExitStatus describe(Session& session, const Arguments::SettingsEdit& edit) {
    SystemMod& system = session.system();
    system.configurationName = ProperCase(edit.name);
    if (!system.configurationExists(system.configurationName)) {
        return refuseUnknown(session, system.configurationName);
    }
    return conclude(session, describeConfiguration(system, edit.text.value_or("")),
                    "Configuration décrite : " + quoted(system.configurationName));
}

ExitStatus choose(Session& session, const Arguments::SettingsEdit& edit) {
    SystemMod& system = session.system();
    const std::string name = ProperCase(edit.name);
    if (!system.configurationExists(name)) return refuseUnknown(session, name);
    return conclude(session, system.WriteSetting(globalSection, "Config", name),
                    "Configuration en cours : " + quoted(name));
}

}  // namespace

ExitStatus configurations(Session& session, const Arguments& arguments) {
    if (arguments.edit.action == Action::show) return showConfigurations(session, arguments);
    ExitStatus refusal = ExitStatus::clean;
    if (!prepareEditing(session, arguments, refusal)) return refusal;
    switch (arguments.edit.action) {
        case Action::add:
            return add(session, arguments.edit);
        case Action::rename:
            return rename(session, arguments.edit);
        case Action::duplicate:
            return duplicate(session, arguments.edit);
        case Action::erase:
            return erase(session, arguments);
        case Action::describe:
            return describe(session, arguments.edit);
        default:
            return choose(session, arguments.edit);
    }
}

ExitStatus refuse(Session& session, const std::string& reason) {
    session.terminal().warn(visibleControls(reason));
    return ExitStatus::wrongUse;
}

ExitStatus conclude(Session& session, const Status& stored, const std::string& done) {
    if (!stored.ok()) return ExitStatus::wrongUse;
    session.terminal().say(done);
    return ExitStatus::clean;
}

bool isConfirmed(Session& session, const Arguments& arguments, const std::string& question) {
    if (arguments.confirmed) return true;
    if (!session.terminal().canAsk()) {
        session.terminal().warn(question +
                                "\nIl n'y a pas de terminal pour répondre : ajoutez --confirmer.");
        return false;
    }
    WindowService& windows = session.system().platform.windows;
    return windows.showMessage({question, session.system().programTitle, MessageIcon::question,
                                MessageButtons::okCancel}) == Answer::ok;
}

}  // namespace coffrelune::console
