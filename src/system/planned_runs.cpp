#include "system/planned_runs.h"

#include <array>
#include <sstream>
#include <string_view>
#include <vector>

#include "system/date_time.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
namespace {

std::string quoted(const std::string& name) {
    return "« " + name + " »";
}

/// A time and its days, as the schedulers write them ("Mon", "Monday", "1").
struct Rhythm {
    std::string time;
    std::vector<std::string> days;  // none: every day
};

std::vector<std::string> split(const std::string& text, char at) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, at);) parts.push_back(part);
    return parts;
}

std::string twoDigits(const std::string& number) {
    return number.size() == 1 ? "0" + number : number;
}

/// Without a time when it is none of what the program writes.
Rhythm rhythmOf(const std::string& when) {
    const std::vector<std::string> words = split(when, ' ');
    const std::size_t count = words.size();
    // systemd: "Mon,Thu *-*-* 08:05:00"
    if ((count == 2 || count == 3) && words[count - 2] == "*-*-*" &&
        words.back().ends_with(":00")) {
        const std::string& time = words.back();
        return {time.substr(0, time.size() - 3),
                count == 3 ? split(words[0], ',') : std::vector<std::string>()};
    }
    // cron: "5 8 * * 1,4"
    if (count == 5 && words[2] == "*" && words[3] == "*") {
        return {twoDigits(words[1]) + ":" + twoDigits(words[0]),
                words[4] == "*" ? std::vector<std::string>() : split(words[4], ',')};
    }
    // Windows: "08:05 Monday Thursday"
    if (count == 0) return {};
    return {words[0], {words.begin() + 1, words.end()}};
}

/// Empty for what is no day.
std::string dayName(const std::string& day) {
    struct Day {
        std::string_view number;
        std::string_view english;
        const char* french;
    };
    constexpr std::array<Day, 7> days = {{{"1", "Monday", "lundi"},
                                          {"2", "Tuesday", "mardi"},
                                          {"3", "Wednesday", "mercredi"},
                                          {"4", "Thursday", "jeudi"},
                                          {"5", "Friday", "vendredi"},
                                          {"6", "Saturday", "samedi"},
                                          {"7", "Sunday", "dimanche"}}};
    for (const Day& known : days) {
        const bool named = day == known.english || day == known.english.substr(0, 3);
        if (named || day == known.number) return known.french;
    }
    return {};
}

/// Another copy of the program may have planned a run under the same name.
enum class Plan { none, own, foreign };

Plan planOf(TaskScheduler& scheduler, const std::string& name) {
    PlannedEntry entry;
    if (!scheduler.read(name, entry).ok()) return Plan::none;
    return entry.sameSettings ? Plan::own : Plan::foreign;
}

std::string toldForeign(const std::string& name) {
    return "Une sauvegarde de " + quoted(name) +
           " est planifiée avec d'autres réglages, ou les mêmes atteints autrement : elle reste. ";
}

constexpr const char* shown =
    "« coffrelune-console planifier » avec ces réglages la montre et la retire.";

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

std::string spokenPlan(const std::string& when) {
    const Rhythm rhythm = rhythmOf(when);
    if (!isTimeOfDay(rhythm.time)) return when;
    std::string days;
    for (std::size_t i = 0; i < rhythm.days.size(); ++i) {
        const std::string name = dayName(rhythm.days[i]);
        if (name.empty()) return when;
        if (i > 0) days += i + 1 == rhythm.days.size() ? " et " : ", ";
        days += name;
    }
    return (days.empty() ? "chaque jour" : days) + " à " + rhythm.time;
}

PlanFate movePlan(TaskScheduler& scheduler, const std::string& from, const std::string& to) {
    const Plan plan = planOf(scheduler, from);
    if (plan == Plan::none) return {};
    if (plan == Plan::foreign) return {{}, toldForeign(from) + shown};
    if (planOf(scheduler, to) == Plan::foreign) {
        return {Status::failure(error_number::alreadyExists, to),
                toldForeign(to) + "Celle de " + quoted(from) + " n'a donc pas suivi. " + shown};
    }
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
    const Plan plan = planOf(scheduler, name);
    if (plan == Plan::none) return {};
    if (plan == Plan::foreign) return {{}, toldForeign(name) + shown};
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
