#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/file_entry.h"
#include "platform/held_tree.h"

namespace coffrelune {

/// A path of the core taken apart.
struct MemoryPath {
    std::string root;                     // "C:\" or "\\server\share"; empty when there is none
    std::vector<std::string> components;  // below the root, empty ones left out
};

/// Takes any text; one that is no full path gets an empty root.
MemoryPath splitMemoryPath(const std::string& path);

/// ASCII and Latin-1 letters in upper case, for names that differ at most in case.
std::string foldCase(const std::string& name);

/// A process that uses a tree.
struct TreeUser {
    const void* process;  // null for a process that exists only in a test
    const void* hold;
    TreeUse use;
};

/// A file, a directory or a link of the in-memory disk. A test may change the public fields at any
/// time; names and children change through the functions.
class MemoryNode : public std::enable_shared_from_this<MemoryNode> {
  public:
    MemoryNode(std::string name, std::uint32_t attributeWord, FileId identity)
        : attributes(attributeWord), id(identity), name_(std::move(name)) {}

    std::uint32_t attributes;  // with attribute::directory or attribute::link for what it is
    FileTimes times;
    FileId id;
    std::string content;                  // a file's bytes, a link's target
    std::uint64_t hole = 0;               // zero bytes after `content`, for files too large to hold
    std::optional<std::uint64_t> endsAt;  // reading ends here, before the size that is told
    bool nameAlone = false;               // a listing cannot tell more of it than its name and kind
    std::uint32_t readError = 0;     // what opening, reading or listing it fails with; 0 succeeds
    std::uint32_t writeError = 0;    // what replacing, changing or removing it fails with; for a
                                     // directory also what making or removing something in it does
    std::uint32_t mode = usualMode;  // a directory's rights
    std::string owner;               // a directory's
    Lock lock = Lock::none;          // what it tells; `writeError` is what it does
    bool beingWritten = false;       // a temporary that a running process holds open
    bool mountPoint = false;         // a directory that shows another volume
    std::vector<TreeUser> claims;    // of a directory

    static constexpr std::uint32_t usualMode = 0755;
    static constexpr std::uint32_t ownerOnlyMode = 0700;

    const std::string& name() const { return name_; }
    bool isDirectory() const { return (attributes & attribute::directory) != 0; }
    bool isLink() const { return (attributes & attribute::link) != 0; }
    bool isReadOnly() const { return (attributes & attribute::readOnly) != 0; }
    std::uint64_t size() const { return content.size() + hole; }
    /// How many bytes reading gives.
    std::uint64_t readableSize() const { return std::min(size(), endsAt.value_or(size())); }

    /// What a listing tells of it.
    FileEntry entry() const;

    // ---- of a directory ----------------------------------------------------------------------
    using Pointer = std::shared_ptr<MemoryNode>;
    const std::vector<Pointer>& children() const { return children_; }

    /// `key` is the name as MemoryDisk::key gives it. Null when absent.
    Pointer find(const std::string& key) const;
    void add(const std::string& key, Pointer child);
    void remove(const std::string& key);
    /// Adds what has left another directory, under a name that may be new.
    void adopt(const std::string& key, const std::string& name, Pointer child);
    /// The directory that it is in; null at the top of a volume and for what has been removed.
    Pointer parent() const { return parent_.lock(); }
    /// `child` leaves its own name and takes over `key`, `name` and, when something bears that name
    /// already, its place in the order.
    void rename(const std::string& childKey, const std::string& key, const std::string& name);

  private:
    std::string name_;
    std::weak_ptr<MemoryNode> parent_;
    std::vector<Pointer> children_;  // in the order in which the system lists them
    std::unordered_map<std::string, Pointer> index_;
};

/// What a volume numbers an entry with.
enum class Numbering {
    kept,    // its identity, whoever asks
    byName,  // made up for each name that it is asked by
    anew,    // made up at each question
};

/// One drive or network share.
struct MemoryVolume {
    std::string root;              // "C:\" or "\\server\share"
    bool present = true;           // false: unplugged
    bool ready = true;             // false: a drive without a medium, 21 for every call
    bool writeProtected = false;   // 19 for every writing call
    std::uint32_t flushError = 0;  // what it fails with to make safe what is written; 0: ok
    bool foldsCase = false;        // names without their case; before its first file
    bool holdsLinks = true;        // false: as FAT
    bool holdsRights = true;       // of directories; false: as FAT
    Numbering numbering = Numbering::kept;
    TimeGrid times;                         // that its files can bear
    bool keepsTimes = true;                 // false: a file bears the time of its writing
    std::string identity;                   // stable text, "" when the system tells none
    std::optional<std::uint64_t> capacity;  // bytes of all its files; 112 beyond
    MemoryNode::Pointer top;

    std::uint64_t usedBytes() const;
    /// What it tells of an entry that it was asked for by `name`, or that it lists.
    FileEntry shown(const MemoryNode& node, const std::string& name) const;
    /// What a file bears that is given the time `wanted` at the moment `now`.
    std::uint64_t heldTime(std::uint64_t wanted, std::uint64_t now) const {
        return keepsTimes ? times.held(wanted) : now;
    }

  private:
    mutable std::uint64_t asked_ = 0;  // while it makes up numbers
};

}  // namespace coffrelune
