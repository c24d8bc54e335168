#include "platform/posix/data_copier.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "platform/posix/interrupted.h"
#include "platform/posix/whole_file.h"

namespace coffrelune {
namespace {

// Fewer calls than with a smaller one, and still in the processor's cache when it is written. The
// kernel's own copy (sendfile) goes through a pipe, by 64 KiB: on ext4 it costs 15 % more.
constexpr std::size_t bufferSize = 256U << 10;
// Small enough that a slow disk is heard of, and a copy abandoned, within a second or so.
constexpr std::uint64_t chunkSize = 4U << 20;

off_t toOffset(std::uint64_t position) {
    return static_cast<off_t>(position);
}

}  // namespace

int DataCopier::copy(int source, const struct stat& information, int destination,
                     CopyObserver* observer) {
    source_ = source;
    destination_ = destination;
    observer_ = observer;
    position_ = 0;
    size_ = static_cast<std::uint64_t>(information.st_size);
    buffer_.resize(bufferSize);

    const bool sparse = static_cast<std::uint64_t>(information.st_blocks) * 512 < size_;
    int error = sparse ? copyHoles() : copyUpTo(size_);
    // Files that a file system makes up while they are read say that they hold nothing.
    if (error == 0 && size_ == 0) error = copyUpTo(UINT64_MAX);
    if (error == 0 && position_ < size_) error = ENODATA;
    if (error == 0 && position_ == 0) error = report();
    return error;
}

/// With its holes, or whole where the destination takes bytes in their order alone, as servers do
/// that store whole files.
int DataCopier::copyHoles() {
    const int error = copySparse();
    constexpr std::array told = {0, ENOSPC, EDQUOT, EFBIG, ECANCELED, ENODATA};
    if (std::find(told.begin(), told.end(), error) != told.end()) return error;
    position_ = 0;
    if (lseek(source_, 0, SEEK_SET) < 0 || lseek(destination_, 0, SEEK_SET) < 0) return errno;
    return copyUpTo(size_);  // over all that has been written
}

int DataCopier::copySparse() {
    while (position_ < size_) {
        const off_t data = lseek(source_, toOffset(position_), SEEK_DATA);
        if (data < 0 && errno == ENXIO) break;  // only a hole is left
        const off_t hole = data < 0 ? -1 : lseek(source_, data, SEEK_HOLE);
        if (hole < 0) {
            // Holes cannot be told from data here.
            if (lseek(source_, toOffset(position_), SEEK_SET) < 0) return errno;
            return copyUpTo(size_);
        }
        position_ = std::min(static_cast<std::uint64_t>(data), size_);
        if (position_ == size_) break;
        if (lseek(source_, data, SEEK_SET) < 0) return errno;
        if (lseek(destination_, data, SEEK_SET) < 0) return errno;
        const std::uint64_t end = std::min(static_cast<std::uint64_t>(hole), size_);
        const int error = copyUpTo(end);
        if (error != 0) return error;
        if (position_ < end) return 0;  // the source has been cut off meanwhile
    }
    // A file that was cut off looks as if a hole followed.
    struct stat now {};
    if (fstat(source_, &now) != 0) return errno;
    if (static_cast<std::uint64_t>(now.st_size) < size_) return ENODATA;
    if (position_ < size_ && ftruncate(destination_, toOffset(size_)) != 0) return errno;
    position_ = size_;
    return report();
}

int DataCopier::copyUpTo(std::uint64_t end) {
    while (position_ < end) {
        std::uint64_t copied = 0;
        int error = copyChunk(std::min(end - position_, chunkSize), copied);
        position_ += copied;
        if (error == 0 && copied == 0) return 0;  // nothing left in the source
        if (error == 0) error = report();
        if (error != 0) return error;
    }
    return 0;
}

int DataCopier::copyChunk(std::uint64_t size, std::uint64_t& copied) {
    while (copied < size) {
        const auto wanted = std::min<std::uint64_t>(size - copied, buffer_.size());
        const ssize_t count = uninterrupted([&] { return read(source_, buffer_.data(), wanted); });
        if (count < 0) return errno;
        if (count == 0) break;
        const int error = writeAll(destination_, buffer_.data(), static_cast<std::size_t>(count));
        if (error != 0) return error;
        copied += static_cast<std::uint64_t>(count);
    }
    return 0;
}

int DataCopier::report() {
    if (observer_ != nullptr) observer_->chunkFinished(position_);
    return abandoned_.load(std::memory_order_relaxed) ? ECANCELED : 0;
}

}  // namespace coffrelune
