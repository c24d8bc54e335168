#pragma once

#include <cstdint>
#include <string>
#include <vector>

#ifdef _WIN32
#include "platform/win32/win32_platform.h"
#else
#include "platform/posix/posix_platform.h"
#endif

namespace coffrelune {

/// Every service, but the windows, of the system that the program is built for.
#ifdef _WIN32
using NativePlatform = Win32Platform;
#else
using NativePlatform = PosixPlatform;
#endif

/// The services for the settings in settingsPlace().
NativePlatform makeNativePlatform();

/// Absolute native path of the directory that stands for "the executable's directory".
std::string settingsPlace();

/// The arguments of the process, the program's name first, as UTF-8; raw bytes on Linux. What the
/// entry procedure was given counts only where the system hands it over unharmed.
std::vector<std::string> programArguments(int count, char** values);

#ifdef _WIN32
/// The command line of the process as the system keeps it, the program's name first.
std::string rawCommandLine();
#endif

/// systemLevel() of the system that the program runs on.
std::int16_t nativeSystemLevel();

/// Where volumes are mounted, in the core's form: a directory missing there is a volume that is not
/// plugged in. None where every volume has a letter.
std::vector<std::string> volumePlaces();

}  // namespace coffrelune
