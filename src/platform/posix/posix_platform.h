#pragma once

#include <set>
#include <string>
#include <vector>

#include "platform/characters.h"
#include "platform/posix/drive_table.h"
#include "platform/posix/posix_files.h"
#include "platform/posix/posix_services.h"

namespace coffrelune {

/// Absolute native path of the directory that stands for "the executable's directory": that of the
/// environment variable COFFRELUNE_HOME when it is set and not empty, else what
/// settingsDirectoryFor() gives.
std::string settingsDirectory();

/// Where a program in the directory `program` keeps its settings: beside itself, unless it may not
/// write there or was installed for everyone (below /usr); then in "coffrelune" below the user's
/// configuration directory, which is made at once with links to the sounds that came with the
/// program. `configuration` may be empty: nobody's.
std::string settingsDirectoryFor(const std::string& program, const std::string& configuration);

/// Absolute native path of the running program's file, links resolved; empty when the system does
/// not tell. DriveService::fromNative turns it into the core's form.
std::string executablePath();

struct PosixOptions {
    std::string settingsDirectory;  // absolute native path; `Lecteurs.ini` is kept there
    MountSources mounts;
    MountProbe probe = probeMount;
};

/// Every service of a Linux system but its windows.
class PosixPlatform {
  public:
    explicit PosixPlatform(const PosixOptions& options);

    /// With drives and shares of the caller's own: none is taken from the system's mount table and
    /// no letter is remembered.
    explicit PosixPlatform(std::vector<PathRoot> roots, std::set<dev_t> pseudoDevices = {},
                           Descent descent = Descent::kernel, const MountSources& mounts = {});

    PosixPlatform(const PosixPlatform&) = delete;
    PosixPlatform& operator=(const PosixPlatform&) = delete;

    DriveTable& driveTable() { return table_; }
    FileService& files() { return files_; }
    DriveService& drives() { return drives_; }
    Clock& clock() { return clock_; }
    Locale& locale() { return locale_; }
    AnsiCodec& ansi() { return ansi_; }
    SoundService& sounds() { return sounds_; }
    InstanceGuard& guard() { return guard_; }

  private:
    DriveTable table_;  // first: the services below refer to it
    std::shared_ptr<TreeLocks> locks_ = std::make_shared<TreeLocks>();
    PosixFiles files_;
    PosixDrives drives_;
    PosixGuard guard_;
    PosixClock clock_;
    PosixLocale locale_;
    PosixSounds sounds_;
    Windows1252 ansi_;
};

}  // namespace coffrelune
