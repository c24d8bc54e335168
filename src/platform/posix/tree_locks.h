#pragma once

#include <sys/types.h>

#include <map>
#include <memory>
#include <utility>

#include "platform/held_tree.h"
#include "platform/posix/unique_fd.h"

namespace coffrelune {

/// The lock of one directory, shared by everybody in this process who uses it, since two locks of
/// one process would bar each other. The directory itself is locked, so that nothing is left behind
/// on the disk.
class TreeLock {
  public:
    explicit TreeLock(UniqueFd directory) : directory_(std::move(directory)) {}

    /// False when another process uses the directory in a way that does not agree. A system that
    /// cannot lock it lets everybody in.
    bool take(TreeUse use);
    void give(TreeUse use);

  private:
    UniqueFd directory_;
    int readers_ = 0;
    int writers_ = 0;
};

/// The locks that this process has.
class TreeLocks {
  public:
    /// Of an open directory; null when the system cannot tell which it is.
    std::shared_ptr<TreeLock> lockOf(int directory);

  private:
    std::map<std::pair<dev_t, ino_t>, std::weak_ptr<TreeLock>> locks_;
};

/// A use of one directory, until this object goes.
class TreeClaim {
  public:
    TreeClaim() = default;
    TreeClaim(const TreeClaim&) = delete;
    TreeClaim& operator=(const TreeClaim&) = delete;
    ~TreeClaim() { drop(); }

    /// Claims an open directory, or adds to what was claimed of it: a writer stays one. False when
    /// another process bars it; what was claimed before stays.
    bool take(TreeLocks& locks, int directory, TreeUse use);

    void drop();

  private:
    std::shared_ptr<TreeLock> lock_;  // null: nothing is claimed
    TreeUse use_ = TreeUse::read;
};

}  // namespace coffrelune
