#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/memory/memory_disk.h"

namespace coffrelune {

/// A directory of the in-memory disk, open. Lists what was there when it was opened, less what has
/// been removed since. `calls` receives the look-ups.
class MemoryDirectory final : public Directory {
  public:
    MemoryDirectory(const MemoryDisk& disk, const MemoryPlace& place, std::string path,
                    Wanted wanted, std::vector<std::string>& calls);

    bool next(FileEntry& entry) override;
    const Status& status() const override { return status_; }
    std::vector<FileEntry> takeDirectories() override;
    bool lookUp(const std::string& name, FileEntry& entry) override;

  private:
    bool gives(const MemoryNode& node) const;
    bool isThere(const MemoryNode& node) const;
    bool nextDots(FileEntry& entry);

    const MemoryDisk& disk_;
    const MemoryVolume& volume_;
    MemoryNode::Pointer node_;
    std::vector<MemoryNode::Pointer> listing_;
    std::string path_;  // with its trailing backslash
    Wanted wanted_;
    std::vector<std::string>& calls_;
    Status status_;
    std::size_t dots_;      // how many of "." and ".." are given, 2 at the top of a volume
    std::size_t next_ = 0;  // in listing_
};

}  // namespace coffrelune
