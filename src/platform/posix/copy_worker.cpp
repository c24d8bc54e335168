#include "platform/posix/copy_worker.h"

#include <iterator>
#include <system_error>
#include <utility>

#include "platform/posix/signals_blocked.h"
#include "platform/posix/usable_cores.h"

namespace coffrelune {

CopyWorker::CopyWorker(CopyMaker maker, std::size_t most) : maker_(std::move(maker)), most_(most) {}

CopyWorker::~CopyWorker() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    work_.notify_one();
    if (thread_.joinable()) thread_.join();
    for (std::size_t i = 0; i < done_; ++i) {
        const WaitingCopy& copy = jobs_[i].copy;
        if (copy.error == 0) copy.target->discard(copy.temporary);
    }
}

bool CopyWorker::start() {
    if (!std::exchange(started_, true) && most_ > 0 && usableCores() > 1) {
        const SignalsBlocked blocked;
        try {
            thread_ = std::thread([this] { run(); });
        } catch (const std::system_error&) {
            // No thread to be had: whoever asks copies by himself.
        }
    }
    return thread_.joinable();
}

void CopyWorker::add(Job job) {
    std::unique_lock lock(mutex_);
    // Not for the next one alone: each time that a thread is woken costs as much as a file.
    if (jobs_.size() - done_ >= most_) waitFor(lock, jobs_.size() - most_ / 2);
    jobs_.push_back(std::move(job));
    const bool wake = std::exchange(sleeps_, false);
    lock.unlock();
    if (wake) work_.notify_one();
}

std::size_t CopyWorker::waiting() const {
    const std::lock_guard lock(mutex_);
    return jobs_.size() - done_;
}

void CopyWorker::wait() {
    std::unique_lock lock(mutex_);
    waitFor(lock, jobs_.size());
}

void CopyWorker::waitFor(std::unique_lock<std::mutex>& lock, std::size_t done) {
    awaited_ = done;
    progress_.wait(lock, [this] { return done_ >= awaited_; });
}

std::vector<CopyWorker::Job> CopyWorker::takeDone() {
    const std::lock_guard lock(mutex_);
    const auto end = jobs_.begin() + static_cast<std::ptrdiff_t>(std::exchange(done_, 0));
    std::vector<Job> all(std::make_move_iterator(jobs_.begin()), std::make_move_iterator(end));
    jobs_.erase(jobs_.begin(), end);
    return all;
}

void CopyWorker::run() {
    std::unique_lock lock(mutex_);
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
        ++done_;
        if (done_ == awaited_) progress_.notify_one();
    }
}

}  // namespace coffrelune
