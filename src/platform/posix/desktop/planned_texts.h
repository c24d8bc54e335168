#pragma once

#include <string>
#include <vector>

#include "platform/task_scheduler.h"

namespace coffrelune {

/// What is planned, in the words of those who start it. `words`: the command, the program's native
/// path first. `home`: the value of COFFRELUNE_HOME that the program needs, or empty.
/// https://www.freedesktop.org/software/systemd/man/latest/systemd.service.html
std::string serviceText(const PlannedTask& task, const std::vector<std::string>& words,
                        const std::string& home);
std::string timerText(const PlannedTask& task);

/// The name of both units, without their endings: letters and digits stay, any other byte is
/// written "_2f".
std::string unitName(const std::string& name);

/// The value of a key in such a text; empty without one.
std::string unitValue(const std::string& text, const std::string& key);

/// The user's crontab with the task, in the place of the one that it had.
std::string crontabWith(const std::string& crontab, const PlannedTask& task,
                        const std::vector<std::string>& words, const std::string& home);
/// The user's crontab without the task of a configuration.
std::string crontabWithout(const std::string& crontab, const std::string& name);
/// The texts of a service and of the crontab after the task of `from` has become that of `to`: its
/// titles, and the first of `changes` whose words its command holds. Empty when it holds none.
std::string serviceRenamed(const std::string& service, const std::string& from,
                           const std::string& to, const std::vector<WordChange>& changes);
std::string timerRenamed(const std::string& timer, const std::string& from, const std::string& to);
std::string crontabRenamed(const std::string& crontab, const std::string& from,
                           const std::string& to, const std::vector<WordChange>& changes);
/// Whether a service, or the command of a crontab's line, is run with this value of
/// COFFRELUNE_HOME (empty: with none).
bool serviceHasHome(const std::string& service, const std::string& home);
bool cronCommandHasHome(const std::string& command, const std::string& home);
/// The line that starts it; empty without one.
std::string crontabLine(const std::string& crontab, const std::string& name);

}  // namespace coffrelune
