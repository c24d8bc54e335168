#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/posix/drive_letters.h"
#include "platform/posix/mount_table.h"
#include "platform/posix/path_map.h"

namespace coffrelune {

/// Device of what is mounted at a directory; nothing when no volume is mounted there now.
using MountProbe = std::function<std::optional<dev_t>(const std::string& point)>;

/// Asks the system, without waking a network server or an automount.
std::optional<dev_t> probeMount(const std::string& point);

/// Which drives and shares exist, and where. One table for all services of a platform.
class DriveTable {
  public:
    /// Follows the system's mounts. `lettersFile`: native path of the file that remembers letters.
    DriveTable(MountSources sources, std::string lettersFile, MountProbe probe = probeMount);

    /// A table that never changes but for directories that come and go. `pseudoDevices`: devices
    /// to be taken for kernel pseudo file systems.
    explicit DriveTable(std::vector<PathRoot> roots, std::set<dev_t> pseudoDevices = {});

    /// Asks the system afresh.
    void refresh();

    const PathMap& paths() const { return paths_; }

    /// Roots of the drives present at the last refresh, by letter.
    std::vector<std::string> driveRoots() const;

    /// Turns what a person typed into the core's form. A path in the mount point of a volume that
    /// has a letter but is absent gets that letter too, so that nothing is written into the empty
    /// mount point of the system disk.
    std::string fromNative(const std::string& typed, const std::string& currentDirectory) const;

    /// The same of a text that entered through a window: unless it is absolute or begins with "~"
    /// alone, it stays as it is. `home`: native path of the home directory; not absolute: unknown.
    std::string fromWindow(const std::string& entered, const std::string& home) const;

    bool isPseudo(dev_t device) const { return pseudoDevices_.contains(device); }

    /// The path with links resolved, in one spelling for one place; `path` when it names none.
    std::string resolve(const std::string& path) const;

  private:
    void findAbsentPoints(const std::string& fstab, const std::map<std::string, char>& present);

    std::optional<MountSources> sources_;
    DriveLetters letters_;
    MountProbe probe_;
    std::vector<Mount> mounts_;
    std::set<dev_t> pseudoDevices_;
    PathMap paths_;
    std::map<char, std::string> absentPoints_;  // by letter
};

}  // namespace coffrelune
