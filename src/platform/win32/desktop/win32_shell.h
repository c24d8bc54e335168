#pragma once

#include <string>

#include "platform/desktop_services.h"

namespace coffrelune {

class Win32Shell final : public ShellService {
  public:
    void open(const std::string& target, const std::string& parameters) override;
    void showProperties(const std::string& path) override;
    void openTaskScheduler() override;
    void playSystemSound(const std::string& name) override;
};

/// The console of the Task Scheduler, in the system's own directory.
std::string taskSchedulerConsole();

}  // namespace coffrelune
