#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_service.h"
#include "platform/memory/memory_node.h"

namespace coffrelune {

/// What a path leads to on the in-memory disk.
struct MemoryPlace {
    MemoryVolume* volume = nullptr;
    MemoryNode::Pointer parent;  // null for the top of a volume
    MemoryNode::Pointer node;    // null when nothing bears the last name
    std::string name;            // last component, as asked for
    std::string resolved;        // the whole path, links resolved, in the disk's own spelling
    MemoryNode::Pointer link;    // the last component when it is a link that was followed
};

struct MemoryHold;

/// A disk with drives and shares, held in memory, and the hand of the user on it: tests prepare and
/// inspect it with these functions, which ask no permission and record nothing. The program works
/// on it through MemoryFiles. Paths as in FileService; drive letters in either case.
class MemoryDisk {
  public:
    enum class Names { caseSensitive, caseInsensitive };

    explicit MemoryDisk(Names names = Names::caseSensitive) : names_(names) {}

    // ---- preparing ---------------------------------------------------------------------------
    /// Time of everything made without one: 2020-01-01 00:00:00.
    static constexpr std::uint64_t defaultTime = 132223104000000000;

    /// The volume that holds `path` ("F:\", "\\nas\photos"), made when there is none, to set its
    /// fields: `disk.volume("F:\\").present = false;`. The reference stays good.
    MemoryVolume& volume(const std::string& path);

    /// Makes or replaces a file; makes the volume and the directories above it as needed. All three
    /// times become `lastWrite`. The reference stays good until the file is removed or replaced.
    MemoryNode& file(const std::string& path, const std::string& content = {},
                     std::uint64_t lastWrite = defaultTime,
                     std::uint32_t attributes = attribute::normal);

    /// Makes a directory and those above it; one that exists is left as it is.
    MemoryNode& directory(const std::string& path, std::uint64_t lastWrite = defaultTime);

    /// Makes a link. `target` is a full path or relative to the link's directory; it need not
    /// exist.
    MemoryNode& link(const std::string& path, const std::string& target);

    /// Leaves a temporary file in `directory` as a copy does whose process was killed.
    void leftover(const std::string& directory);

    /// Removes a file, a link or a whole directory; nothing when there is none.
    void remove(const std::string& path);

    /// Gives a file, a link or a whole directory another path of its volume, where nothing is.
    void move(const std::string& from, const std::string& to);

    /// Reading or listing it fails with 5; `false` allows it again. The path must exist.
    void setUnreadable(const std::string& path, bool unreadable = true);
    /// Reading, replacing and removing it fail with 32.
    void setInUse(const std::string& path, bool inUse = true);
    /// Reading it ends after `bytes`, whatever size it tells.
    void setTruncatedAt(const std::string& path, std::uint64_t bytes);
    /// A directory that shows another volume, in listings and look-ups.
    void setMountPoint(const std::string& path, bool mountPoint = true);
    /// Another process works on the directory; nothing: the one that did has ended.
    void setUsedByAnother(const std::string& path, std::optional<TreeUse> use);

    // ---- inspecting (absent and unplugged paths are told alike; links are not followed) ------
    bool exists(const std::string& path) const { return find(path) != nullptr; }
    /// A file's bytes or a link's target; nothing when there is no such file.
    std::optional<std::string> content(const std::string& path) const;
    std::uint64_t lastWrite(const std::string& path) const;   // 0 when absent
    std::uint32_t attributes(const std::string& path) const;  // 0 when absent
    const MemoryNode* find(const std::string& path) const;    // null when absent
    MemoryNode* find(const std::string& path);
    /// Every path below, depth first in the disk's order, temporaries included. `path` excluded.
    std::vector<std::string> list(const std::string& path) const;
    /// Roots of the present drives (shares are none), in the order of their letters.
    std::vector<std::string> driveRoots() const;

    // ---- for MemoryFiles ---------------------------------------------------------------------
    /// Walks to `path`. Succeeds with a null node when only the last name is missing; 3 when a
    /// level above it or the drive is, 21 for a drive that is not ready, 1921 for links in a
    /// circle. With a hold that the path is at or below, from the held directory: 1921 for a link
    /// below it on the way.
    Status locate(const std::string& path, LinkRule links, MemoryPlace& place,
                  const MemoryHold* hold = nullptr) const;

    /// Under which a directory indexes a name.
    std::string key(const MemoryVolume& volume, const std::string& name) const;

    MemoryNode::Pointer newNode(const MemoryVolume& volume, const std::string& name,
                                std::uint32_t attributes);

    std::string newTemporaryName();

  private:
    MemoryNode& make(const std::string& path, std::uint32_t attributes, std::uint64_t lastWrite);

    Names names_;
    std::map<std::string, MemoryVolume> volumes_;  // by root in upper case
    std::uint64_t lastId_ = 0;
    std::uint64_t lastTemporary_ = 0;
};

}  // namespace coffrelune
