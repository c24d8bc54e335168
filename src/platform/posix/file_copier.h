#pragma once

#include <atomic>
#include <string>

#include "platform/file_service.h"
#include "platform/posix/data_copier.h"
#include "platform/posix/place.h"

namespace coffrelune {

/// Copies single files and links; see FileService::copyFile.
class PosixFileCopier {
  public:
    Status copy(const Place& source, const Place& destination, LinkRule sourceLinks,
                CopyObserver* observer);

    /// Async-signal-safe.
    void abandon() { abandoned_.store(true, std::memory_order_relaxed); }

  private:
    Status copyContent(const Place& source, const Holder& holder, const Place& destination,
                       const timespec* writeTime, int openFlags, CopyObserver* observer);
    Status copyLink(const Place& source, const struct statx& link, const Holder& holder,
                    const Place& destination, CopyObserver* observer);

    static_assert(std::atomic<bool>::is_always_lock_free);
    std::atomic<bool> abandoned_ = false;
    DataCopier data_{abandoned_};
};

}  // namespace coffrelune
