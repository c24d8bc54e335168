#include "platform/posix/desktop/planned_texts.h"

#include <array>
#include <sstream>
#include <string_view>

namespace coffrelune {
namespace {

constexpr std::string_view homeVariable = "COFFRELUNE_HOME=";
constexpr std::string_view mark = "# Coffrelune, sauvegarde planifiée de : ";

std::string hexadecimal(char c) {
    constexpr std::string_view digits = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(c);
    return {digits[byte >> 4], digits[byte & 0xF]};
}

/// On one line, whatever a configuration is called.
std::string onOneLine(std::string text) {
    for (char& c : text) {
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    }
    return text;
}

/// One word of a command or of an environment: quoted, and no specifier or variable of the
/// manager's.
std::string unitWord(std::string_view word, bool isCommand) {
    std::string quoted = "\"";
    for (const char c : word) {
        if (static_cast<unsigned char>(c) < ' ') {
            quoted += "\\x" + hexadecimal(c);
            continue;
        }
        if (c == '"' || c == '\\') quoted += '\\';
        if (c == '%' || (c == '$' && isCommand)) quoted += c;
        quoted += c;
    }
    return quoted + '"';
}

/// One word for a shell, on a line where cron takes "%" for the end of it.
std::string cronWord(std::string_view word) {
    std::string quoted = "'";
    for (const char c : word) {
        if (c == '\'') {
            quoted += "'\\''";
        } else {
            if (c == '%') quoted += "'\\%'";
            if (c != '%') quoted += c == '\n' ? ' ' : c;
        }
    }
    return quoted + "'";
}

std::string unitWords(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + unitWord(word, true);
    return text;
}

std::string cronWords(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + cronWord(word);
    return text;
}

/// The command with the first of `changes` that it holds; empty when it holds none.
std::string commandChanged(const std::string& command, const std::vector<WordChange>& changes,
                           std::string (*written)(const std::vector<std::string>& words)) {
    for (const WordChange& change : changes) {
        const std::string old = " " + written(change.from);
        const auto at = command.find(old);
        if (at == std::string::npos) continue;
        const auto end = at + old.size();
        if (end < command.size() && command[end] != ' ') continue;
        return command.substr(0, at) + " " + written(change.to) + command.substr(end);
    }
    return {};
}

/// Whether a line of a crontab backs up this configuration: under a mark may stand one of the
/// user's own, who has taken ours away.
bool isLineOf(const std::string& line, const std::string& name) {
    const std::vector<WordChange> words = {{{"--config", name}, {}}, {{"/Auto", "/" + name}, {}}};
    return !commandChanged(line, words, cronWords).empty();
}

std::string homeWord(const std::string& home) {
    return unitWord(std::string(homeVariable) + home, false);
}

std::string titleOf(const std::string& name) {
    return "Description=Coffrelune, sauvegarde de " + onOneLine(name);
}

std::string cronSchedule(const PlannedTask& task) {
    const auto number = [](const std::string& digits) { return std::to_string(std::stoi(digits)); };
    std::string days;
    for (const int day : task.days) days += (days.empty() ? "" : ",") + std::to_string(day);
    return number(task.time.substr(3)) + " " + number(task.time.substr(0, 2)) + " * * " +
           (days.empty() ? "*" : days);
}

}  // namespace

std::string serviceText(const PlannedTask& task, const std::vector<std::string>& words,
                        const std::string& home) {
    std::string text = "# Écrit par Coffrelune (coffrelune-console planifier).\n[Unit]\n";
    text += titleOf(task.name) + "\n\n[Service]\n";
    text += "Type=oneshot\n";
    if (!home.empty()) text += "Environment=" + homeWord(home) + "\n";
    return text + "ExecStart=" + unitWords(words) + "\n";
}

std::string timerText(const PlannedTask& task) {
    constexpr std::array names = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
    std::string days;
    for (const int day : task.days) {
        days +=
            (days.empty() ? "" : ",") + std::string(names.at(static_cast<std::size_t>(day) - 1));
    }
    // A time that was missed, the computer being off, is made up for when it starts.
    return "# Écrit par Coffrelune (coffrelune-console planifier).\n[Unit]\n" + titleOf(task.name) +
           "\n\n[Timer]\nOnCalendar=" + days + (days.empty() ? "" : " ") + "*-*-* " + task.time +
           ":00\nPersistent=true\n\n[Install]\nWantedBy=timers.target\n";
}

std::string unitName(const std::string& name) {
    std::string unit = "coffrelune-";
    for (const char c : name) {
        const bool plain =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        unit += plain ? std::string(1, c) : '_' + hexadecimal(c);
    }
    return unit;
}

std::string unitValue(const std::string& text, const std::string& key) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(key + "=")) return line.substr(key.size() + 1);
    }
    return {};
}

