#include "platform/posix/posix_walk.h"

#include <algorithm>
#include <system_error>

#include "platform/posix/signals_blocked.h"
#include "platform/posix/usable_cores.h"

namespace coffrelune {
namespace {

// Each pair that was read keeps two directories open.
constexpr std::size_t farthest = 32;

// A thread that is woken for every pair takes the core of the one that wakes it.
constexpr std::size_t worthWaking = farthest / 2;

/// Whether a directory could not be opened for want of something that the walk holds.
bool mayBeShort(const Status& status) {
    return !status.ok() && !status.saysAbsent();
}

}  // namespace

PosixWalk::PosixWalk(Locate locate, Read read, std::unique_ptr<WalkAhead> plain)
    : locate_(std::move(locate)),
      read_(std::move(read)),
      plain_(std::move(plain)),
      readsAhead_(usableCores() > 1) {}

PosixWalk::~PosixWalk() {
    {
        const Lock lock(mutex_);
        ending_ = true;
    }
    more_.notify_one();
    if (thread_.joinable()) thread_.join();
}

/// One pair alone is read by whoever asks for it.
void PosixWalk::startThread() {
    const SignalsBlocked blocked;
    try {
        thread_ = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        readsAhead_ = false;  // no thread to be had: everything is read when it is asked for
    }
}

void PosixWalk::announce(std::vector<DirectoryPair> pairs) {
    if (!readsAhead_) return;
    Lock lock(mutex_);
    std::for_each(pairs.rbegin(), pairs.rend(), [&](const DirectoryPair& pair) {
        auto job = std::make_shared<Job>();
        if (locate_(pair, job->placed)) jobs_.push_back(std::move(job));
    });
    constexpr std::size_t oneForEach = 2;
    if (!thread_.joinable() && jobs_.size() >= oneForEach) startThread();
    wakeReader(lock, oneForEach);
}

void PosixWalk::wakeReader(Lock& lock, std::size_t fewest) {
    const bool wake = readerSleeps_ && waitingWithinReach() >= fewest;
    readerSleeps_ = readerSleeps_ && !wake;
    lock.unlock();  // or it would wake up to wait for this thread
    if (wake) more_.notify_one();
}

OpenedPair PosixWalk::open(const DirectoryPair& pair) {
    Lock lock(mutex_);
    const std::shared_ptr<Job> job = take(pair);
    if (job == nullptr) {
        lock.unlock();
        return plain_->open(pair);
    }
    if (job->state == State::waiting) work(*job, lock);
    while (job->state != State::done) {
        if (const std::shared_ptr<Job> other = nextWaiting()) {
            work(*other, lock);
        } else {
            ready_.wait(lock);
        }
    }
    if (mayBeShort(job->opened.sourceStatus) || mayBeShort(job->opened.targetStatus)) {
        // What was read ahead keeps directories open; without them it may go.
        jobs_.clear();
        job->opened = {};
        lock.unlock();
        return plain_->open(pair);
    }
    wakeReader(lock, worthWaking);
    return std::move(job->opened);
}

/// The job of a pair, taken off the list with those that the walk has passed.
std::shared_ptr<PosixWalk::Job> PosixWalk::take(const DirectoryPair& pair) {
    const auto found = std::find_if(jobs_.rbegin(), jobs_.rend(),
                                    [&](const auto& job) { return job->placed.pair == pair; });
    if (found == jobs_.rend()) return nullptr;
    std::shared_ptr<Job> job = *found;
    jobs_.erase(found.base() - 1, jobs_.end());
    return job;
}

std::shared_ptr<PosixWalk::Job> PosixWalk::nextWaiting() const {
    const std::size_t near = std::min(jobs_.size(), farthest);
    const auto end = jobs_.rbegin() + static_cast<std::ptrdiff_t>(near);
    const auto found = std::find_if(jobs_.rbegin(), end,
                                    [](const auto& job) { return job->state == State::waiting; });
    return found == end ? nullptr : *found;
}

std::size_t PosixWalk::waitingWithinReach() const {
    const auto near = static_cast<std::ptrdiff_t>(std::min(jobs_.size(), farthest));
    const auto waits = [](const auto& job) { return job->state == State::waiting; };
    return static_cast<std::size_t>(std::count_if(jobs_.rbegin(), jobs_.rbegin() + near, waits));
}

void PosixWalk::work(Job& job, Lock& lock) {
    job.state = State::running;
    lock.unlock();
    job.opened = read_(job.placed);
    lock.lock();
    job.state = State::done;
}

void PosixWalk::run() {
    Lock lock(mutex_);
    while (!ending_) {
        if (const std::shared_ptr<Job> job = nextWaiting()) {
            work(*job, lock);
            ready_.notify_one();
        } else {
            readerSleeps_ = true;
            more_.wait(lock);
            readerSleeps_ = false;
        }
    }
}

}  // namespace coffrelune
