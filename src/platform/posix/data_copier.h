#pragma once

#include <sys/stat.h>

#include <atomic>
#include <cstdint>
#include <vector>

#include "platform/file_service.h"

namespace coffrelune {

/// Copies the bytes of one open file into another, the cheapest way that makes a second copy of
/// each byte: never by sharing blocks, for a backup that shares them is lost with the original.
class DataCopier {
  public:
    /// `abandoned`: tested at every chunk; must outlive this object.
    explicit DataCopier(const std::atomic<bool>& abandoned) : abandoned_(abandoned) {}

    /// Both files stand at their start. What the source held beyond `information.st_size` came
    /// after the copy began and is left to the next run. Holes are kept. `observer` may be null.
    /// 0 or an errno value: ECANCELED when abandoned, ENODATA when the source ends before that
    /// size.
    int copy(int source, const struct stat& information, int destination, CopyObserver* observer);

  private:
    int copyHoles();
    int copySparse();
    int copyUpTo(std::uint64_t end);
    int copyChunk(std::uint64_t size, std::uint64_t& copied);
    int report();

    const std::atomic<bool>& abandoned_;
    std::vector<char> buffer_;
    // Of the copy in progress.
    int source_ = -1;
    int destination_ = -1;
    CopyObserver* observer_ = nullptr;
    std::uint64_t position_ = 0;
    std::uint64_t size_ = 0;
};

}  // namespace coffrelune
