#pragma once

#include <string>

#include "platform/task_scheduler.h"

namespace coffrelune {

/// The Task Scheduler, through its own program: tasks of the user in the folder "Coffrelune".
class Win32TaskScheduler final : public TaskScheduler {
  public:
    Status write(const PlannedTask& task, std::string& advice) override;
    Status read(const std::string& name, PlannedEntry& entry) override;
    Status remove(const std::string& name) override;
    Status rename(const std::string& from, const std::string& to,
                  const std::vector<WordChange>& changes) override;
};

/// What the Task Scheduler reads. `day`: "2026-11-22", the first one.
/// https://learn.microsoft.com/windows/win32/taskschd/task-scheduler-schema
std::string taskXml(const PlannedTask& task, const std::string& day);

/// Such a text after the task of `from` has become that of `to`: its title, and the first of
/// `changes` whose words its arguments hold. Empty when they hold none, or when the text has lost a
/// character on its way here.
std::string taskXmlRenamed(const std::string& xml, const std::string& from, const std::string& to,
                           const std::vector<WordChange>& changes);

/// The name of a configuration's task: what no task's name may hold is written "_".
std::string taskName(const std::string& configuration);

/// The arguments as one text, which the program's start-up takes apart again.
std::string argumentLine(const std::vector<std::string>& arguments);

}  // namespace coffrelune