std::string crontabWithout(const std::string& crontab, const std::string& name) {
    const std::string marked = std::string(mark) + onOneLine(name);
    std::istringstream lines(crontab);
    std::string kept;
    bool announced = false;
    for (std::string line; std::getline(lines, line);) {
        const bool isOurs = line == marked || (announced && isLineOf(line, name));
        announced = line == marked;
        if (!isOurs) kept += line + "\n";
    }
    return kept;
}

std::string crontabWith(const std::string& crontab, const PlannedTask& task,
                        const std::vector<std::string>& words, const std::string& home) {
    std::string text = crontabWithout(crontab, task.name);
    text.append(mark).append(onOneLine(task.name)).append("\n").append(cronSchedule(task));
    if (!home.empty()) text += " " + std::string(homeVariable) + cronWord(home);
    return text + " " + cronWords(words) + "\n";
}

std::string serviceRenamed(const std::string& service, const std::string& from,
                           const std::string& to, const std::vector<WordChange>& changes) {
    constexpr std::string_view key = "ExecStart=";
    std::istringstream lines(service);
    std::string text;
    bool changed = false;
    for (std::string line; std::getline(lines, line);) {
        if (line == titleOf(from)) line = titleOf(to);
        // Others of the user's own may stand beside it.
        const std::string now =
            line.starts_with(key) ? commandChanged(line, changes, unitWords) : std::string();
        changed = changed || !now.empty();
        text += (now.empty() ? line : now) + "\n";
    }
    return changed ? text : std::string();
}

std::string timerRenamed(const std::string& timer, const std::string& from, const std::string& to) {
    std::istringstream lines(timer);
    std::string text;
    for (std::string line; std::getline(lines, line);) {
        text += (line == titleOf(from) ? titleOf(to) : line) + "\n";
    }
    return text;
}

std::string crontabRenamed(const std::string& crontab, const std::string& from,
                           const std::string& to, const std::vector<WordChange>& changes) {
    const std::string line = commandChanged(crontabLine(crontab, from), changes, cronWords);
    if (line.empty()) return {};
    std::string text = crontabWithout(crontabWithout(crontab, from), to);
    return text.append(mark).append(onOneLine(to)).append("\n").append(line).append("\n");
}

bool serviceHasHome(const std::string& service, const std::string& home) {
    const std::string set = unitValue(service, "Environment");
    return set == (home.empty() ? std::string() : homeWord(home));
}

bool cronCommandHasHome(const std::string& command, const std::string& home) {
    if (home.empty()) return !command.starts_with(homeVariable);
    return command.starts_with(std::string(homeVariable) + cronWord(home) + " ");
}

std::string crontabLine(const std::string& crontab, const std::string& name) {
    const std::string marked = std::string(mark) + onOneLine(name);
    std::istringstream lines(crontab);
    for (std::string line; std::getline(lines, line);) {
        while (line == marked && std::getline(lines, line)) {
            if (isLineOf(line, name)) return line;
        }
    }
    return {};
}

}  // namespace coffrelune
