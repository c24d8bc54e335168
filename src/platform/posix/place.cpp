#include "platform/posix/place.h"

#include <cerrno>

#include "platform/posix/errors.h"
#include "platform/posix/hold.h"

namespace coffrelune {
namespace {

/// Whether the volume can be taken away from under the place. A directory of the volume that is
/// held keeps it in place.
bool canLoseVolume(const Place& place) {
    const bool pinned = place.hold != nullptr && place.hold->device == place.device;
    return place.device.has_value() && !pinned;
}

bool volumeIsGone(const Place& place) {
    struct statx root {};
    return canLoseVolume(place) &&
           (statPath(place.root, true, root) != 0 || deviceOf(root) != *place.device);
}

/// Cuts the last component off. `path` is not empty.
std::string takeName(std::string& path) {
    const std::size_t slash = path.rfind('/');
    std::string name = path.substr(slash == std::string::npos ? 0 : slash + 1);
    path.resize(slash == std::string::npos ? 0 : slash);
    return name;
}

int findBelowHold(const Place& place, Holder& holder) {
    const Hold& hold = *place.hold;
    holder.held = true;
    holder.directory = hold.directory.get();
    std::string path(below(place.native, hold.native));
    holder.name = path.empty() ? "." : takeName(path);
    if (path.empty()) return 0;
    const int error = openBelow(hold, path, O_PATH | O_DIRECTORY, holder.opened);
    holder.directory = holder.opened.get();
    return error;
}

int findHolder(const Place& place, Holder& holder) {
    if (place.hold != nullptr) return findBelowHold(place, holder);
    std::string path = place.native;
    holder.name = place.isRoot() ? "." : takeName(path);
    const int error = openPath(path.empty() ? "/" : path, O_PATH | O_DIRECTORY, holder.opened);
    holder.directory = holder.opened.get();
    return error;
}

}  // namespace

Status checkVolume(const Place& place, dev_t device) {
    if (!place.device.has_value() || device == *place.device || !volumeIsGone(place)) return {};
    return Status::failure(error_number::deviceDoesNotExist, place.core);
}

Status failureAt(int error, const Place& place) {
    if (error != ENOENT && error != ENOTDIR) return systemFailure(error, place.core);
    if (volumeIsGone(place)) {
        return Status::failure(error_number::deviceDoesNotExist, place.core);
    }
    Holder holder;
    if (findHolder(place, holder) != 0) {
        return Status::failure(error_number::pathNotFound, place.core);
    }
    struct statx information {};
    const bool isThere =
        error == ENOTDIR && statEntry(holder.directory, holder.entry(), false, information) == 0;
    return systemFailure(isThere ? ENOTDIR : ENOENT, place.core);
}

Status openHolder(const Place& place, Holder& holder) {
    const int error = findHolder(place, holder);
    if (error == ENOENT || error == ENOTDIR) {
        return volumeIsGone(place) ? Status::failure(error_number::deviceDoesNotExist, place.core)
                                   : Status::failure(error_number::pathNotFound, place.core);
    }
    if (error != 0) return systemFailure(error, place.core);
    if (!canLoseVolume(place)) return {};
    struct stat information {};
    if (fstat(holder.directory, &information) != 0) return systemFailure(errno, place.core);
    return checkVolume(place, information.st_dev);
}

Reach::Reach(const Place& place) {
    if (place.hold != nullptr) {
        error_ = findHolder(place, holder_);
    } else {
        path_.emplace(place.native);
        error_ = path_->error();
    }
}

int openPlace(const Place& place, int flags, UniqueFd& fd) {
    if (place.hold == nullptr) return openPath(place.native, flags, fd);
    const Hold& hold = *place.hold;
    const std::string path(below(place.native, hold.native));
    if (path.empty()) {
        return openEntry(hold.directory.get(), ".", flags & ~O_NOFOLLOW, fd);
    }
    return openBelow(hold, path, flags, fd);
}

Status statPlace(const Place& place, bool follow, struct statx& information) {
    const Reach reach(place);
    const int error = reach.error() != 0 ? reach.error()
                                         : statEntry(reach.fd(), reach.name(), follow, information);
    if (error != 0) return failureAt(error, place);
    return checkVolume(place, deviceOf(information));
}

}  // namespace coffrelune
