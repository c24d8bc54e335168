#pragma once

#include <string>

#include "platform/posix/desktop/autostart_entry.h"
#include "platform/posix/desktop/desktop_sounds.h"
#include "platform/posix/desktop/posix_drive_information.h"
#include "platform/posix/desktop/posix_shell.h"

namespace coffrelune {

struct DesktopOptions {
    std::string autostartDirectory;  // native; empty when the environment tells no home
    SoundSources sounds;             // its search path serves the shell too
    VolumeSources volumes = {};

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
          sounds_(table, options.sounds) {}
    PosixDesktop(const PosixDesktop&) = delete;
    PosixDesktop& operator=(const PosixDesktop&) = delete;

    /// References to the services of this object, which outlives them.
    Desktop desktop() { return {shell_, driveInformation_, registry_}; }
    SoundService& sounds() { return sounds_; }

  private:
    PosixShell shell_;
    PosixDriveInformation driveInformation_;
    AutostartEntry registry_;
    DesktopSounds sounds_;
};

}  // namespace coffrelune
