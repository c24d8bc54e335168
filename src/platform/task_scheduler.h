#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/status.h"

namespace coffrelune {

/// A program that the system is to start by itself, for one configuration.
struct PlannedTask {
    std::string name;     // of the configuration
    std::string program;  // in the core's form
    std::vector<std::string> arguments;
    std::string time;       // "hh:nn"
    std::vector<int> days;  // 1 Monday to 7 Sunday; none: every day
};

/// What is planned for a configuration.
struct PlannedEntry {
    std::string place;         // "timer systemd /home/…"
    std::string when;          // as the system's scheduler writes it
    std::string command;       // the same
    bool sameSettings = true;  // it works on the settings that this program has
};

/// Neighbouring words of a planned command, and what takes their place.
struct WordChange {
    std::vector<std::string> from;
    std::vector<std::string> to;
};

/// The scheduler of the system. A configuration has one task at most, and nothing that somebody
/// else has planned is ever touched.
class TaskScheduler {
  public:
    virtual ~TaskScheduler() = default;

    /// Plans the task, in the place of the one that the configuration has. 50 where there is no
    /// scheduler. `advice`: what else the user should know, or empty.
    virtual Status write(const PlannedTask& task, std::string& advice) = 0;
    /// 2 when nothing is planned.
    virtual Status read(const std::string& name, PlannedEntry& entry) = 0;
    /// 2 when nothing is planned.
    virtual Status remove(const std::string& name) = 0;
    /// Moves what is planned for `from` to `to`, in the place of what that one has: same times,
    /// same command but for the first of `changes` whose words it holds. 2 when nothing is planned,
    /// 13 when the command holds none of them, as somebody else may have written it: it stays then.
    virtual Status rename(const std::string& from, const std::string& to,
                          const std::vector<WordChange>& changes) = 0;
};

}  // namespace coffrelune
