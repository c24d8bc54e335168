#pragma once

#include "platform/win32/desktop/apartment.h"
#include "platform/win32/desktop/win32_drive_information.h"
#include "platform/win32/desktop/win32_registry.h"
#include "platform/win32/desktop/win32_shell.h"
#include "platform/win32/desktop/win32_sounds.h"

namespace coffrelune {

/// The services of a Windows desktop, besides those of Win32Platform. Belongs to the thread that
/// makes it.
class Win32Desktop {
  public:
    Win32Desktop() = default;
    Win32Desktop(const Win32Desktop&) = delete;
    Win32Desktop& operator=(const Win32Desktop&) = delete;

    /// References to the services of this object, which outlives them.
    Desktop desktop() { return {shell_, driveInformation_, registry_}; }
    SoundService& sounds() { return sounds_; }

  private:
    Apartment apartment_;  // first: the services below call the shell
    Win32Shell shell_;
    Win32DriveInformation driveInformation_;
    Win32Registry registry_;
    Win32Sounds sounds_;
};

}  // namespace coffrelune
