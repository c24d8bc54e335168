#pragma once

#include <sys/stat.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "platform/copy_batch.h"
#include "platform/posix/copy_target.h"
#include "platform/posix/file_times.h"
#include "platform/posix/unique_fd.h"

namespace coffrelune {

/// What tells that a file is the one that was there, unchanged. Thousands of them wait.
struct OldFile {
    std::uint64_t number = 0;  // of its inode
    std::uint64_t size = 0;
    std::int64_t seconds = 0;  // of its last write
    std::uint32_t nanoseconds = 0;

    explicit OldFile(const struct statx& information)
        : number(information.stx_ino),
          size(information.stx_size),
          seconds(information.stx_mtime.tv_sec),
          nanoseconds(information.stx_mtime.tv_nsec) {}
    bool operator==(const OldFile&) const = default;
};

/// A copy that waits for its name.
struct WaitingCopy {
    std::uint64_t ticket = 0;
    std::shared_ptr<CopyTarget> target;
    std::string temporary;       // native names in the target
    std::string name;            // the same where it was made under its own
    std::optional<OldFile> old;  // what it replaces; nothing when it is new
    std::optional<Stamp> stamp;  // that it must bear under its name
    std::uint64_t begun = 0;     // failedFlushes() before its first write
    int error = 0;               // an errno value: of its copy, and once it is through of its name

    bool bearsName() const { return temporary == name; }
};

/// A volume that is written to. Opened before the first write: the system tells a late write error
/// to those who had the volume open when it happened.
struct FlushPoint {
    dev_t device = 0;
    UniqueFd fd;
};

/// Flushes volumes and gives copies their names, on a thread of its own while others are copied.
class CommitThread {
  public:
    explicit CommitThread(AfterFailure afterFailure);
    CommitThread(const CommitThread&) = delete;
    CommitThread& operator=(const CommitThread&) = delete;
    /// What has not begun to be committed is given up.
    ~CommitThread();

    /// A volume that a later group writes to; before the first write.
    void addVolume(FlushPoint volume);
    bool knows(dev_t device) const;

    /// Takes copies over, in the order of their tickets. `last`: the names are flushed as well.
    void commit(std::vector<WaitingCopy> group, bool last);

    /// The copies that are through since the last call, in order.
    std::vector<WaitingCopy> takeDone();

    /// Copies and targets that were taken over and are not through, or not taken back.
    std::size_t waiting() const;

    /// Waits at most a quarter of a second for something to be through; true when all of it is.
    bool wait();

    /// How many flushes have failed. One that fails loses, and tells once, what any file had been
    /// given by then: also a file that is not in its group, which its own flush will find clean.
    std::uint64_t failedFlushes() const;

    /// Of the flush of the names; 0 or an errno value. Forgotten with this call.
    int takeFlushError();

    /// A volume has not kept the time of a file.
    bool losesTimes() const { return losesTimes_.load(std::memory_order_relaxed); }

  private:
    struct Group {
        std::vector<WaitingCopy> copies;
        bool last = false;
    };

    void run();
    void commitWaiting(std::unique_lock<std::mutex>& lock);
    void commitGroup(Group& group);
    void nameCopies(std::span<WaitingCopy> copies, int flushed);
    void giveUp(const WaitingCopy& copy);
    int flushVolumes();
    int flushErrorSince(std::uint64_t begun) const;
    int giveName(WaitingCopy& copy) const;
    void checkTime(const WaitingCopy& copy);

    /// What becomes of the times of files on a volume once they are closed and have their names.
    enum class Naming { unknown, keeps, resets };

    const AfterFailure afterFailure_;
    bool failed_ = false;  // nothing more may be committed until the last group is through
    std::map<dev_t, Naming> namings_;
    std::atomic<bool> losesTimes_ = false;

    mutable std::mutex mutex_;
    std::condition_variable work_;
    std::condition_variable progress_;
    std::vector<FlushPoint> volumes_;  // added to by the caller, never removed
    std::deque<Group> groups_;
    std::vector<WaitingCopy> done_;
    std::size_t waiting_ = 0;
    bool busy_ = false;
    bool ending_ = false;
    int flushError_ = 0;
    std::uint64_t failedFlushes_ = 0;
    int lastFailure_ = 0;  // an errno value
    std::thread thread_;   // last: it uses all the others
};

/// Flushes a volume. 0 or an errno value.
int flushVolume(int fd);

}  // namespace coffrelune
