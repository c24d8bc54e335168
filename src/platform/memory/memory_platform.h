#pragma once

#include "platform/characters.h"
#include "platform/memory/memory_disk.h"
#include "platform/memory/memory_files.h"
#include "platform/memory/memory_services.h"
#include "platform/memory/memory_windows.h"
#include "platform/platform.h"

namespace coffrelune {

/// A whole system in memory. A test starts with
///
///     MemoryPlatform system;
///     system.disk().file("C:\\Docs\\a.txt", "content", fileTimeAt(2024, 3, 1));
///     system.disk().volume("F:\\");
///     Platform platform = system.platform();
///
/// and ends with EXPECT_THAT(system.windows().problems(), testing::IsEmpty()).
class MemoryPlatform {
  public:
    explicit MemoryPlatform(MemoryDisk::Names names = MemoryDisk::Names::caseSensitive)
        : disk_(names) {}
    MemoryPlatform(const MemoryPlatform&) = delete;
    MemoryPlatform& operator=(const MemoryPlatform&) = delete;

    MemoryDisk& disk() { return disk_; }
    MemoryFiles& files() { return files_; }
    MemoryClock& clock() { return clock_; }
    MemoryDrives& drives() { return drives_; }
    MemoryLocale& locale() { return locale_; }
    MemorySounds& sounds() { return sounds_; }
    MemoryWindows& windows() { return windows_; }
    MemoryGuard& guard() { return guard_; }

    /// References to the services of this object, which outlives them.
    Platform platform() { return platform(files_); }
    /// The same with another file service, such as FaultyFiles over files().
    Platform platform(FileService& files) {
        return {files, drives_, clock_, locale_, ansi_, sounds_, windows_};
    }

  private:
    MemoryDisk disk_;
    MemoryClock clock_;
    MemoryFiles files_{disk_, clock_};
    MemoryDrives drives_{disk_};
    MemoryLocale locale_;
    Windows1252 ansi_;
    MemorySounds sounds_;
    MemoryWindows windows_;
    MemoryGuard guard_;
};

}  // namespace coffrelune
