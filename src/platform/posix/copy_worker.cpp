#include "platform/posix/copy_worker.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <system_error>
#include <utility>

#include "platform/posix/signals_blocked.h"
#include "platform/posix/usable_cores.h"

namespace coffrelune {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// How many may wait, until it is known how fast they are copied.
constexpr std::size_t firstDepth = 8;

// A stop finishes what waits: what takes this long for half of them is too much, or may be more.
constexpr milliseconds slow{100};
constexpr milliseconds fast{20};

constexpr milliseconds patienceLasts{250};

}  // namespace

CopyWorker::CopyWorker(CopyMaker maker, std::size_t most, Patience patience)
    : maker_(std::move(maker)),
      most_(most),
      patience_(std::move(patience)),
      depth_(std::min(most, firstDepth)) {}

bool CopyWorker::start() {
    constexpr std::size_t fewest = 2;
    if (!std::exchange(started_, true) && most_ >= fewest && usableCores() > 1) {
        const SignalsBlocked blocked;
        try {
            thread_ = std::thread([this] { run(); });
        } catch (const std::system_error&) {
            // No thread to be had: whoever asks copies by himself.
        }
    }
    return thread_.joinable();
}

void CopyWorker::stop() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    work_.notify_one();
    if (thread_.joinable()) thread_.join();
    for (const Job& job : takeDone()) {
        if (job.copy.error == 0) job.copy.target->discard(job.copy.temporary);
    }
}

void CopyWorker::add(Job job) {
    Lock lock(mutex_);
    if (jobs_.size() - done_ >= depth_) makeRoom(lock);
    jobs_.push_back(std::move(job));
    const bool wake = std::exchange(sleeps_, false);
    lock.unlock();
    if (wake) work_.notify_one();
}

/// For half of them, not for the next one alone: each time that a thread is woken costs as much as
/// a file.
void CopyWorker::makeRoom(Lock& lock) {
    constexpr std::size_t fewest = 2;
    const auto begin = Clock::now();
    waitFor(lock, jobs_.size() - depth_ / 2);
    const auto taken = Clock::now() - begin;
    if (taken < fast) depth_ = std::min(2 * depth_, most_);
    if (taken > slow) depth_ = std::max(depth_ / 2, fewest);
}

std::size_t CopyWorker::waiting() const {
    const std::lock_guard lock(mutex_);
    return jobs_.size() - done_;
}

void CopyWorker::wait() {
    Lock lock(mutex_);
    waitFor(lock, jobs_.size());
}

void CopyWorker::waitFor(Lock& lock, std::size_t done) {
    awaited_ = done;
    while (!progress_.wait_for(lock, patienceLasts, [this] { return done_ >= awaited_; })) {
        lock.unlock();
        patience_();
        lock.lock();
    }
}

std::vector<CopyWorker::Job> CopyWorker::takeDone() {
    const std::lock_guard lock(mutex_);
    hasFailed_ = false;
    const auto end = jobs_.begin() + static_cast<std::ptrdiff_t>(std::exchange(done_, 0));
    std::vector<Job> all(std::make_move_iterator(jobs_.begin()), std::make_move_iterator(end));
    jobs_.erase(jobs_.begin(), end);
    return all;
}

void CopyWorker::run() {
    Lock lock(mutex_);
    while (!ending_) {
        if (done_ == jobs_.size()) {
            sleeps_ = true;
            work_.wait(lock, [this] { return ending_ || done_ < jobs_.size(); });
            sleeps_ = false;
            continue;
        }
        Job& job = jobs_[done_];  // stays where it is when others are added behind it
        lock.unlock();
        job.copy.error = maker_.copy(job.original, job.copy, nullptr);
        if (job.copy.error == 0) job.original.fd.reset();
        lock.lock();
        hasFailed_ = hasFailed_ || job.copy.error != 0;
        ++done_;
        if (done_ == awaited_) progress_.notify_one();
    }
}

}  // namespace coffrelune
