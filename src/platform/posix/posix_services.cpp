#include "platform/posix/posix_services.h"

#include <fcntl.h>
#include <langinfo.h>
#include <locale.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <memory>

#include "platform/characters.h"
#include "platform/posix/file_times.h"
#include "platform/posix/native_path.h"

namespace coffrelune {
namespace {

std::string currentDirectory() {
    const std::unique_ptr<char, decltype(&std::free)> path(getcwd(nullptr, 0), std::free);
    return path == nullptr ? "/" : std::string(path.get());
}

}  // namespace

std::vector<std::string> PosixDrives::roots() {
    table_.refresh();
    return table_.driveRoots();
}

std::string PosixDrives::fromNative(const std::string& typed) {
    return table_.fromNative(typed, currentDirectory());
}

std::string PosixDrives::fromWindow(const std::string& entered) {
    const char* home = std::getenv("HOME");
    return table_.fromWindow(entered, home == nullptr ? "" : home);
}

LocalTime toLocalTime(const timespec& time) {
    tm fields{};
    localtime_r(&time.tv_sec, &fields);
    LocalTime local;
    local.year = fields.tm_year + 1900;
    local.month = fields.tm_mon + 1;
    local.day = fields.tm_mday;
    local.hour = fields.tm_hour;
    local.minute = fields.tm_min;
    local.second = fields.tm_sec;
    local.millisecond = static_cast<int>(time.tv_nsec / 1'000'000);
    return local;
}

LocalTime PosixClock::now() {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    return toLocalTime(time);
}

LocalTime PosixClock::localTime(std::uint64_t fileTime) {
    return toLocalTime(toTimespec(fileTime));
}

std::int64_t PosixClock::monotonicMilliseconds() {
    timespec time{};
    // Asked for every file: the coarse clock, a few milliseconds behind, costs a tenth.
    clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
    return std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1'000'000;
}

PosixLocale::PosixLocale(const char* name) {
    // The character set comes with the category of characters, the separators with that of numbers.
    const locale_t locale = newlocale(LC_NUMERIC_MASK | LC_CTYPE_MASK, name, locale_t{});
    if (locale == locale_t{}) return;
    const std::string decimal = nl_langinfo_l(RADIXCHAR, locale);
    const std::string groups = nl_langinfo_l(THOUSEP, locale);
    freelocale(locale);
    take(decimal, groups);
}

PosixLocale::PosixLocale(const std::string& decimal, const std::string& groups) {
    take(decimal, groups);
}

// A point without groups is what a system says that has not been told any language.
void PosixLocale::take(const std::string& decimal, const std::string& groups) {
    const bool saysNothing = decimal == "." && groups.empty();
    if (!saysNothing && ascii::isShownText(decimal)) decimal_ = decimal;
}

bool PosixGuard::claim(const std::string& directory) {
    claim_.drop();
    Place place;
    UniqueFd fd;
    const bool opened = table_.paths().locate(directory, place).ok() &&
                        openPath(place.native, O_RDONLY | O_DIRECTORY, fd) == 0;
    return !opened || claim_.take(*locks_, fd.get(), TreeUse::write);
}

}  // namespace coffrelune
