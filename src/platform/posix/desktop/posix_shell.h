#pragma once

#include <string>

#include "platform/desktop_services.h"
#include "platform/posix/drive_table.h"

namespace coffrelune {

/// "file://" and the path, with every byte escaped that a URI or the argument syntax of a caller
/// could take for its own. `native` is absolute; any bytes.
std::string fileUri(const std::string& native);

/// The desktop's opener, file manager, scheduler and system sounds, each through its program.
class PosixShell final : public ShellService {
  public:
    /// `table` is not owned and must outlive this object. `searchPath`: as in $PATH.
    PosixShell(const DriveTable& table, std::string searchPath)
        : table_(table), searchPath_(std::move(searchPath)) {}

    /// A target without a directory is a program of the search path, as on a command line.
    void open(const std::string& target, const std::string& parameters) override;
    void showProperties(const std::string& path) override;
    void openTaskScheduler() override;
    void playSystemSound(const std::string& name) override;

  private:
    /// Where a target leads on this system; empty when nowhere.
    std::string nativeOf(const std::string& target) const;
    void openWithDesktop(const std::string& target);
    /// Starts the first program if it is installed. False when it is not.
    bool tryStart(std::vector<std::string> arguments);

    const DriveTable& table_;
    std::string searchPath_;
};

}  // namespace coffrelune
