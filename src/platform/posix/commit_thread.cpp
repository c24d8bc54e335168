#include "platform/posix/commit_thread.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <system_error>

#include "platform/posix/native_path.h"
#include "platform/posix/rights.h"
#include "platform/posix/signals_blocked.h"

namespace coffrelune {
namespace {

/// Takes a name that nothing bears: EEXIST when somebody has taken it.
int takeNewName(const WaitingCopy& copy) {
    const int made = copy.target->directory();
    const int directory = copy.target->namer().directory;
    const char* from = copy.temporary.c_str();
    const char* to = copy.name.c_str();
    if (renameat2(made, from, directory, to, RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP) return errno;
    // A file system that does not know the question: what comes between the two calls is lost.
    struct statx taken {};
    const int error = statEntry(directory, to, false, taken);
    if (error == 0) return EEXIST;
    if (error != ENOENT) return error;
    return renameat(made, from, directory, to) == 0 ? 0 : errno;
}

/// Volumes for which a name is none answer in several ways, as if something else were wrong.
bool isNameRefused(const WaitingCopy& copy) {
    if (copy.error != EINVAL && copy.error != ENOENT) return false;
    struct statx left {};
    const CopyTarget& target = *copy.target;
    return statEntry(target.directory(), copy.temporary.c_str(), false, left) == 0;
}

}  // namespace

int flushVolume(int fd) {
    if (syncfs(fd) == 0) return 0;
    if (errno != ENOSYS && errno != EINVAL) return errno;
    sync();  // all volumes, where one alone cannot be asked for
    return 0;
}

CommitThread::CommitThread(AfterFailure afterFailure) : afterFailure_(afterFailure) {
    const SignalsBlocked blocked;
    try {
        thread_ = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        // No thread to be had: groups are committed by who hands them over.
    }
}

CommitThread::~CommitThread() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    work_.notify_one();
    if (thread_.joinable()) thread_.join();
    for (const Group& group : groups_) {
        for (const WaitingCopy& copy : group.copies) {
            copy.target->discard(copy.temporary);
        }
    }
}

bool CommitThread::knows(dev_t device) const {
    const std::lock_guard lock(mutex_);
    return std::any_of(volumes_.begin(), volumes_.end(),
                       [&](const FlushPoint& volume) { return volume.device == device; });
}

void CommitThread::addVolume(FlushPoint volume) {
    const std::lock_guard lock(mutex_);
    volumes_.push_back(std::move(volume));
}

void CommitThread::commit(std::vector<WaitingCopy> group, bool last) {
    {
        const std::lock_guard lock(mutex_);
        waiting_ += group.size();
        groups_.push_back({std::move(group), last});
    }
    work_.notify_one();
    if (thread_.joinable()) return;
    std::unique_lock lock(mutex_);
    commitWaiting(lock);
}

std::vector<WaitingCopy> CommitThread::takeDone() {
    const std::lock_guard lock(mutex_);
    waiting_ -= done_.size();
    return std::exchange(done_, {});
}

std::size_t CommitThread::waiting() const {
    const std::lock_guard lock(mutex_);
    return waiting_;
}

bool CommitThread::wait() {
    std::unique_lock lock(mutex_);
    const auto isIdle = [&] { return groups_.empty() && !busy_; };
    progress_.wait_for(lock, std::chrono::milliseconds(250),
                       [&] { return isIdle() || !done_.empty(); });
    return isIdle();
}

int CommitThread::takeFlushError() {
    const std::lock_guard lock(mutex_);
    return std::exchange(flushError_, 0);
}

void CommitThread::run() {
    std::unique_lock lock(mutex_);
    for (;;) {
        work_.wait(lock, [&] { return ending_ || !groups_.empty(); });
        if (ending_) return;
        commitWaiting(lock);
    }
}

/// All that has come meanwhile shares one flush.
void CommitThread::commitWaiting(std::unique_lock<std::mutex>& lock) {
    Group all;
    for (Group& group : groups_) {
        std::move(group.copies.begin(), group.copies.end(), std::back_inserter(all.copies));
        all.last = all.last || group.last;
    }
    groups_.clear();
    busy_ = true;
    lock.unlock();
    commitGroup(all);
    const int error = all.last ? flushVolumes() : 0;
    if (all.last) failed_ = false;
    lock.lock();
    busy_ = false;
    if (error != 0) flushError_ = error;
    std::move(all.copies.begin(), all.copies.end(), std::back_inserter(done_));
    progress_.notify_one();
}

void CommitThread::commitGroup(Group& group) {
    const int flushed = group.copies.empty() ? 0 : flushVolumes();
    for (auto first = group.copies.begin(); first != group.copies.end();) {
        const auto last = std::find_if(first, group.copies.end(), [&](const WaitingCopy& copy) {
            return copy.target != first->target;
        });
        nameCopies({first, last}, flushed);
        first = last;
    }
}

/// Of one target, one after the other. What was not flushed is gone before the directory may get
/// its name.
void CommitThread::nameCopies(std::span<WaitingCopy> copies, int flushed) {
    bool any = false;
    for (WaitingCopy& copy : copies) {
        if (copy.error == 0) copy.error = failed_ ? ECANCELED : flushed;
        if (copy.error == 0) copy.error = flushErrorSince(copy.begun);
        if (copy.error != 0) giveUp(copy);
        any = any || copy.error == 0;
    }
    const bool inPlace = any && copies.front().target->takePlace();
    bool stopped = false;  // what came before a failure keeps its name
    for (WaitingCopy& copy : copies) {
        if (copy.error != 0) continue;
        const bool isNamed = inPlace && copy.bearsName();
        copy.error = stopped ? ECANCELED : 0;
        if (copy.error == 0 && !isNamed) copy.error = giveName(copy);
        if (isNameRefused(copy)) copy.error = EILSEQ;
        if (copy.error == 0) checkTime(copy);
        if (copy.error != 0) giveUp(copy);
        stopped = stopped || (copy.error != 0 && afterFailure_ == AfterFailure::stop);
    }
}

void CommitThread::giveUp(const WaitingCopy& copy) {
    if (!copy.temporary.empty()) copy.target->discard(copy.temporary);
    failed_ = failed_ || afterFailure_ == AfterFailure::stop;
}

/// The first file of a volume tells of the others.
void CommitThread::checkTime(const WaitingCopy& copy) {
    if (!copy.stamp) return;
    Naming& naming = namings_[copy.target->device()];
    if (naming == Naming::keeps || (naming == Naming::unknown && !isOrdinary(*copy.stamp))) return;
    const int directory = copy.target->namer().directory;
    const StampState state = checkStamp(directory, copy.name.c_str(), *copy.stamp);
    // A time that many a volume cannot hold says nothing of those of the other files.
    const bool loses = state == StampState::lost && isOrdinary(*copy.stamp);
    if (loses) losesTimes_.store(true, std::memory_order_relaxed);
    if (naming == Naming::unknown) {
        naming = state == StampState::givenAgain ? Naming::resets : Naming::keeps;
    }
}

int CommitThread::flushVolumes() {
    std::size_t count = 0;
    {
        const std::lock_guard lock(mutex_);
        count = volumes_.size();
    }
    int failure = 0;
    for (std::size_t i = 0; i < count; ++i) {
        int fd = -1;
        {
            const std::lock_guard lock(mutex_);
            fd = volumes_[i].fd.get();
        }
        const int error = flushVolume(fd);
        if (error != 0) failure = error;
    }
    if (failure != 0) {
        const std::lock_guard lock(mutex_);
        ++failedFlushes_;
        lastFailure_ = failure;
    }
    return failure;
}

std::uint64_t CommitThread::failedFlushes() const {
    const std::lock_guard lock(mutex_);
    return failedFlushes_;
}

int CommitThread::flushErrorSince(std::uint64_t begun) const {
    const std::lock_guard lock(mutex_);
    return begun == failedFlushes_ ? 0 : lastFailure_;
}

int CommitThread::giveName(WaitingCopy& copy) const {
    const CopyTarget& target = *copy.target;
    const Holder& holder = target.namer();
    return changeIn(holder, [&] {
        if (!copy.old) return takeNewName(copy);
        struct statx now {};
        const int error = target.checkOld(holder, copy.name.c_str(), now);
        if (error == ENOENT) return takeNewName(copy);
        if (error != 0) return error;
        // Somebody has written there while the copy waited; the next run decides anew.
        if (*copy.old != OldFile(now)) return ETXTBSY;
        const char* from = copy.temporary.c_str();
        return renameat(target.directory(), from, holder.directory, copy.name.c_str()) == 0 ? 0
                                                                                            : errno;
    });
}

}  // namespace coffrelune
