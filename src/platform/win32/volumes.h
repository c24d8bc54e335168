#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "platform/held_tree.h"
#include "platform/win32/native_path.h"
#include "platform/win32/unique_handle.h"

namespace coffrelune {

/// Where an open directory lies, in words that outlive this run and this computer.
///
/// A volume is named as other systems name it: "uuid:" and the serial number in the spelling of its
/// file system, else "volume:" and the number; a share "share://server/share".
TreePlace placeOf(void* directory);

/// True for what a computer, perhaps another one, gives out under "\\server\share".
bool isOnShare(const NativePath& path);

/// What a file system promises that the program relies on.
enum class VolumeKind {
    ntfs,   // the number of a file is given to no other, and what is safe on the disk was preceded
            // by all that came before it
    fat,    // the number of a file only says where its name lies
    other,  // the number of a file may be given again once the file is gone
};

/// Of the volume that holds an open file.
VolumeKind volumeKindOf(void* handle);

/// Makes safe what the program writes to one volume. To flush a volume as a whole is cheap for each
/// file, but takes rights that few users have on a fixed disk, and shares do not know it: each
/// file is then flushed by itself.
class VolumeFlush {
    enum class Way { undecided, volume, journal, each };

  public:
    VolumeFlush() = default;
    /// For a volume that is open already, and is flushed as a whole.
    explicit VolumeFlush(UniqueHandle volume) : way_(Way::volume), volume_(std::move(volume)) {}

    /// The program is about to write to the volume, below `root`, which it holds as `handle`.
    void expectWrite(const NativePath& root, void* handle);

    /// A file, or a stream of one, has all its bytes. 0 or a system error.
    std::uint32_t dataWritten(void* file) const;
    /// A flushed file got its name. An error is told by flush().
    void named(void* file);

    /// One flush makes the data of every file safe: flushData() instead of dataWritten() for each.
    bool isWhole() const { return way_ == Way::volume; }
    std::uint32_t flushData();

    /// 0 when all that was written is safe, or a system error.
    std::uint32_t flush();

  private:
    void decide(const NativePath& root, void* handle);

    Way way_ = Way::undecided;
    UniqueHandle volume_;
    NativePath written_;  // where; empty: nothing since the last flush
    std::uint32_t late_ = 0;
};

/// Flushes an open file. 0 or a system error.
std::uint32_t flushed(void* file);

}  // namespace coffrelune
