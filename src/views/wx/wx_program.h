#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/desktop_services.h"
#include "platform/file_service.h"
#include "platform/services.h"

namespace coffrelune {

/// What the windows need of the system they stand on. Everything outlives the program.
struct WxServices {
    FileService& files;
    Clock& clock;
    DriveInformation& drives;
    /// From the core's form of a path to the system's own, and back.
    std::function<std::string(const std::string&)> toNative;
    std::function<std::string(const std::string&)> fromNative;
    /// Filter that the file chooser begins with, from 0: programs bear an extension or they do not.
    int firstFilter = 0;
    /// How long a notice that no window can show stands in a box of its own; 0 where stderr is
    /// read.
    int noticeSeconds = 0;
};

/// The toolkit, from its start to its end. One at a time in a process.
class WxProgram {
  public:
    explicit WxProgram(WxServices services);
    WxProgram(const WxProgram&) = delete;
    WxProgram& operator=(const WxProgram&) = delete;
    ~WxProgram();

    /// False when there is no display to open windows on; nothing else may be called then.
    bool start();
    /// Windows of the desktop. showModal() of the main window is the program's main loop.
    WindowService& windows();
    /// The end of the user's session has interrupted a run.
    bool interruptedBySession() const;

  private:
    class Running;

    WxServices services_;
    std::unique_ptr<Running> running_;
};

}  // namespace coffrelune
