#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "platform/file_service.h"

namespace coffrelune {

/// Copies the bytes of one open file into another.
class DataCopier {
  public:
    /// `abandoned`: tested at every chunk; must outlive this object.
    explicit DataCopier(const std::atomic<bool>& abandoned) : abandoned_(abandoned) {}

    /// Both files stand at their start. What the source holds beyond `size` came after the copy
    /// began and is left to the next run. `sparse`: runs of zero bytes are not written.
    /// `observer` may be null. 0 or a system error; 38 when the source ends before `size`, 1235
    /// when abandoned.
    std::uint32_t copy(void* source, std::uint64_t size, void* destination, bool sparse,
                       CopyObserver* observer);

  private:
    const std::atomic<bool>& abandoned_;
    std::vector<char> buffer_;
};

/// Writes all of it. 0 or a system error.
std::uint32_t writeAll(void* handle, const char* bytes, std::uint64_t size);

/// Reads up to `size` bytes; `read` is less at the end of the file alone. 0 or a system error.
std::uint32_t readUpTo(void* handle, char* bytes, std::uint64_t size, std::uint64_t& read);

}  // namespace coffrelune
