#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/file_entry.h"

namespace coffrelune {

/// A file, a directory or a link of the in-memory disk. A test may change the public fields at any
/// time; names and children change through the functions.
class MemoryNode {
  public:
    MemoryNode(std::string name, std::uint32_t attributeWord, FileId identity)
        : attributes(attributeWord), id(identity), name_(std::move(name)) {}

    std::uint32_t attributes;  // with attribute::directory or attribute::link for what it is
    FileTimes times;
    FileId id;
    std::string content;           // a file's bytes, a link's target
    std::uint64_t hole = 0;        // zero bytes after `content`, for files too large to hold
    bool nameAlone = false;        // a listing cannot tell more of it than its name and kind
    std::uint32_t readError = 0;   // what opening, reading or listing it fails with; 0 succeeds
    std::uint32_t writeError = 0;  // what replacing, changing or removing it fails with; for a
                                   // directory also what making or removing something in it does

    const std::string& name() const { return name_; }
    bool isDirectory() const { return (attributes & attribute::directory) != 0; }
    bool isLink() const { return (attributes & attribute::link) != 0; }
    bool isReadOnly() const { return (attributes & attribute::readOnly) != 0; }
    std::uint64_t size() const { return content.size() + hole; }

    /// What a listing tells of it.
    FileEntry entry() const;

    // ---- of a directory ----------------------------------------------------------------------
    using Pointer = std::shared_ptr<MemoryNode>;
    const std::vector<Pointer>& children() const { return children_; }

    /// `key` is the name as MemoryDisk::key gives it. Null when absent.
    Pointer find(const std::string& key) const;
    void add(const std::string& key, Pointer child);
    void remove(const std::string& key);
    /// `child` leaves its own name and takes over `key`, `name` and, when something bears that name
    /// already, its place in the order.
    void rename(const std::string& childKey, const std::string& key, const std::string& name);

  private:
    std::string name_;
    std::vector<Pointer> children_;  // in the order in which the system lists them
    std::unordered_map<std::string, Pointer> index_;
};

/// One drive or network share.
struct MemoryVolume {
    std::string root;                       // "C:\" or "\\server\share"
    bool present = true;                    // false: unplugged
    bool ready = true;                      // false: a drive without a medium, 21 for every call
    bool writeProtected = false;            // 19 for every writing call
    bool foldsCase = false;                 // names without their case; before its first file
    bool holdsLinks = true;                 // false: as FAT
    std::optional<std::uint64_t> capacity;  // bytes of all its files; 112 beyond
    MemoryNode::Pointer top;

    std::uint64_t usedBytes() const;
};

}  // namespace coffrelune
