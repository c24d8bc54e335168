#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "platform/memory/memory_disk.h"
#include "platform/services.h"

namespace coffrelune {

class MemoryLocale final : public Locale {
  public:
    std::string decimalSeparator() const override { return decimal_; }
    void set(const std::string& decimal) { decimal_ = decimal; }

  private:
    std::string decimal_ = ",";
};

/// The drives that the disk holds and that are present.
class MemoryDrives final : public DriveService {
  public:
    explicit MemoryDrives(const MemoryDisk& disk) : disk_(disk) {}

    std::vector<std::string> roots() override { return disk_.driveRoots(); }
    std::string windowsDirectory() override { return windowsDirectory_; }
    std::string fromNative(const std::string& typed) override { return typed; }
    std::string fromWindow(const std::string& entered) override { return entered; }
    void setWindowsDirectory(const std::string& path) { windowsDirectory_ = path; }

  private:
    const MemoryDisk& disk_;
    std::string windowsDirectory_;
};

class MemorySounds final : public SoundService {
  public:
    int deviceCount() override { return deviceCount_; }
    void play(const std::string& path) override { played_.push_back(path); }
    void setDeviceCount(int count) { deviceCount_ = count; }
    const std::vector<std::string>& played() const { return played_; }

  private:
    int deviceCount_ = 1;
    std::vector<std::string> played_;
};

class MemoryGuard final : public InstanceGuard {
  public:
    bool claim(const std::string& directory) override {
        claims_.push_back(directory);
        return others_.count(directory) == 0;
    }
    /// Another process holds this directory.
    void setHeldByAnother(const std::string& directory) { others_.insert(directory); }
    /// The directories that the program claimed, refused ones included.
    const std::vector<std::string>& claims() const { return claims_; }

  private:
    std::set<std::string> others_;
    std::vector<std::string> claims_;
};

/// Units of 100 ns since 1601-01-01 of calendar fields, and back. In memory the local time zone is
/// UTC, so both directions are exact (to the millisecond).
std::uint64_t fileTimeOf(const LocalTime& time);
LocalTime localTimeOf(std::uint64_t fileTime);

/// Shorthand for tests: `fileTimeOf` of the fields.
std::uint64_t fileTimeAt(int year, int month, int day, int hour = 0, int minute = 0,
                         int second = 0);

/// A clock that moves only when told. The calendar and the monotonic reading advance together;
/// `set` moves the calendar alone, as a user does who sets the clock.
class MemoryClock final : public Clock {
  public:
    explicit MemoryClock(const LocalTime& start = {2024, 3, 15, 10, 0, 0, 0}) { set(start); }

    LocalTime now() override { return localTimeOf(fileTime_); }
    LocalTime localTime(std::uint64_t fileTime) override { return localTimeOf(fileTime); }
    std::int64_t monotonicMilliseconds() override { return monotonic_; }

    /// The reading of now() as the time of a file written at this moment.
    std::uint64_t fileTime() const { return fileTime_; }

    void set(const LocalTime& time) { fileTime_ = fileTimeOf(time); }

    /// Moves both readings on; `milliseconds` is not negative.
    void advance(std::int64_t milliseconds);
    void advanceSeconds(std::int64_t seconds) { advance(seconds * 1000); }

  private:
    std::uint64_t fileTime_ = 0;
    std::int64_t monotonic_ = 0;
};

}  // namespace coffrelune
