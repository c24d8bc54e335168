#pragma once

#include <cstdint>

#include "platform/win32/native_path.h"
#include "platform/win32/unique_handle.h"

namespace coffrelune {

/// Makes safe what the program writes to one volume. To flush a volume as a whole is cheap for each
/// file, but takes rights that few users have on a fixed disk, and shares do not know it: each
/// file is then flushed by itself.
class VolumeFlush {
  public:
    /// The program is about to write to the volume, below `root`, which it holds as `handle`.
    void expectWrite(const NativePath& root, void* handle);

    /// A file, or a stream of one, has all its bytes. 0 or a system error.
    std::uint32_t dataWritten(void* file) const;
    /// A flushed file got its name. An error is told by flush().
    void named(void* file);

    /// 0 when all that was written is safe, or a system error.
    std::uint32_t flush();

  private:
    enum class Way { undecided, volume, journal, each };

    void decide(const NativePath& root, void* handle);

    Way way_ = Way::undecided;
    UniqueHandle volume_;
    NativePath written_;  // where; empty: nothing since the last flush
    std::uint32_t late_ = 0;
};

}  // namespace coffrelune
