#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/posix/copy_maker.h"

namespace coffrelune {

/// Copies files on a thread of its own. Two threads that make files in two directories take little
/// more than half the time of one; in one directory they would wait for each other.
class CopyWorker {
  public:
    struct Job {
        OpenOriginal original;  // closed once it is copied
        WaitingCopy copy;       // `error` tells what became of it
    };
    /// Called a few times a second while somebody waits.
    using Patience = std::function<void()>;

    /// `most`: how many files may be open for it. `patience` is called by add() and wait().
    CopyWorker(CopyMaker maker, std::size_t most, Patience patience);
    CopyWorker(const CopyWorker&) = delete;
    CopyWorker& operator=(const CopyWorker&) = delete;
    ~CopyWorker() { stop(); }

    /// Whether a thread can be had that pays; started when this is asked for the first time.
    bool start();
    /// Ends it after the file that it copies. What was not taken is given up.
    void stop();

    /// Waits while so many wait that to copy them takes longer than a user wants to wait for a
    /// stop.
    void add(Job job);

    /// How many wait to be copied, or are being.
    std::size_t waiting() const;
    /// Waits until none does.
    void wait();
    /// One that was not taken yet has failed.
    bool hasFailed() const { return hasFailed_.load(std::memory_order_relaxed); }

    /// Those that are through since the last call, in the order in which they were added.
    std::vector<Job> takeDone();

    /// As CopyMaker says; while none waits.
    KeptTimes keptTimes() const { return maker_.keptTimes(); }

  private:
    using Lock = std::unique_lock<std::mutex>;

    void run();
    void waitFor(Lock& lock, std::size_t done);
    void makeRoom(Lock& lock);

    CopyMaker maker_;
    const std::size_t most_;
    const Patience patience_;
    mutable std::mutex mutex_;
    std::condition_variable work_;
    std::condition_variable progress_;
    std::deque<Job> jobs_;     // the done ones first
    std::size_t done_ = 0;     // of them
    std::size_t awaited_ = 0;  // when so many are done, the caller is woken
    std::size_t depth_;        // how many may wait
    std::atomic<bool> hasFailed_ = false;
    bool sleeps_ = false;
    bool ending_ = false;
    bool started_ = false;
    std::thread thread_;  // last: it uses all the others
};

}  // namespace coffrelune
