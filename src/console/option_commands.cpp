#include <algorithm>
#include <functional>

#include "console/preparation.h"
#include "console/settings_commands.h"
#include "console/settings_json.h"
#include "settings/choices.h"
#include "settings/setting_names.h"
#include "system/date_time.h"
#include "system/text.h"

namespace coffrelune::console {
namespace {

// A caption as a sentence: without its mnemonic and its colon.
std::string withoutMarks(std::string caption) {
    std::erase(caption, '&');
    if (caption.ends_with(':')) caption.pop_back();
    return trimBlanks(caption);
}

void sayOption(Terminal& terminal, std::string key, const std::string& value,
               const std::string& caption) {
    constexpr std::size_t width = 16;
    key.resize(std::max(key.size(), width), ' ');
    terminal.result("  " + key +
                    (value.size() < 6 ? value + std::string(6 - value.size(), ' ') : value) +
                    caption);
}

ExitStatus showOptions(Session& session, const Arguments& arguments) {
    const SystemMod& system = session.system();
    Terminal& terminal = session.terminal();
    if (arguments.json) {
        terminal.result(optionsAsJson(system));
        return ExitStatus::clean;
    }
    const auto word = [](bool on) { return on ? "oui" : "non"; };
    terminal.say("De toutes les configurations :");
    for (const CopyOption& option : optionTable) {
        sayOption(terminal, option.key, word(system.options.*option.value != 0),
                  withoutMarks(option.caption));
    }
    sayOption(terminal, "RepertMax", std::to_string(system.maximumIndex + 1), "Nombre de lignes");
    terminal.say("De la configuration « " + visibleControls(system.configurationName) + " » :");
    for (const ConfigurationSwitch& one : switchTable) {
        sayOption(terminal, one.key, word(isOn(system, one)), withoutMarks(one.caption));
    }
    sayOption(terminal, "AutoTime", system.AutoTime, "Heure de la sauvegarde automatique");
    return ExitStatus::clean;
}

std::optional<bool> asSwitch(const std::string& value) {
    for (const char* word : {"oui", "1", "-1"}) {
        if (equalIgnoringCase(value, word)) return true;
    }
    for (const char* word : {"non", "0"}) {
        if (equalIgnoringCase(value, word)) return false;
    }
    return std::nullopt;
}

/// "Clé=valeur", understood.
struct Assignment {
    std::string refusal;  // why it is none
    bool ofConfiguration = false;
    std::function<Status()> store;
};

Assignment refused(std::string reason) {
    return {std::move(reason), false, {}};
}

Assignment lineCount(SystemMod& system, const std::string& value) {
    const std::vector<int> offered = offeredLineCounts(system);
    const int count = leadingNumber(value);
    if (std::to_string(count) != value ||
        std::find(offered.begin(), offered.end(), count) == offered.end()) {
        return refused("RepertMax attend un nombre de " + std::to_string(offered.front()) + " à " +
                       std::to_string(offered.back()) +
                       " : aucune ligne remplie ne doit disparaître.");
    }
    return {"", false,
            [&system, value] { return system.WriteSetting(globalSection, "RepertMax", value); }};
}

Assignment time(SystemMod& system, const std::string& value) {
    if (!isTimeOfDay(value)) return refused("AutoTime attend une heure : AutoTime=12:30");
    return {"", true, [&system, value] {
                return system.WriteSetting(system.configurationName, "AutoTime", value);
            }};
}

Assignment understand(SystemMod& system, const std::string& text) {
    const std::size_t equals = text.find('=');
    const std::string key = text.substr(0, equals);
    const std::string value = equals == std::string::npos ? "" : text.substr(equals + 1);
    if (equalIgnoringCase(key, "RepertMax")) return lineCount(system, value);
    if (equalIgnoringCase(key, "AutoTime")) return time(system, value);
    const std::optional<bool> on = asSwitch(value);
    for (const CopyOption& option : optionTable) {
        if (!equalIgnoringCase(key, option.key)) continue;
        if (!on) return refused(std::string(option.key) + " attend oui ou non.");
        return {"", false, [&system, &option, on] { return chooseOption(system, option, *on); }};
    }
    for (const ConfigurationSwitch& one : switchTable) {
        if (!equalIgnoringCase(key, one.key)) continue;
        if (!on) return refused(std::string(one.key) + " attend oui ou non.");
        return {"", true, [&system, &one, on] { return chooseSwitch(system, one, *on); }};
    }
    return refused("Option inconnue : " + key + ". « options » les montre toutes.");
}

// All or none: a script that errs in one of them has changed nothing.
ExitStatus setOptions(Session& session, const Arguments& arguments) {
    SystemMod& system = session.system();
    std::vector<Assignment> assignments;
    for (const std::string& text : arguments.edit.assignments) {
        assignments.push_back(understand(system, text));
        const Assignment& last = assignments.back();
        if (!last.refusal.empty()) return refuse(session, last.refusal);
        if (last.ofConfiguration && !settingsUsable(system)) return ExitStatus::wrongUse;
    }
    Status stored;
    for (const Assignment& assignment : assignments) {
        if (stored.ok()) stored = assignment.store();
    }
    return conclude(session, stored, "Enregistré.");
}

}  // namespace

ExitStatus options(Session& session, const Arguments& arguments) {
    const bool shows = arguments.edit.action == Action::show;
    ExitStatus refusal = ExitStatus::clean;
    const bool ready = shows ? prepareReading(session, arguments, refusal)
                             : prepareEditing(session, arguments, refusal);
    if (!ready) return refusal;
    return shows ? showOptions(session, arguments) : setOptions(session, arguments);
}

}  // namespace coffrelune::console
