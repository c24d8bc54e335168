#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/copy_batch.h"
#include "platform/posix/commit_thread.h"
#include "platform/posix/copy_target.h"
#include "platform/posix/copy_writer.h"
#include "platform/posix/hold.h"
#include "platform/posix/posix_directory.h"

namespace coffrelune {

/// The batch of a Linux system: files are read and written on the calling thread, between
/// directories that are open already; flushed and named on another.
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
    KeptTimes keptTimes() const override {
        return thread_.losesTimes() ? KeptTimes::lost : writer_.keptTimes();
    }

  private:
    int targetOf(const CopyRequest& request);
    int tryCopy(const CopyRequest& request, WaitingCopy& waiting);
    int lookAtOld(const CopyRequest& request, const std::string& name, struct statx& old) const;
    int copy(const CopyRequest& request, WaitingCopy& waiting);
    int copyFile(PosixDirectory& directory, int source, const CopyRequest& request,
                 WaitingCopy& copy);
    int openOriginal(int source, const char* name, UniqueFd& input, struct stat& before);
    int copyLink(int source, const CopyRequest& request, WaitingCopy& copy);
    bool changesLinks(const CopyTarget& target);
    int copyLinkTarget(int source, const CopyRequest& request, const struct stat& link,
                       WaitingCopy& copy);
    int write(int input, struct stat before, const CopyRequest& request, WaitingCopy& copy);
    template <typename Make>
    int make(WaitingCopy& waiting, Make make);
    void handOver(bool last);
    void tellDone();
    void makeRoom();

    CopyEvents& events_;
    TreeLocks& locks_;
    CopyTargets& targets_;
    NewDirectories& made_;
    const std::atomic<bool>& abandoned_;
    std::atomic<std::uint64_t>& changes_;
    CopyWriter writer_;
    mode_t mask_;
    std::map<dev_t, bool> changesLinks_;
    int quiet_ = O_NOATIME;  // reading leaves the time of the last access alone, where it may
    std::uint64_t token_;
    std::uint64_t ticket_ = 0;

    std::shared_ptr<CopyTarget> target_;  // of the last file
    std::vector<WaitingCopy> group_;      // not handed over yet
    std::uint64_t groupBytes_ = 0;
    std::chrono::steady_clock::time_point groupStart_;
    const std::size_t mostTargets_;
    const bool stops_;     // after a failure
    bool failed_ = false;  // something has
    CommitThread thread_;
};

}  // namespace coffrelune
