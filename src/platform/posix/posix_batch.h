#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/copy_batch.h"
#include "platform/posix/commit_thread.h"
#include "platform/posix/copy_target.h"
#include "platform/posix/copy_worker.h"
#include "platform/posix/hold.h"
#include "platform/posix/posix_directory.h"

namespace coffrelune {

/// The batch of a Linux system: files are read and written between directories that are open
/// already, on the calling thread, and those of every other new directory on a second one; flushed
/// and named on a third.
class PosixBatch final : public CopyBatch {
  public:
    /// All of them outlive this. `abandoned` ends copies. `changes` is counted up when names have
    /// appeared: see PosixDirectory.
    PosixBatch(AfterFailure afterFailure, CopyEvents& events, TreeLocks& locks,
               CopyTargets& targets, NewDirectories& made, const std::atomic<bool>& abandoned,
               std::atomic<std::uint64_t>& changes);

    PosixBatch(const PosixBatch&) = delete;
    PosixBatch& operator=(const PosixBatch&) = delete;
    ~PosixBatch() override;

    Status add(const CopyRequest& request, std::uint64_t& ticket) override;
    Status finish() override;
    KeptTimes keptTimes() const override;

  private:
    int targetOf(const CopyRequest& request);
    int tryCopy(const CopyRequest& request, WaitingCopy& waiting);
    int lookAtOld(const CopyRequest& request, const std::string& name, struct statx& old) const;
    int copy(const CopyRequest& request, WaitingCopy& waiting);
    int copyFile(PosixDirectory& directory, int source, const CopyRequest& request,
                 WaitingCopy& copy);
    int openOriginal(int source, const char* name, OpenOriginal& original);
    int copyLink(int source, const CopyRequest& request, WaitingCopy& copy);
    bool changesLinks(const CopyTarget& target);
    int copyLinkTarget(int source, const CopyRequest& request, const struct stat& link,
                       WaitingCopy& copy);
    void keepToItself();
    void lend(const CopyRequest& request);
    bool takeBack(bool all);
    void copyAgain(OpenOriginal& original);
    std::size_t beginOfDirectory(std::size_t place) const;
    void give(std::size_t count, bool last);
    void handOver(bool last);
    void tellDone();
    void waitForDisk();
    void makeRoom();

    CopyEvents& events_;
    TreeLocks& locks_;
    CopyTargets& targets_;
    NewDirectories& made_;
    const std::atomic<bool>& abandoned_;
    std::atomic<std::uint64_t>& changes_;
    std::map<dev_t, bool> changesLinks_;
    int quiet_ = O_NOATIME;  // reading leaves the time of the last access alone, where it may
    std::atomic<std::uint64_t> token_;
    CopyMaker maker_;
    std::uint64_t ticket_ = 0;

    std::shared_ptr<CopyTarget> target_;  // of the last file
    bool lends_ = false;                  // its files to the worker
    std::optional<OpenOriginal> lent_;    // the last one is
    std::vector<WaitingCopy> group_;      // not handed over yet
    std::deque<std::size_t> places_;      // in it, of what the worker has
    std::uint64_t groupBytes_ = 0;
    std::chrono::steady_clock::time_point groupStart_;
    const std::size_t mostTargets_;
    const bool stops_;     // after a failure
    bool failed_ = false;  // something has
    CommitThread thread_;
    CopyWorker worker_;  // last: its targets are those of the others
};

}  // namespace coffrelune
