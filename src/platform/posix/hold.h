#pragma once

#include <sys/types.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/held_tree.h"
#include "platform/posix/unique_fd.h"

namespace coffrelune {

/// How a path below a hold is walked.
enum class Descent {
    kernel,  // in one call, or in steps where the system or a sandbox does not know that call
    steps,   // one call a component
};

/// Directories on the way to where a deep walk is, kept open so that the next step does not begin
/// at the root again: what an entry costs must not grow with its depth. A directory is kept only as
/// long as every path that is asked for lies in it. May be used by several threads.
class Waypoints {
  public:
    struct Waypoint {
        std::size_t length = 0;  // of its path
        std::shared_ptr<const UniqueFd> directory;
    };

    /// The deepest waypoint that `path` lies in; one of length 0 where there is none. Those that it
    /// does not lie in are forgotten.
    Waypoint find(std::string_view path);
    /// `path`: of a directory in the one that was found last.
    Waypoint keep(std::string_view path, UniqueFd directory);
    /// False when there was none.
    bool clear();

  private:
    std::mutex mutex_;
    std::string path_;  // of the last one
    std::vector<Waypoint> points_;
};

/// A directory that was taken hold of. What lies below it is reached from its descriptor.
struct Hold {
    std::string core;    // as it was asked for
    std::string native;  // the path by which it was opened
    UniqueFd directory;  // readable
    dev_t device = 0;
    bool counted = true;  // its volume counts the names of a directory, so that none tells its end
    bool countsSubdirectories = false;  // each adds a name to the two that a directory has itself
    bool replacesDirectories = false;   // an empty one by another, in one step
    Descent descent = Descent::kernel;
    std::unique_ptr<Waypoints> waypoints = std::make_unique<Waypoints>();
};

/// Whether the volume of an open directory counts subdirectories among a directory's names: those
/// of this system that are known to, others may say anything.
bool countsSubdirectories(int directory);

/// Whether the volume of an open directory is one of those of this system that are known to rename
/// a directory over an empty one in one step.
bool replacesDirectories(int directory);

/// Opens `path`, which is below the hold and has no "..", without passing a link: ELOOP. The last
/// component may be a link only where `flags` say O_PATH and O_NOFOLLOW. 0 or an errno value.
int openBelow(const Hold& hold, const std::string& path, int flags, UniqueFd& fd);

/// The living holds of one file service.
class HoldList {
  public:
    void add(std::shared_ptr<const Hold> hold) { holds_.push_back(std::move(hold)); }
    void remove(const Hold& hold);

    /// The hold that a native path without ".." is reached from; null when it is below none.
    std::shared_ptr<const Hold> innermost(const std::string& native) const;

  private:
    std::vector<std::shared_ptr<const Hold>> holds_;
};

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
