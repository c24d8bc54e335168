#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <ctime>
#include <string>

#include "platform/copy_batch.h"
#include "platform/file_entry.h"
#include "platform/time_grid.h"

namespace coffrelune {

/// Units of 100 ns since 1601, cut off below; 0 for a time before 1601.
std::uint64_t toFileTime(std::int64_t seconds, std::uint32_t nanoseconds);

/// The way back, exact.
timespec toTimespec(std::uint64_t fileTime);

/// The next time that is a multiple of `granularity` nanoseconds (1 or more; at most one second or
/// a multiple of seconds), or the time itself when it is one.
timespec roundUp(timespec time, std::int64_t granularity);

/// What a file system of this type (statfs f_type) keeps of a modification time, in nanoseconds.
std::int64_t timeGranularity(std::int64_t fileSystemType);

/// Whether the system said if a mount begins there; older ones leave it to the device number.
bool tellsMountPoints(const struct statx& information);

Lock lockOf(const struct statx& information);

/// The times and the rest of an entry, all but its name, by which it may be hidden. False for what
/// is neither a file nor a directory nor a link: such things do not exist for the core.
bool fillEntry(const struct statx& information, std::string_view name, FileEntry& entry);

/// What the volume of an open file or directory keeps of a modification time, by its type.
std::int64_t timeStepAt(int fd);

/// Whose times are set: an open file (`name` null), or an entry of an open directory, never what a
/// link points to.
struct StampTarget {
    int fd;
    const char* name = nullptr;
};

/// Sets access and modification time in one call, since some volumes ignore the one without the
/// other; the latter rounded up to `step` nanoseconds or to what the volume is seen to keep: a copy
/// that seemed older than its source would be made again at every run. 0 or an errno value.
int stamp(const StampTarget& target, timespec access, timespec write, std::int64_t step);

/// Tries a time on an open file, and asks the volume itself what it has made of it, not the
/// system's memory of it.
TimeTrial timeTrialOn(int fd);

/// What a file was stamped with.
struct Stamp {
    timespec access;
    timespec write;
};

/// False where the times of a link, and so its owner, cannot be set: some servers change what it
/// leads to instead. Tried out on a link of the program's own that leads nowhere and is removed
/// again.
bool keepsLinkTimes(int directory);

/// Whether a volume of this type (statfs f_type) that answers so to the making of a link holds
/// none. Programs that serve a volume may say that their own request has failed; from a disk that
/// is an error like any other.
bool isLinkRefusal(int error, std::int64_t fileSystemType);

/// The same of the volume of an open directory.
bool isLinkRefusalAt(int error, int directory);

/// Gives an open directory (O_PATH will do) the times of its original, where they differ. A volume
/// that refuses keeps its own, which decide nothing.
void matchTime(int directory, const struct stat& original);

enum class StampState { kept, givenAgain, lost };

/// Looks, once a file has its name, at what its volume has made of its stamp: servers may set their
/// own time when the file is closed, which shows only then. `name` in `directory` is stamped again
/// where that is so.
StampState checkStamp(int directory, const char* name, const Stamp& stamp);

/// True for a stamp that every volume holds which keeps times.
bool isOrdinary(const Stamp& stamp);

/// The same for many files: what a volume makes of a time is tried out once on the first of its
/// files, and where that gives a clear answer no other is asked.
class TimeStamps {
  public:
    /// `fd`: open, on the volume `device`. 0 or an errno value.
    int set(int fd, dev_t device, timespec access, timespec write);

    /// Of the last file; nothing where each file was looked at already.
    const std::optional<Stamp>& last() const { return last_; }

    /// The worst that has become of a modification time.
    KeptTimes kept() const { return kept_; }

  private:
    void note(std::uint64_t wanted, std::uint64_t kept);

    std::optional<Stamp> last_;
    KeptTimes kept_ = KeptTimes::exactly;
    bool known_ = false;
    dev_t device_ = 0;
    std::int64_t step_ = 0;  // 0: each file must be looked at
};

}  // namespace coffrelune
