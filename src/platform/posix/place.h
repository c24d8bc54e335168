#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

#include "platform/posix/native_path.h"
#include "platform/posix/path_map.h"
#include "platform/posix/unique_fd.h"
#include "platform/status.h"

namespace coffrelune {

/// 55 unless the volume of `place` is still mounted. `device`: of the file or directory reached
/// there. A volume that went away in the middle of a run leaves an empty directory of the system
/// disk under its mount point: writing there would fill the wrong disk, and reading there would
/// make a full directory look empty. A hold keeps its volume in place; and when the device is the
/// volume's own, nothing is asked of the system, so the check needs no cache.
Status checkVolume(const Place& place, dev_t device);

/// The failure of a call on `place`: as systemFailure, but 3 when what is missing is its parent
/// directory, and 55 when its volume is gone.
Status failureAt(int error, const Place& place);

/// The directory that holds a place, for ...at() calls, and the native name in it ("." for the
/// root of a drive or of a hold). `place` must outlive it. While it is open its volume cannot be
/// unmounted.
struct Holder {
    UniqueFd opened;  // none where the directory of the hold itself serves
    int directory = -1;
    std::string name;
    bool held = false;  // the place is reached from a hold

    const char* entry() const { return name.c_str(); }
};

/// Opens the holder of `place` and checks its volume.
Status openHolder(const Place& place, Holder& holder);

/// Where ...at() calls find a place that is only read: through its holder where it is below a
/// hold, else by its path, which costs no call. `place` must outlive it.
class Reach {
  public:
    explicit Reach(const Place& place);

    int error() const { return error_; }  // errno of a step on the way, 0 when there is none
    int fd() const { return path_ ? path_->fd() : holder_.directory; }
    const char* name() const { return path_ ? path_->path() : holder_.entry(); }

  private:
    std::optional<ShortPath> path_;
    Holder holder_;
    int error_ = 0;
};

/// Opens a place; O_CLOEXEC is added. Below a hold a link is refused whatever the flags say: ELOOP,
/// or ENOTDIR where a directory is wanted and O_NOFOLLOW given. 0 or an errno value.
int openPlace(const Place& place, int flags, UniqueFd& fd);

/// Looks at a place and checks its volume.
Status statPlace(const Place& place, bool follow, struct statx& information);

}  // namespace coffrelune
