#pragma once

#include <string>

#include "platform/posix/path_map.h"
#include "platform/posix/unique_fd.h"
#include "platform/status.h"

namespace coffrelune {

/// 55 unless the volume of `place` is still mounted. `device`: of the file or directory reached
/// there. A volume that went away in the middle of a run leaves an empty directory of the system
/// disk under its mount point: writing there would fill the wrong disk, and reading there would
/// make a full directory look empty. When the device is the volume's own, nothing is asked of the
/// system, so the check needs no cache.
Status checkVolume(const Place& place, dev_t device);

/// The failure of a call on `place`: as systemFailure, but 3 when what is missing is its parent
/// directory, and 55 when its volume is gone.
Status failureAt(int error, const Place& place);

/// The directory that holds a place, opened for ...at() calls, and the native name in it ("." for
/// a root). While it is open its volume cannot be unmounted.
struct Holder {
    UniqueFd directory;
    std::string name;
};

/// Opens the holder of `place` and checks its volume.
Status openHolder(const Place& place, Holder& holder);

}  // namespace coffrelune
