#pragma once

#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "platform/posix/drive_table.h"
#include "platform/posix/hold.h"
#include "platform/services.h"

namespace coffrelune {

class PosixDrives final : public DriveService {
  public:
    /// `table` is not owned and must outlive this object.
    explicit PosixDrives(DriveTable& table) : table_(table) {}

    std::vector<std::string> roots() override;
    std::string windowsDirectory() override { return {}; }
    std::string fromNative(const std::string& typed) override;
    std::string fromWindow(const std::string& entered) override;

  private:
    DriveTable& table_;
};

/// Calendar fields in the environment's time zone.
LocalTime toLocalTime(const timespec& time);

class PosixClock final : public Clock {
  public:
    LocalTime now() override;
    LocalTime localTime(std::uint64_t fileTime) override;
    std::int64_t monotonicMilliseconds() override;
};

/// Numbers as the environment's LC_NUMERIC writes them. A locale that says nothing ("C") gives the
/// French comma and blank.
class PosixLocale final : public Locale {
  public:
    /// `name`: of a locale of the system; "" for the environment's.
    explicit PosixLocale(const char* name = "");

    /// From what the system says; `groups`, the separator of groups, may be empty.
    PosixLocale(const std::string& decimal, const std::string& groups);

    std::string decimalSeparator() const override { return decimal_; }

  private:
    void take(const std::string& decimal, const std::string& groups);

    std::string decimal_ = ",";
};

/// A terminal session has no sound at the end of a run.
class PosixSounds final : public SoundService {
  public:
    int deviceCount() override { return 0; }
    void play(const std::string&) override {}
};

/// Locks the directory itself, so that nothing is left behind on the disk.
class PosixGuard final : public InstanceGuard {
  public:
    /// `locks`: those of the process, so that it may still work on this very directory.
    PosixGuard(const DriveTable& table, std::shared_ptr<TreeLocks> locks)
        : table_(table), locks_(std::move(locks)) {}

    bool claim(const std::string& directory) override;

  private:
    const DriveTable& table_;
    std::shared_ptr<TreeLocks> locks_;
    TreeClaim claim_;
};

}  // namespace coffrelune
