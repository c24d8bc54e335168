#pragma once

#include <string>
#include <vector>

#include "platform/posix/drive_table.h"
#include "platform/task_scheduler.h"

namespace coffrelune {

struct SchedulerOptions {
    std::string searchPath;              // as in $PATH
    std::string configurationDirectory;  // native, of the user's; empty: there is none
    std::string home;                    // value of COFFRELUNE_HOME, or empty

    /// What `variable` tells (as std::getenv does, null for none).
    static SchedulerOptions fromEnvironment(const char* (*variable)(const char* name));
};

/// A timer of the user's service manager where there is one, else a line of the user's crontab.
class PosixTaskScheduler final : public TaskScheduler {
  public:
    /// `table` is not owned and must outlive this object.
    PosixTaskScheduler(const DriveTable& table, SchedulerOptions options)
        : table_(table), options_(std::move(options)) {}

    Status write(const PlannedTask& task, std::string& advice) override;
    Status read(const std::string& name, PlannedEntry& entry) override;
    Status remove(const std::string& name) override;
    Status rename(const std::string& from, const std::string& to,
                  const std::vector<WordChange>& changes) override;

  private:
    bool hasManager();
    bool callManager(const std::vector<std::string>& words);
    /// Writes both units and starts the timer; leaves nothing when that fails.
    Status writeTimer(const std::string& name, const std::string& service,
                      const std::string& timer);
    Status renameTimer(const std::string& from, const std::string& to,
                       const std::vector<WordChange>& changes);
    Status removeTimer(const std::string& name);
    Status writeCrontab(const std::string& text);
    /// False where there is no crontab program, or it cannot be read; an absent one is empty.
    bool readCrontab(std::string& text);
    std::string unitPath(const std::string& name, const char* ending) const;

    const DriveTable& table_;
    SchedulerOptions options_;
};

}  // namespace coffrelune
