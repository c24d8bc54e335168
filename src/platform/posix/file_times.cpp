#include "platform/posix/file_times.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/native_path.h"
#include "platform/posix/temporary_file.h"

namespace coffrelune {
namespace {

constexpr std::int64_t unitsPerSecond = 10'000'000;
constexpr std::int64_t unitLength = 100;  // nanoseconds
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

std::uint64_t fileTimeOf(const timespec& time) {
    return toFileTime(time.tv_sec, static_cast<std::uint32_t>(time.tv_nsec));
}

bool keptTime(const StampTarget& target, timespec wanted) {
    struct statx now {};
    const char* name = target.name == nullptr ? "" : target.name;
    if (statEntry(target.fd, name, false, now) != 0) return true;  // nothing to correct by
    return fileTimeOf(now.stx_mtime) >= fileTimeOf(wanted);
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

Lock lockOf(const struct statx& information) {
    if ((information.stx_attributes & STATX_ATTR_IMMUTABLE) != 0) return Lock::immutable;
    return (information.stx_attributes & STATX_ATTR_APPEND) != 0 ? Lock::additionsOnly : Lock::none;
}

bool fillEntry(const struct statx& information, std::string_view name, FileEntry& entry) {
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
    entry.lock = lockOf(information);
    entry.failure = 0;
    return true;
}

std::int64_t timeStepAt(int fd) {
    struct statfs volume {};
    return fstatfs(fd, &volume) == 0 ? timeGranularity(volume.f_type) : 1;
}

int stamp(const StampTarget& target, timespec access, timespec write, std::int64_t step) {
    const timespec wanted = step > 1 ? roundUp(write, step) : write;
    int error = setOnce(target, access, wanted);
    // Network and user-space file systems do not say what they keep: what they kept is looked at,
    // and the stamp is moved up to the next step that they hold.
    constexpr std::int64_t steps[] = {1'000, 1'000'000, 10'000'000, nanosecondsPerSecond,
                                      2 * nanosecondsPerSecond};
    for (const std::int64_t tried : steps) {
        if (error != 0 || keptTime(target, write)) break;
        error = setOnce(target, access, roundUp(write, tried));
    }
    return error;
}

TimeTrial timeTrialOn(int fd) {
    return [fd](std::uint64_t wanted) -> std::optional<std::uint64_t> {
        const timespec time = toTimespec(wanted);
        struct statx now {};
        constexpr int flags = AT_EMPTY_PATH | AT_STATX_FORCE_SYNC;
        if (setOnce({fd}, time, time) != 0) return {};
        if (::statx(fd, "", flags, STATX_BASIC_STATS, &now) != 0) return {};
        return fileTimeOf(now.stx_mtime);
    };
}

void TimeStamps::note(std::uint64_t wanted, std::uint64_t kept) {
    if (kept == wanted) return;
    constexpr std::uint64_t widest = 20'000'000;
    const bool near = kept > wanted && kept <= wanted + widest;
    kept_ = std::max(kept_, near ? KeptTimes::rounded : KeptTimes::lost);
}

bool keepsLinkTimes(int directory) {
    const std::string name = makeTemporaryName();
    const std::string nowhere = makeTemporaryName();
    if (symlinkat(nowhere.c_str(), directory, name.c_str()) != 0) return true;  // told by the copy
    constexpr timespec any{1'000'000'000, 0};
    const StampTarget target{directory, name.c_str()};
    const bool kept = setOnce(target, any, any) == 0 && keptTime(target, any);
    // Twice: a run that ends well leaves nobody to look for what stays.
    if (unlinkat(directory, name.c_str(), 0) != 0) unlinkat(directory, name.c_str(), 0);
    return kept;
}

bool isLinkRefusal(int error, std::int64_t fileSystemType) {
    if (error == EIO) return fileSystemType == FUSE_SUPER_MAGIC;
    return error == EPERM || error == EOPNOTSUPP || error == ENOSYS;
}

bool isLinkRefusalAt(int error, int directory) {
    struct statfs volume {};
    // Of a volume that cannot be asked, an error stays an error.
    const bool told = error == EIO && fstatfs(directory, &volume) == 0;
    return isLinkRefusal(error, told ? volume.f_type : 0);
}

void matchTime(int directory, const struct stat& original) {
    struct stat now {};
    if (fstat(directory, &now) != 0) return;
    if (fileTimeOf(now.st_mtim) == fileTimeOf(original.st_mtim)) return;
    (void)setOnce({directory, "."}, original.st_atim, original.st_mtim);
}

bool isOrdinary(const Stamp& stamp) {
    constexpr time_t in1981 = 350'000'000;
    constexpr time_t in2037 = 2'140'000'000;
    return stamp.write.tv_sec > in1981 && stamp.write.tv_sec < in2037;
}

StampState checkStamp(int directory, const char* name, const Stamp& stamp) {
    const auto kept = [&] {
        struct statx now {};
        constexpr int flags = AT_SYMLINK_NOFOLLOW | AT_STATX_FORCE_SYNC;
        // Whoever cannot look has nothing to correct by.
        if (::statx(directory, name, flags, STATX_MTIME, &now) != 0) return true;
        return fileTimeOf(now.stx_mtime) == fileTimeOf(stamp.write);
    };
    if (kept()) return StampState::kept;
    const int error = setOnce({directory, name}, stamp.access, stamp.write);
    return error == 0 && kept() ? StampState::givenAgain : StampState::lost;
}

int TimeStamps::set(int fd, dev_t device, timespec access, timespec write) {
    if (!known_ || device != device_) {
        step_ = static_cast<std::int64_t>(measureStep(timeTrialOn(fd))) * 100;
    }
    known_ = true;
    device_ = device;
    last_.reset();
    if (step_ == 0) {
        const int error = stamp({fd}, access, write, 1);
        struct statx now {};
        if (error == 0 && statEntry(fd, "", false, now) == 0) {
            note(fileTimeOf(write), fileTimeOf(now.stx_mtime));
        }
        return error;
    }
    const timespec rounded = step_ > unitLength ? roundUp(write, step_) : write;
    note(fileTimeOf(write), fileTimeOf(rounded));
    last_ = Stamp{access, rounded};
    return setOnce({fd}, access, rounded);
}

}  // namespace coffrelune
