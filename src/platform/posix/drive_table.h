#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/mount_table.h"
#include "platform/posix/path_map.h"

namespace coffrelune {

/// Which volume has which drive letter, remembered in a file from run to run:
///
///     [Lecteurs]
///     D=uuid:1234-ABCD
///     E=path:/mnt/x
///
/// A letter never changes its volume. While the file is damaged the letters that it still tells
/// hold, no other is given (it might have been another volume's) and the file is left alone.
class DriveLetters {
  public:
    /// `file`: native path; need not exist.
    explicit DriveLetters(std::string file) : file_(std::move(file)) {}

    /// Letters (D to Z) by identity; an identity that gets none is left out. A first sight is
    /// written to the file at once; when that fails the letter holds as long as this object.
    std::map<std::string, char> assign(const std::vector<std::string>& identities);

    /// Every letter with the identity of its volume, present or not.
    const std::map<char, std::string>& remembered() const { return volumes_; }

  private:
    using Volumes = std::map<char, std::string>;  // by letter; "" for one whose volume is in doubt

    void load();
    static bool parse(const std::string& bytes, Volumes& volumes);
    char freeLetter() const;
    std::string text() const;  // what the file is to hold

    std::string file_;
    Volumes volumes_;
    bool damaged_ = false;  // the file cannot be trusted or cannot be read
};

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

    /// Devices of kernel pseudo file systems, as they are now; a later refresh makes a new set.
    std::shared_ptr<const std::set<dev_t>> pseudoDevices() const { return pseudoDevices_; }

    /// The path with links resolved, in one spelling for one place; `path` when it names none.
    std::string resolve(const std::string& path) const;

  private:
    void findAbsentPoints(const std::string& fstab, const std::map<std::string, char>& present);

    std::optional<MountSources> sources_;
    DriveLetters letters_;
    MountProbe probe_;
    std::vector<Mount> mounts_;
    std::shared_ptr<const std::set<dev_t>> pseudoDevices_ =
        std::make_shared<const std::set<dev_t>>();
    PathMap paths_;
    std::map<char, std::string> absentPoints_;  // by letter
};

}  // namespace coffrelune
