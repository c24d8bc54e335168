#pragma once

#include <cstdint>
#include <string>

#include "platform/win32/wide_text.h"
#include "platform/win32/win32_files.h"
#include "platform/win32/win32_services.h"

namespace coffrelune {

/// Absolute path of the directory that stands for "the executable's directory", in the core's form:
/// that of the environment variable COFFRELUNE_HOME when it is set and not empty, else the
/// executable's own; where nothing may be written there, "Coffrelune" in the user's %APPDATA%,
/// which is made at once.
std::string settingsDirectory();

/// The running program's file, in the core's form.
std::string executablePath();

/// systemLevel() of the running system; 0 when it does not tell its version. Windows tells one
/// that it knows the program's manifest to name, which is enough to tell old systems from new ones.
std::int16_t ownSystemLevel();

/// Every service of a Windows system but its windows and the desktop's.
class Win32Platform {
  public:
    /// From here on the calling thread gets an error, instead of the user a system box, when it
    /// reads a drive without a medium. Programs that it starts do not inherit this.
    Win32Platform();
    Win32Platform(const Win32Platform&) = delete;
    Win32Platform& operator=(const Win32Platform&) = delete;

    FileService& files() { return files_; }
    DriveService& drives() { return drives_; }
    Clock& clock() { return clock_; }
    Locale& locale() { return locale_; }
    AnsiCodec& ansi() { return ansi_; }
    SoundService& sounds() { return sounds_; }
    InstanceGuard& guard() { return guard_; }

  private:
    Win32Files files_;
    Win32Drives drives_;
    Win32Guard guard_;
    Win32Clock clock_;
    Win32Locale locale_;
    SilentSounds sounds_;
    AnsiCodePage ansi_;
};

}  // namespace coffrelune
