#include "platform/win32/volume_flush.h"

#include <windows.h>

#include <utility>

#include "platform/win32/data_copier.h"
#include "platform/win32/temporary_file.h"
#include "platform/win32/tree_place.h"

namespace coffrelune {
namespace {

std::uint32_t flushed(void* handle) {
    return FlushFileBuffers(handle) != 0 ? 0 : GetLastError();
}

/// NTFS writes its journal in order: when a file that was made just now is safe, so is every name
/// that was given or taken before.
std::uint32_t flushJournal(const NativePath& directory) {
    TemporaryFile last;
    std::uint32_t error = last.create(directory);
    if (error == 0) error = writeAll(last.handle(), "\n", 1);
    return error == 0 ? flushed(last.handle()) : error;
}

}  // namespace

void VolumeFlush::expectWrite(const NativePath& root, void* handle) {
    if (way_ == Way::undecided) decide(root, handle);
    written_ = root;
}

void VolumeFlush::decide(const NativePath& root, void* handle) {
    const bool share = isOnShare(root);
    way_ = !share && volumeKindOf(handle) == VolumeKind::ntfs ? Way::journal : Way::each;
    if (share) return;
    // The name of the volume itself is that of its top without the backslash. Kept open from before
    // the first write; tried at once, because some systems let everybody open it and few flush it:
    // https://learn.microsoft.com/windows/win32/api/fileapi/nf-fileapi-flushfilebuffers
    volume_ = UniqueHandle(
        CreateFileW(root.text.substr(0, root.rootLength - 1).c_str(), GENERIC_READ | GENERIC_WRITE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    if (volume_.valid() && flushed(volume_.get()) == 0) {
        way_ = Way::volume;
    } else {
        volume_.reset();
    }
}

std::uint32_t VolumeFlush::dataWritten(void* file) const {
    return way_ == Way::volume ? 0 : flushed(file);
}

void VolumeFlush::named(void* file) {
    if (way_ != Way::each) return;
    const std::uint32_t error = flushed(file);
    if (late_ == 0) late_ = error;
}

std::uint32_t VolumeFlush::flush() {
    if (written_.text.empty()) return 0;
    std::uint32_t error = std::exchange(late_, 0);
    if (way_ == Way::volume) error = flushed(volume_.get());
    if (way_ == Way::journal) error = flushJournal(written_);
    if (error == 0) written_ = {};
    return error;
}

}  // namespace coffrelune
