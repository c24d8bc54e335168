#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/content_reader.h"
#include "platform/desktop_services.h"
#include "platform/output_file.h"
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

/// What the system tells of the drives of a platform, which outlives it.
std::unique_ptr<DriveInformation> makeDriveInformation(NativePlatform& platform);

/// Reads what the files of a platform hold; the platform outlives it.
std::unique_ptr<ContentReader> makeContentReader(NativePlatform& platform);

/// Empties a file, or creates it. `path`: in the core's form.
Status createOutputFile(NativePlatform& platform, const std::string& path,
                        std::unique_ptr<OutputFile>& file);

/// The system's scheduler; the platform outlives it.
std::unique_ptr<TaskScheduler> makeTaskScheduler(NativePlatform& platform);

/// A short message of the user's desktop, where there is one.
void notifyDesktop(NativePlatform& platform, const std::string& title, const std::string& text);

/// A path of the core as the user's other programs know it; empty when it leads nowhere.
std::string nativePath(NativePlatform& platform, const std::string& path);

/// Where volumes are mounted, in the core's form: a directory missing there is a volume that is not
/// plugged in. None where every volume has a letter.
std::vector<std::string> volumePlaces();

}  // namespace coffrelune
