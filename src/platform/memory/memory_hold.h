#pragma once

#include <set>
#include <string>
#include <vector>

#include "platform/held_tree.h"
#include "platform/memory/memory_disk.h"
#include "platform/memory/memory_node.h"

namespace coffrelune {

/// A directory that the program has taken hold of.
struct MemoryHold {
    std::string root;  // as asked for
    MemoryVolume* volume = nullptr;
    MemoryNode::Pointer node;
    std::set<MemoryNode::Pointer> entered;  // links below, passed because they were opened
};

/// The holds of one process.
class MemoryHolds {
  public:
    void add(MemoryHold& hold) { holds_.push_back({&hold, splitMemoryPath(hold.root)}); }
    void remove(const MemoryHold& hold);

    /// The innermost hold that `path` is at or below, of equal ones the latest; null for none.
    MemoryHold* holding(const std::string& path) const;

  private:
    struct Known {
        MemoryHold* hold = nullptr;
        MemoryPath root;
    };

    std::vector<Known> holds_;
};

/// The path's components below the root of the hold, which it is at or below.
std::vector<std::string> belowHold(const MemoryHold& hold, const std::string& path);

/// Told to those who take hold of a directory. `calls` receives the calls, `holds` is the process:
/// both outlive this.
class MemoryHeldTree final : public HeldTree {
  public:
    MemoryHeldTree(MemoryHold hold, TreePlace place, MemoryHolds& holds,
                   std::vector<std::string>& calls);
    MemoryHeldTree(const MemoryHeldTree&) = delete;
    MemoryHeldTree& operator=(const MemoryHeldTree&) = delete;
    ~MemoryHeldTree() override;

    const TreePlace& place() const override { return place_; }
    Status claim(TreeUse use) override;
    Status flush() override;
    Status measureTimes(TimeGrid& grid) override;

  private:
    void giveUpClaim();

    MemoryHold hold_;
    TreePlace place_;
    MemoryHolds& holds_;
    std::vector<std::string>& calls_;
};

}  // namespace coffrelune
