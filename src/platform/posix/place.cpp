#include "platform/posix/place.h"

#include <cerrno>

#include "platform/posix/errors.h"
#include "platform/posix/native_path.h"

namespace coffrelune {
namespace {

bool volumeIsGone(const Place& place) {
    struct statx root {};
    return place.device.has_value() &&
           (statPath(place.root, true, root) != 0 || deviceOf(root) != *place.device);
}

std::string holderPath(const Place& place) {
    if (place.isRoot()) return place.native;
    const std::size_t slash = place.native.rfind('/');
    return slash == 0 ? "/" : place.native.substr(0, slash);
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
    struct statx information {};
    if (error == ENOTDIR && statPath(place.native, false, information) == 0) {
        return systemFailure(ENOTDIR, place.core);
    }
    const int parent = statPath(holderPath(place), true, information);
    if (parent == 0 && S_ISDIR(information.stx_mode)) return systemFailure(ENOENT, place.core);
    return Status::failure(error_number::pathNotFound, place.core);
}

Status openHolder(const Place& place, Holder& holder) {
    const int error = openPath(holderPath(place), O_PATH | O_DIRECTORY, holder.directory);
    if (error == ENOENT || error == ENOTDIR) {
        return volumeIsGone(place) ? Status::failure(error_number::deviceDoesNotExist, place.core)
                                   : Status::failure(error_number::pathNotFound, place.core);
    }
    if (error != 0) return systemFailure(error, place.core);
    holder.name = place.isRoot() ? "." : place.native.substr(place.native.rfind('/') + 1);
    struct stat information {};
    if (fstat(holder.directory.get(), &information) != 0) return systemFailure(errno, place.core);
    return checkVolume(place, information.st_dev);
}

}  // namespace coffrelune
