#include "platform/posix/listing.h"

#include <fcntl.h>

#include <cerrno>
#include <string_view>

#include "platform/posix/interrupted.h"

namespace coffrelune {
namespace {

constexpr std::size_t blockSize = 32768;

}  // namespace

const dirent64* Listing::next() {
    while (position_ < filled_ || fill()) {
        // The system lays the entries out for this very use: see getdents(2).
        const auto* entry = reinterpret_cast<const dirent64*>(block_.get() + position_);
        position_ += entry->d_reclen;
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") return entry;
    }
    return nullptr;
}

std::size_t Listing::entriesAhead() const {
    constexpr std::size_t usual = 32;  // bytes of one with a short name
    return (filled_ - position_) / usual;
}

/// To list leaves the time of the last access alone where the system allows that, to the owner and
/// to root. Asked of the open directory: to open it so would fail for everybody else.
void Listing::begin() {
    block_.reset(new char[blockSize]);
    [[maybe_unused]] const int refused = fcntl(directory_.get(), F_SETFL, O_NOATIME);
}

bool Listing::fill() {
    if (ended_) return false;
    if (block_ == nullptr) begin();
    const ssize_t size =
        uninterrupted([&] { return getdents64(directory_.get(), block_.get(), blockSize); });
    ended_ = size <= 0;
    // A directory that was removed while it is open has come to its end.
    if (size < 0 && errno != ENOENT) error_ = errno;
    position_ = 0;
    filled_ = ended_ ? 0 : static_cast<std::size_t>(size);
    return !ended_;
}

}  // namespace coffrelune
