#include "platform/posix/desktop/posix_task_scheduler.h"

#include <unistd.h>

#include <cerrno>

#include "platform/posix/desktop/directories.h"
#include "platform/posix/desktop/planned_texts.h"
#include "platform/posix/desktop/programs.h"
#include "platform/posix/errors.h"
#include "platform/posix/native_path.h"
#include "platform/posix/whole_file.h"

namespace coffrelune {
namespace {

constexpr std::uint64_t longest = 1U << 20;  // of what is read, in bytes

}  // namespace

SchedulerOptions SchedulerOptions::fromEnvironment(const char* (*variable)(const char* name)) {
    const auto textOf = [&](const char* name) {
        const char* text = variable(name);
        return std::string(text == nullptr ? "" : text);
    };
    SchedulerOptions options;
    options.searchPath = textOf("PATH");
    options.home = textOf("COFFRELUNE_HOME");
    options.configurationDirectory = coffrelune::configurationDirectory(variable);
    return options;
}

std::string PosixTaskScheduler::unitPath(const std::string& name, const char* ending) const {
    if (options_.configurationDirectory.empty()) return {};
    return joinNative(options_.configurationDirectory, "systemd/user/" + unitName(name) + ending);
}

bool PosixTaskScheduler::callManager(const std::vector<std::string>& words) {
    const std::string program = findProgram("systemctl", options_.searchPath);
    if (program.empty()) return false;
    std::vector<std::string> command = {program, "--user"};
    command.insert(command.end(), words.begin(), words.end());
    return runProgram(command).status == 0;
}

// The program may be there, and no manager run for the user.
bool PosixTaskScheduler::hasManager() {
    return !options_.configurationDirectory.empty() && callManager({"show-environment"});
}

bool PosixTaskScheduler::readCrontab(std::string& text) {
    const std::string program = findProgram("crontab", options_.searchPath);
    if (program.empty()) return false;
    const ProgramEnd listed = runProgram({program, "-l"});
    text = listed.output;
    if (listed.status == 0) return true;
    // It fails for a user who has none, and says so. After any other failure nobody knows what
    // would be written over.
    text.clear();
    return listed.errors.find("no crontab") != std::string::npos ||
           listed.errors.find("No such file") != std::string::npos;
}

Status PosixTaskScheduler::writeCrontab(const std::string& text) {
    const std::string program = findProgram("crontab", options_.searchPath);
    if (runProgram({program, "-"}, text).status == 0) return {};
    return Status::failure(error_number::accessDenied, "crontab");
}

Status PosixTaskScheduler::write(const PlannedTask& task, std::string& advice) {
    Place place;
    Status located = table_.paths().locate(task.program, place);
    if (!located.ok()) return located;
    std::vector<std::string> words = {place.native};
    words.insert(words.end(), task.arguments.begin(), task.arguments.end());
    std::string crontab;
    const bool hasCrontab = readCrontab(crontab);
    if (hasManager()) {
        Status written =
            writeTimer(task.name, serviceText(task, words, options_.home), timerText(task));
        // One of the two is enough.
        if (written.ok() && hasCrontab && !crontabLine(crontab, task.name).empty()) {
            written = writeCrontab(crontabWithout(crontab, task.name));
        }
        advice =
            "Ce timer part pendant que votre session est ouverte. Pour qu'il parte aussi sans "
            "session : loginctl enable-linger";
        return written;
    }
    if (!hasCrontab) return Status::failure(error_number::notSupported, task.name);
    return writeCrontab(crontabWith(crontab, task, words, options_.home));
}

Status PosixTaskScheduler::writeTimer(const std::string& name, const std::string& serviceUnit,
                                      const std::string& timerUnit) {
    const std::string directory = joinNative(options_.configurationDirectory, "systemd/user");
    int error = makeDirectories(directory);
    const auto put = [&](const char* ending, const std::string& text) {
        if (error == 0) error = writeWholeFile(unitPath(name, ending), text, Durability::now);
    };
    put(".service", serviceUnit);
    put(".timer", timerUnit);
    if (error != 0) return Status::failure(windowsError(error), name);
    const std::string timer = unitName(name) + ".timer";
    // Started anew, so that another time than before counts at once.
    if (callManager({"daemon-reload"}) && callManager({"enable", timer}) &&
        callManager({"restart", timer})) {
        return {};
    }
    (void)removeTimer(name);  // what is left would start nothing
    return Status::failure(error_number::generalFailure, timer);
}

Status PosixTaskScheduler::removeTimer(const std::string& name) {
    const std::string timer = unitPath(name, ".timer");
    if (timer.empty() || access(timer.c_str(), F_OK) != 0) {
        return Status::failure(error_number::fileNotFound, name);
    }
    // Where no manager runs there is nothing to be stopped.
    (void)callManager({"disable", "--now", unitName(name) + ".timer"});
    const std::string service = unitPath(name, ".service");
    if (unlink(timer.c_str()) != 0) return Status::failure(windowsError(errno), name);
    if (unlink(service.c_str()) != 0 && errno != ENOENT) {
        return Status::failure(windowsError(errno), name);
    }
    const std::string link =
        joinNative(options_.configurationDirectory,
                   "systemd/user/timers.target.wants/" + unitName(name) + ".timer");
    (void)unlink(link.c_str());  // the manager has done it where one runs
    (void)callManager({"daemon-reload"});
    return {};
}

Status PosixTaskScheduler::read(const std::string& name, PlannedEntry& entry) {
    std::string text;
    const std::string timer = unitPath(name, ".timer");
    if (!timer.empty() && readWholeFile(timer, longest, text) == 0) {
        std::string service;
        (void)readWholeFile(unitPath(name, ".service"), longest, service);
        entry = {"timer systemd " + timer, unitValue(text, "OnCalendar"),
                 unitValue(service, "ExecStart"), serviceHasHome(service, options_.home)};
        return {};
    }
    if (!readCrontab(text)) text.clear();
    const std::string line = crontabLine(text, name);
    std::size_t end = 0;
    for (int field = 0; field < 5 && end != std::string::npos; ++field) {
        end = line.find(' ', end == 0 ? 0 : end + 1);
    }
    if (line.empty() || end == std::string::npos) {
        return Status::failure(error_number::fileNotFound, name);
    }
    const std::string command = line.substr(end + 1);
    entry = {"crontab", line.substr(0, end), command, cronCommandHasHome(command, options_.home)};
    return {};
}

Status PosixTaskScheduler::remove(const std::string& name) {
    Status timer = removeTimer(name);
    if (!timer.ok() && !timer.saysAbsent()) return timer;
    std::string crontab;
    if (!readCrontab(crontab) || crontabLine(crontab, name).empty()) return timer;
    return writeCrontab(crontabWithout(crontab, name));
}

Status PosixTaskScheduler::renameTimer(const std::string& from, const std::string& to,
                                       const std::vector<WordChange>& changes) {
    const std::string path = unitPath(from, ".timer");
    if (path.empty() || access(path.c_str(), F_OK) != 0) {
        return Status::failure(error_number::fileNotFound, from);
    }
    // What `systemctl --user edit` has added is bound to the old name.
    for (const char* added : {".timer.d", ".service.d"}) {
        if (access(unitPath(from, added).c_str(), F_OK) == 0) {
            return Status::failure(error_number::invalidData, from);
        }
    }
    std::string timer;
    std::string service;
    const int error = readWholeFile(path, longest, timer);
    if (error != 0) return Status::failure(windowsError(error), from);
    // Without its service the timer starts nothing that is known here.
    if (readWholeFile(unitPath(from, ".service"), longest, service) != 0) service.clear();
    service = serviceRenamed(service, from, to, changes);
    if (service.empty()) return Status::failure(error_number::invalidData, from);
    Status written = writeTimer(to, service, timerRenamed(timer, from, to));
    return written.ok() ? removeTimer(from) : written;
}

Status PosixTaskScheduler::rename(const std::string& from, const std::string& to,
                                  const std::vector<WordChange>& changes) {
    Status timer = renameTimer(from, to, changes);
    if (!timer.saysAbsent()) return timer;
    std::string crontab;
    if (!readCrontab(crontab) || crontabLine(crontab, from).empty()) return timer;
    const std::string renamed = crontabRenamed(crontab, from, to, changes);
    if (renamed.empty()) return Status::failure(error_number::invalidData, from);
    return writeCrontab(renamed);
}

}  // namespace coffrelune
