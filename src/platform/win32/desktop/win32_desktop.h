#pragma once

#include <string>

#include "platform/desktop_services.h"
#include "platform/services.h"
#include "platform/win32/desktop/win32_drive_information.h"
#include "platform/win32/desktop/win32_task_scheduler.h"

namespace coffrelune {

/// The registry. Keys are opened for all access, as the machine's own Run key is only for those
/// who may change it.
class Win32Registry final : public RegistryService {
  public:
    /// The length that is handed over is that of the text alone, without a terminating NUL.
    Status setText(Root root, const std::string& key, const std::string& name,
                   const std::string& data) override;
    Status deleteValue(Root root, const std::string& key, const std::string& name) override;
};

/// Makes the calling thread one on which extensions of the shell can run, as long as this lives.
/// Does no harm where a toolkit has done so before.
class Apartment {
  public:
    Apartment();
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment();

  private:
    bool entered_;
};

class Win32Shell final : public ShellService {
  public:
    Win32Shell() = default;
    Win32Shell(const Win32Shell&) = delete;
    Win32Shell& operator=(const Win32Shell&) = delete;
    /// A message goes with what it belongs to: it stays long enough to be read first.
    ~Win32Shell() override;

    void open(const std::string& target, const std::string& parameters) override;
    void showProperties(const std::string& path) override;
    void openTaskScheduler() override;
    void notify(const std::string& title, const std::string& text) override;
    void playSystemSound(const std::string& name) override;

  private:
    void* notifier_ = nullptr;      // the hidden window that messages belong to
    std::uint64_t notifiedAt_ = 0;  // milliseconds since the system has started
};

/// The console of the Task Scheduler, in the system's own directory.
std::string taskSchedulerConsole();

/// Sounds through the system's own player of wave files.
class Win32Sounds final : public SoundService {
  public:
    int deviceCount() override;
    void play(const std::string& path) override;
};

/// The shell's own dialog to choose a directory (with `includeFiles` also a file), modal over the
/// window `owner` (HWND, may be null), under `prompt`, standing at `start` when that exists (the
/// core's form, may be empty). The calling thread must be one of an Apartment. The choice in the
/// core's form; empty when cancelled and for what is no place of the file system.
std::string chooseShellFolder(void* owner, bool includeFiles, const std::string& prompt,
                              const std::string& start);

/// The services of a Windows desktop, besides those of Win32Platform. Belongs to the thread that
/// makes it.
class Win32Desktop {
  public:
    Win32Desktop() = default;
    Win32Desktop(const Win32Desktop&) = delete;
    Win32Desktop& operator=(const Win32Desktop&) = delete;

    /// References to the services of this object, which outlives them.
    Desktop desktop() { return {shell_, driveInformation_, registry_, &tasks_}; }
    SoundService& sounds() { return sounds_; }

  private:
    Apartment apartment_;  // first: the services below call the shell
    Win32Shell shell_;
    Win32DriveInformation driveInformation_;
    Win32Registry registry_;
    Win32TaskScheduler tasks_;
    Win32Sounds sounds_;
};

}  // namespace coffrelune
