#include "platform/posix/file_times.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/statfs.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/native_path.h"

namespace coffrelune {
namespace {

constexpr std::int64_t unitsPerSecond = 10'000'000;
constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t secondsFrom1601To1970 = 11'644'473'600;
// Where 100 ns units leave 63 bits; some file systems can bear later times.
constexpr std::int64_t latestSecond = INT64_MAX / unitsPerSecond - secondsFrom1601To1970 - 1;

std::uint64_t fileTimeOf(const statx_timestamp& time) {
    return toFileTime(time.tv_sec, time.tv_nsec);
}

int setOnce(const StampTarget& target, timespec access, timespec write) {
    const timespec times[2] = {access, write};
    const int result = target.name == nullptr
                           ? futimens(target.fd, times)
                           : utimensat(target.fd, target.name, times, AT_SYMLINK_NOFOLLOW);
    return result == 0 ? 0 : errno;
}

/// What the volume makes of a time whose digits tell the steps apart; 0 when that fits none.
std::int64_t tryStep(int fd) {
    constexpr timespec odd{1'000'000'001, 123'456'700};
    struct statx now {};
    if (setOnce({fd}, odd, odd) != 0 || statEntry(fd, "", false, now) != 0) return 0;
    const std::uint64_t kept = fileTimeOf(now.stx_mtime);
    constexpr std::int64_t steps[] = {1, 1'000, 10'000'000, nanosecondsPerSecond,
                                      2 * nanosecondsPerSecond};
    for (const std::int64_t step : steps) {
        const timespec up = roundUp(odd, step);
        const std::uint64_t above = toFileTime(up.tv_sec, static_cast<std::uint32_t>(up.tv_nsec));
        const std::uint64_t width = static_cast<std::uint64_t>(step) / 100;
        if (kept == above || (step > 1 && kept + width == above)) return step;
    }
    return 0;
}

bool keptTime(const StampTarget& target, timespec wanted) {
    struct statx now {};
    const char* name = target.name == nullptr ? "" : target.name;
    if (statEntry(target.fd, name, false, now) != 0) return true;  // nothing to correct by
    return fileTimeOf(now.stx_mtime) >=
           toFileTime(wanted.tv_sec, static_cast<std::uint32_t>(wanted.tv_nsec));
}

}  // namespace

std::uint64_t toFileTime(std::int64_t seconds, std::uint32_t nanoseconds) {
    if (seconds < -secondsFrom1601To1970) return 0;
    const std::int64_t since1601 = std::min(seconds, latestSecond) + secondsFrom1601To1970;
    return static_cast<std::uint64_t>(since1601 * unitsPerSecond) + nanoseconds / 100;
}

timespec toTimespec(std::uint64_t fileTime) {
    const auto units = static_cast<std::int64_t>(std::min<std::uint64_t>(fileTime, INT64_MAX));
    timespec time{};
    time.tv_sec = units / unitsPerSecond - secondsFrom1601To1970;
    time.tv_nsec = units % unitsPerSecond * 100;
    return time;
}

timespec roundUp(timespec time, std::int64_t granularity) {
    if (granularity < nanosecondsPerSecond) {
        time.tv_nsec = (time.tv_nsec + granularity - 1) / granularity * granularity;
        time.tv_sec += time.tv_nsec / nanosecondsPerSecond;
        time.tv_nsec %= nanosecondsPerSecond;
        return time;
    }
    const std::int64_t step = granularity / nanosecondsPerSecond;
    if (time.tv_nsec > 0) ++time.tv_sec;
    time.tv_nsec = 0;
    const std::int64_t beyond = (time.tv_sec % step + step) % step;
    if (beyond != 0) time.tv_sec += step - beyond;
    return time;
}

std::int64_t timeGranularity(std::int64_t fileSystemType) {
    if (fileSystemType == MSDOS_SUPER_MAGIC) return 2 * nanosecondsPerSecond;
    if (fileSystemType == 0x2011BAB0) return 10'000'000;  // exFAT
    return 1;
}

bool tellsMountPoints(const struct statx& information) {
    return (information.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0;
}

bool fillEntry(const struct statx& information, std::string name, FileEntry& entry) {
    const auto mode = information.stx_mode;
    if (!S_ISREG(mode) && !S_ISDIR(mode) && !S_ISLNK(mode)) return false;
    entry.attributes = 0;
    if (S_ISDIR(mode)) entry.attributes |= attribute::directory;
    if (S_ISLNK(mode)) entry.attributes |= attribute::link;
    if (!S_ISLNK(mode) && (mode & S_IWUSR) == 0) entry.attributes |= attribute::readOnly;
    if (name.starts_with('.') && name != "." && name != "..") {
        entry.attributes |= attribute::hidden;
    }
    if (entry.attributes == 0) entry.attributes = attribute::normal;
    entry.size = S_ISDIR(mode) ? 0 : information.stx_size;
    entry.times.lastAccess = fileTimeOf(information.stx_atime);
    entry.times.lastWrite = fileTimeOf(information.stx_mtime);
    entry.times.creation = (information.stx_mask & STATX_BTIME) != 0
                               ? fileTimeOf(information.stx_btime)
                               : std::min({entry.times.lastAccess, entry.times.lastWrite,
                                           fileTimeOf(information.stx_ctime)});
    entry.id = {deviceOf(information), information.stx_ino};
    entry.mountPoint = S_ISDIR(mode) && (information.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    entry.unreadable = false;
    entry.name = std::move(name);
    return true;
}

std::int64_t timeStepAt(int fd) {
    struct statfs volume {};
    return fstatfs(fd, &volume) == 0 ? timeGranularity(volume.f_type) : 1;
}

int stamp(const StampTarget& target, timespec access, timespec write, std::int64_t step) {
    if (write.tv_nsec == UTIME_OMIT) return setOnce(target, access, write);
    const timespec wanted = step > 1 ? roundUp(write, step) : write;
    int error = setOnce(target, access, wanted);
    // Network and user-space file systems do not say what they keep: what they kept is looked at,
    // and the stamp is moved up to the next step that they hold.
    constexpr std::int64_t steps[] = {1'000, 10'000'000, nanosecondsPerSecond,
                                      2 * nanosecondsPerSecond};
    for (const std::int64_t tried : steps) {
        if (error != 0 || keptTime(target, write)) break;
        error = setOnce(target, access, roundUp(write, tried));
    }
    return error;
}

int TimeStamps::set(int fd, dev_t device, timespec access, timespec write) {
    if (!known_ || device != device_) step_ = tryStep(fd);
    known_ = true;
    device_ = device;
    if (step_ == 0) return stamp({fd}, access, write, 1);
    return setOnce({fd}, access, step_ > 1 ? roundUp(write, step_) : write);
}

}  // namespace coffrelune
