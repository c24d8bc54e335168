#pragma once

#include <set>
#include <string>
#include <vector>

#include "platform/memory/memory_disk.h"
#include "platform/services.h"

namespace coffrelune {

class MemoryLocale final : public Locale {
  public:
    std::string decimalSeparator() const override { return decimal_; }
    std::string groupSeparator() const override { return group_; }
    void set(const std::string& decimal, const std::string& group) {
        decimal_ = decimal;
        group_ = group;
    }

  private:
    std::string decimal_ = ",";
    std::string group_ = " ";
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

}  // namespace coffrelune
