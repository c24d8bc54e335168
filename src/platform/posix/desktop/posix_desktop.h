#pragma once

#include <string>
#include <vector>

#include "platform/desktop_services.h"
#include "platform/posix/desktop/posix_drive_information.h"
#include "platform/posix/desktop/posix_task_scheduler.h"
#include "platform/posix/drive_table.h"
#include "platform/services.h"

namespace coffrelune {

/// The Run key as desktops know it: the value "Coffrelune" of the user is the file
/// "Coffrelune.desktop" among the entries that are started at logon. There is no other key (2), no
/// other value (50), and what starts for everyone is the administrator's (5).
/// https://specifications.freedesktop.org/autostart-spec/latest/
class AutostartEntry final : public RegistryService {
  public:
    /// `table` is not owned and must outlive this object. `directory`: native, of the user's
    /// autostart entries; made when the first one is written. An empty one stands for a user
    /// without a home: no entry can be written (3) and there is none (2).
    AutostartEntry(const DriveTable& table, std::string directory)
        : table_(table), directory_(std::move(directory)) {}

    /// `data`: the program's path in the core's form. An ".exe" at its end is dropped where only
    /// the file without it exists. The entry is replaced as a whole.
    Status setText(Root root, const std::string& key, const std::string& name,
                   const std::string& data) override;
    /// 2 when there is no entry.
    Status deleteValue(Root root, const std::string& key, const std::string& name) override;

  private:
    std::string file() const;

    const DriveTable& table_;
    std::string directory_;
};

/// A program's path as the value of an entry's Exec key: one quoted argument, escaped as an
/// argument, as a field code, and then as a text of the file.
std::string execValue(const std::string& native);

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
    bool hasTaskScheduler() override;
    void openTaskScheduler() override;
    void notify(const std::string& title, const std::string& text) override;
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

struct SoundSources {
    std::string searchPath;  // as in $PATH
    std::string cards = "/proc/asound/cards";
    std::vector<std::string> serverSockets;  // of sound servers, which may play elsewhere
};

/// Sounds through the player programs that desktops bring.
class DesktopSounds final : public SoundService {
  public:
    /// `table` is not owned and must outlive this object.
    DesktopSounds(const DriveTable& table, SoundSources sources)
        : table_(table), sources_(std::move(sources)) {}

    /// The sound cards; a sound server counts as one where there is none. None at all without a
    /// player: nothing could be heard.
    int deviceCount() override;
    void play(const std::string& path) override;

  private:
    int cardCount() const;
    bool hasServer() const;
    std::vector<std::string> playerOf(const std::string& native) const;  // empty without one

    const DriveTable& table_;
    SoundSources sources_;
};

struct DesktopOptions {
    std::string autostartDirectory;  // native; empty when the environment tells no home
    SoundSources sounds;             // its search path serves the shell too
    VolumeSources volumes = {};
    SchedulerOptions scheduler = {};

    /// What `variable` tells (as std::getenv does, null for none) and the system's own places.
    static DesktopOptions fromEnvironment(const char* (*variable)(const char* name));
};

/// The services of a Linux desktop, besides those of PosixPlatform.
class PosixDesktop {
  public:
    /// `table` is not owned and must outlive this object.
    PosixDesktop(DriveTable& table, const DesktopOptions& options)
        : shell_(table, options.sounds.searchPath),
          driveInformation_(table, options.volumes),
          registry_(table, options.autostartDirectory),
          sounds_(table, options.sounds),
          tasks_(table, options.scheduler) {}
    PosixDesktop(const PosixDesktop&) = delete;
    PosixDesktop& operator=(const PosixDesktop&) = delete;

    /// References to the services of this object, which outlives them.
    Desktop desktop() { return {shell_, driveInformation_, registry_, &tasks_}; }
    SoundService& sounds() { return sounds_; }

  private:
    PosixShell shell_;
    PosixDriveInformation driveInformation_;
    AutostartEntry registry_;
    DesktopSounds sounds_;
    PosixTaskScheduler tasks_;
};

}  // namespace coffrelune
