#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/posix/copy_maker.h"

namespace coffrelune {

/// Copies files on a thread of its own. Two threads that make files in two directories take half
/// the time of one; in one directory they would wait for each other.
class CopyWorker {
  public:
    struct Job {
        OpenOriginal original;  // closed once it is copied
        WaitingCopy copy;       // `error` tells what became of it
    };

    /// `most`: how many files may be open for it.
    CopyWorker(CopyMaker maker, std::size_t most);
    CopyWorker(const CopyWorker&) = delete;
    CopyWorker& operator=(const CopyWorker&) = delete;
    /// What was not taken is given up.
    ~CopyWorker();

    /// Whether a thread can be had that pays; started when this is asked for the first time.
    bool start();

    /// Waits while too many wait.
    void add(Job job);

    /// How many wait to be copied, or are being.
    std::size_t waiting() const;
    /// Waits until none does.
    void wait();

    /// Those that are through since the last call, in the order in which they were added.
    std::vector<Job> takeDone();

    /// As CopyMaker says; while none waits.
    KeptTimes keptTimes() const { return maker_.keptTimes(); }

  private:
    void run();
    void waitFor(std::unique_lock<std::mutex>& lock, std::size_t done);

    CopyMaker maker_;
    const std::size_t most_;
    mutable std::mutex mutex_;
    std::condition_variable work_;
    std::condition_variable progress_;
    std::deque<Job> jobs_;     // the done ones first
    std::size_t done_ = 0;     // of them
    std::size_t awaited_ = 0;  // when so many are done, the caller is woken
    bool sleeps_ = false;
    bool ending_ = false;
    bool started_ = false;
    std::thread thread_;  // last: it uses all the others
};

}  // namespace coffrelune
