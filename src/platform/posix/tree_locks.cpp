#include "platform/posix/tree_locks.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/posix/native_path.h"

namespace coffrelune {
namespace {

/// False when another process stands in the way.
bool lockNow(int directory, int operation) {
    while (flock(directory, operation | LOCK_NB) != 0) {
        if (errno != EINTR) return errno != EWOULDBLOCK;
    }
    return true;
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
