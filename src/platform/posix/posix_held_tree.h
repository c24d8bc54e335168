#pragma once

#include <memory>
#include <string>

#include "platform/held_tree.h"
#include "platform/posix/hold.h"
#include "platform/posix/mount_table.h"

namespace coffrelune {

/// Where an open directory lies. `native`: the path by which it was opened. What the system does
/// not tell stays empty.
TreePlace treePlaceOf(int directory, const std::string& native, const MountSources& sources);

/// Keeps a hold in the list of its file service.
class PosixHeldTree final : public HeldTree {
  public:
    PosixHeldTree(std::shared_ptr<const Hold> hold, TreePlace place,
                  std::shared_ptr<HoldList> holds, std::shared_ptr<TreeLocks> locks);
    PosixHeldTree(const PosixHeldTree&) = delete;
    PosixHeldTree& operator=(const PosixHeldTree&) = delete;
    ~PosixHeldTree() override;

    const TreePlace& place() const override { return place_; }
    Status claim(TreeUse use) override;
    Status flush() override;
    Status measureTimes(TimeGrid& grid) override;

  private:
    std::shared_ptr<const Hold> hold_;
    TreePlace place_;
    std::shared_ptr<HoldList> holds_;
    std::shared_ptr<TreeLocks> locks_;
    TreeClaim claim_;
};

}  // namespace coffrelune
