#include "platform/posix/posix_held_tree.h"

#include <unistd.h>

#include <cerrno>

#include "platform/posix/errors.h"

namespace coffrelune {

PosixHeldTree::PosixHeldTree(std::shared_ptr<const Hold> hold, TreePlace place,
                             std::shared_ptr<HoldList> holds, std::shared_ptr<TreeLocks> locks)
    : hold_(std::move(hold)),
      place_(std::move(place)),
      holds_(std::move(holds)),
      locks_(std::move(locks)) {
    holds_->add(hold_);
}

PosixHeldTree::~PosixHeldTree() {
    holds_->remove(*hold_);
}

Status PosixHeldTree::claim(TreeUse use) {
    const bool claimed = claim_.take(*locks_, hold_->directory.get(), use);
    return claimed ? Status() : Status::failure(error_number::lockViolation, hold_->core);
}

Status PosixHeldTree::flush() {
    // Write errors are told to descriptors that were open when they happened: that of the hold is
    // older than every write.
    if (syncfs(hold_->directory.get()) == 0) return {};
    if (errno != ENOSYS && errno != EINVAL) return systemFailure(errno, hold_->core);
    sync();  // the whole system's volumes, where one alone cannot be asked for
    return {};
}

}  // namespace coffrelune
