#include "platform/posix/hold.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <linux/openat2.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <string_view>

#include "platform/posix/interrupted.h"
#include "platform/posix/native_path.h"

namespace coffrelune {
namespace {

constexpr int passing = O_PATH | O_DIRECTORY;

bool isLink(int directory, const char* name) {
    struct stat information {};
    return fstatat(directory, name, &information, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISLNK(information.st_mode);
}

/// As the kernel says it of a whole path: a link that was not asked for is ELOOP, whatever else
/// the call wanted of it.
int openStep(int directory, const char* name, int flags, UniqueFd& fd) {
    const int error = openEntry(directory, name, flags | O_NOFOLLOW, fd);
    const bool mayBeLink = error == ENOTDIR && (flags & O_NOFOLLOW) == 0;
    return mayBeLink && isLink(directory, name) ? ELOOP : error;
}

int openInSteps(int directory, std::string_view path, int flags, UniqueFd& fd) {
    UniqueFd passed;
    for (;;) {
        const std::size_t slash = path.find('/');
        const bool last = slash == std::string_view::npos;
        const std::string name(path.substr(0, slash));
        const int from = passed.valid() ? passed.get() : directory;
        UniqueFd next;
        const int error = openStep(from, name.c_str(), last ? flags : passing, next);
        if (error != 0) return error;
        if (last) {
            fd = std::move(next);
            return 0;
        }
        passed = std::move(next);
        path.remove_prefix(slash + 1);
    }
}

int openAtOnce(int directory, const std::string& path, int flags, UniqueFd& fd) {
    open_how how{};
    how.flags = static_cast<std::uint64_t>(flags | O_CLOEXEC);
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS;
    fd.reset(static_cast<int>(uninterrupted(
        [&] { return syscall(SYS_openat2, directory, path.c_str(), &how, sizeof how); })));
    return fd.valid() ? 0 : errno;
}

int openPiece(const Hold& hold, int directory, const std::string& path, int flags, UniqueFd& fd) {
    if (hold.descent == Descent::kernel) {
        const int error = openAtOnce(directory, path, flags, fd);
        // An older kernel, or a sandbox whose list of calls is older.
        if (error != ENOSYS && error != EPERM) return error;
    }
    return openInSteps(directory, path, flags, fd);
}

// As many components as the system walks while one more call is made.
constexpr std::size_t stride = 16;

// Each is a descriptor, of which a process has about a thousand.
constexpr std::size_t mostWaypoints = 256;

/// The end of the first `stride` components of a path; npos when there are no more than these.
std::size_t endOfStride(std::string_view path) {
    std::size_t end = path.find('/');
    for (std::size_t i = 1; i < stride && end != std::string_view::npos; ++i) {
        end = path.find('/', end + 1);
    }
    return end;
}

int openOnTheWay(const Hold& hold, const std::string& path, int flags, UniqueFd& fd) {
    Waypoints::Waypoint last = hold.waypoints->find(path);
    for (;;) {
        const int from = last.directory ? last.directory->get() : hold.directory.get();
        const std::size_t start = last.length == 0 ? 0 : last.length + 1;
        const std::size_t steps = endOfStride(std::string_view(path).substr(start));
        if (steps == std::string_view::npos) {
            return openPiece(hold, from, path.substr(start), flags, fd);
        }
        UniqueFd next;
        const int error = openPiece(hold, from, path.substr(start, steps), passing, next);
        if (error != 0) return error;
        last =
            hold.waypoints->keep(std::string_view(path).substr(0, start + steps), std::move(next));
    }
}

}  // namespace

bool countsSubdirectories(int directory) {
    struct statfs volume {};
    if (fstatfs(directory, &volume) != 0) return false;
    return volume.f_type == EXT4_SUPER_MAGIC || volume.f_type == XFS_SUPER_MAGIC ||
           volume.f_type == TMPFS_MAGIC;
}

bool replacesDirectories(int directory) {
    struct statfs volume {};
    if (fstatfs(directory, &volume) != 0) return false;
    return volume.f_type == BTRFS_SUPER_MAGIC || countsSubdirectories(directory);
}

Waypoints::Waypoint Waypoints::find(std::string_view path) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto isOnTheWay = [&](const Waypoint& point) {
        return isWithin(path, std::string_view(path_).substr(0, point.length)) &&
               path.size() > point.length;
    };
    points_.erase(std::partition_point(points_.begin(), points_.end(), isOnTheWay), points_.end());
    if (points_.empty()) return {};
    path_.resize(points_.back().length);
    return points_.back();
}

Waypoints::Waypoint Waypoints::keep(std::string_view path, UniqueFd directory) {
    Waypoint point{path.size(), std::make_shared<const UniqueFd>(std::move(directory))};
    const std::lock_guard<std::mutex> lock(mutex_);
    // Another thread may have gone elsewhere meanwhile.
    const bool goesOn = points_.empty() || (path.size() > path_.size() && isWithin(path, path_));
    if (!goesOn || points_.size() >= mostWaypoints) return point;
    path_ = path;
    points_.push_back(point);
    return point;
}

bool Waypoints::clear() {
    const std::lock_guard<std::mutex> lock(mutex_);
    const bool any = !points_.empty();
    points_.clear();
    return any;
}

int openBelow(const Hold& hold, const std::string& path, int flags, UniqueFd& fd) {
    const int error = openOnTheWay(hold, path, flags, fd);
    // A directory on the way may have been removed and made again.
    const bool mayBeStale = error == ENOENT || error == ESTALE;
    if (!mayBeStale || !hold.waypoints->clear()) return error;
    return openOnTheWay(hold, path, flags, fd);
}

void HoldList::remove(const Hold& hold) {
    std::erase_if(holds_, [&](const auto& held) { return held.get() == &hold; });
}

std::shared_ptr<const Hold> HoldList::innermost(const std::string& native) const {
    std::shared_ptr<const Hold> best;
    for (const auto& hold : holds_) {
        const bool inner = best == nullptr || hold->native.size() >= best->native.size();
        if (inner && isWithin(native, hold->native)) best = hold;
    }
    return best;
}

namespace {

/// False when another process stands in the way.
bool lockNow(int directory, int operation) {
    const int locked = uninterrupted([&] { return flock(directory, operation | LOCK_NB); });
    return locked == 0 || errno != EWOULDBLOCK;
}

}  // namespace

bool TreeLock::take(TreeUse use) {
    if (use == TreeUse::read) {
        if (readers_ + writers_ == 0 && !lockNow(directory_.get(), LOCK_SH)) return false;
        ++readers_;
        return true;
    }
    if (writers_ == 0 && !lockNow(directory_.get(), LOCK_EX)) {
        // The system may have given the readers' lock up before it saw the obstacle. Should another
        // process have come between, then the readers go on beside it: they began before.
        if (readers_ > 0) (void)lockNow(directory_.get(), LOCK_SH);
        return false;
    }
    ++writers_;
    return true;
}

void TreeLock::give(TreeUse use) {
    --(use == TreeUse::write ? writers_ : readers_);
    if (use == TreeUse::write && writers_ == 0 && readers_ > 0) {
        // To ask for less is never refused.
        (void)lockNow(directory_.get(), LOCK_SH);
    }
}

std::shared_ptr<TreeLock> TreeLocks::lockOf(int directory) {
    std::erase_if(locks_, [](const auto& lock) { return lock.second.expired(); });
    struct stat information {};
    if (fstat(directory, &information) != 0) return nullptr;
    std::weak_ptr<TreeLock>& known = locks_[{information.st_dev, information.st_ino}];
    std::shared_ptr<TreeLock> lock = known.lock();
    if (lock != nullptr) return lock;
    // A lock belongs to the opening: this one closes when its last user goes, whoever else has the
    // directory open.
    UniqueFd own;
    if (openEntry(directory, ".", O_RDONLY | O_DIRECTORY, own) != 0) return nullptr;
    lock = std::make_shared<TreeLock>(std::move(own));
    known = lock;
    return lock;
}

bool TreeClaim::take(TreeLocks& locks, int directory, TreeUse use) {
    if (lock_ != nullptr && (use_ == TreeUse::write || use_ == use)) return true;
    const std::shared_ptr<TreeLock> lock = lock_ != nullptr ? lock_ : locks.lockOf(directory);
    if (lock == nullptr) return true;
    if (!lock->take(use)) return false;
    drop();
    lock_ = lock;
    use_ = use;
    return true;
}

void TreeClaim::drop() {
    if (lock_ != nullptr) lock_->give(use_);
    lock_.reset();
}

}  // namespace coffrelune
