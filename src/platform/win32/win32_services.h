#pragma once

#include <string>
#include <vector>

#include "platform/services.h"
#include "platform/win32/unique_handle.h"

namespace coffrelune {

class Win32Drives final : public DriveService {
  public:
    std::vector<std::string> roots() override;
    std::string windowsDirectory() override;
    std::string fromNative(const std::string& typed) override;
    std::string fromWindow(const std::string& entered) override;
};

/// Calendar fields in the system's time zone. `units`: of 100 ns since 1601, UTC.
LocalTime toLocalTime(std::uint64_t units);

class Win32Clock final : public Clock {
  public:
    LocalTime now() override;
    LocalTime localTime(std::uint64_t fileTime) override;
    std::int64_t monotonicMilliseconds() override;
};

/// Numbers as the user chose in the system's regional settings. What those leave empty is the
/// French comma.
class Win32Locale final : public Locale {
  public:
    Win32Locale();
    /// `name`: a language tag ("fr-FR"), whose own settings count.
    explicit Win32Locale(const std::string& name);

    std::string decimalSeparator() const override { return decimal_; }

  private:
    void take(const wchar_t* name);

    std::string decimal_ = ",";
};

/// A terminal session has no sound at the end of a run.
class SilentSounds final : public SoundService {
  public:
    int deviceCount() override { return 0; }
    void play(const std::string&) override {}
};

/// Holds a named object of the system that stands for the settings directory, whatever its
/// spelling or the link that leads there. It is one of the whole machine: a task that the Task
/// Scheduler runs in a session of its own, and another user on the same settings, are refused as
/// well. Nothing is left on the disk, and the object goes with the process however that ends.
/// Another machine that uses the same directory through a share is not seen.
class Win32Guard final : public InstanceGuard {
  public:
    bool claim(const std::string& directory) override;

  private:
    UniqueHandle object_;
};

/// Of the object that stands for a directory.
std::string guardName(const std::string& directory);

}  // namespace coffrelune
