#pragma once

#include <atomic>
#include <string>

#include "platform/file_service.h"
#include "platform/posix/data_copier.h"
#include "platform/posix/place.h"
#include "platform/posix/temporary_file.h"

namespace coffrelune {

/// Copies single files and links; see FileService::copyFile.
class PosixFileCopier {
  public:
    Status copy(const Place& source, const Place& destination, LinkRule sourceLinks,
                CopyObserver* observer);

    /// Async-signal-safe.
    void abandon() { abandoned_.store(true, std::memory_order_relaxed); }
    const std::atomic<bool>& abandoned() const { return abandoned_; }

  private:
    struct Job;

    Status copyContent(const Job& job, const timespec* writeTime, bool follow);
    int fill(TemporaryFile& output, int input, const struct stat& before, const timespec& writeTime,
             CopyObserver* observer);
    Status copyLink(const Job& job, const struct statx& link);

    static_assert(std::atomic<bool>::is_always_lock_free);
    std::atomic<bool> abandoned_ = false;
    DataCopier data_{abandoned_};
};

}  // namespace coffrelune
