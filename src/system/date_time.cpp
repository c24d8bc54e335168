#include "system/date_time.h"

#include <algorithm>
#include <array>

namespace coffrelune {
namespace {

constexpr std::int64_t millisecondsPerSecond = 1000;
constexpr std::int64_t millisecondsPerDay = 86'400'000;
constexpr std::int64_t daysPerEra = 146'097;  // the calendar repeats after 400 years

// Days from 1601-01-01, itself the first day of a 400-year era, to the first of January.
std::int64_t daysBeforeYear(std::int64_t year) {
    const std::int64_t past = year - 1601;
    const std::int64_t era = (past >= 0 ? past : past - 399) / 400;
    const std::int64_t inEra = past - era * 400;
    return era * daysPerEra + inEra * 365 + inEra / 4 - inEra / 100;
}

bool isLeapYear(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysInMonth(int year, int month) {
    constexpr std::array<int, 12> days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month == 2 && isLeapYear(year)) return 29;
    return days.at(static_cast<std::size_t>(std::clamp(month, 1, 12) - 1));
}

std::int64_t daysSince1601(const LocalTime& time) {
    std::int64_t days = daysBeforeYear(time.year) + time.day - 1;
    for (int month = 1; month < time.month; ++month) days += daysInMonth(time.year, month);
    return days;
}

void setDate(LocalTime& time, std::int64_t days) {
    // The estimate is at most one year late or early; the loops put it right.
    int year = static_cast<int>(1601 + days * 400 / daysPerEra);
    while (daysBeforeYear(year) > days) --year;
    while (daysBeforeYear(year + 1) <= days) ++year;
    std::int64_t rest = days - daysBeforeYear(year);
    int month = 1;
    for (; rest >= daysInMonth(year, month); ++month) rest -= daysInMonth(year, month);
    time.year = year;
    time.month = month;
    time.day = static_cast<int>(rest) + 1;
}

std::string padded(std::int64_t number, std::size_t width) {
    std::string text = std::to_string(number);
    if (text.size() < width) text.insert(0, width - text.size(), '0');
    return text;
}

std::string timeOfDay(std::int64_t hour, std::int64_t minute) {
    return padded(hour, 2) + ':' + padded(minute, 2);
}

// Reads the digits that stand where `pattern` has a letter, one number per letter; every other
// character of the pattern must stand in the text as it is.
bool readFields(std::string_view text, std::string_view pattern, LocalTime& time) {
    if (text.size() != pattern.size()) return false;
    time = LocalTime{.year = 0, .month = 0, .day = 0};
    std::array<int*, 6> fields = {&time.day,  &time.month,  &time.year,
                                  &time.hour, &time.minute, &time.second};
    constexpr std::string_view letters = "dmyhns";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t field = letters.find(pattern[i]);
        if (field == std::string_view::npos) {
            if (text[i] != pattern[i]) return false;
            continue;
        }
        if (text[i] < '0' || text[i] > '9') return false;
        *fields.at(field) = *fields.at(field) * 10 + (text[i] - '0');
    }
    return time.year >= 1 && time.month >= 1 && time.month <= 12 && time.day >= 1 &&
           time.day <= daysInMonth(time.year, time.month) && time.hour <= 23 && time.minute <= 59 &&
           time.second <= 59;
}

std::optional<LocalTime> parse(std::string_view text, std::string_view pattern) {
    LocalTime time;
    if (!readFields(text, pattern, time)) return std::nullopt;
    return time;
}

// The schedule counts whole seconds, as its stored dates do.
std::int64_t wholeSeconds(const LocalTime& time) {
    return daysSince1601(time) * 86'400 + time.hour * 3600LL + time.minute * 60LL + time.second;
}

// A time spoilt by hand in the settings file counts as midnight, the default.
LocalTime atTimeOfDay(const LocalTime& day, const std::string& autoTime) {
    const auto time = parse("01/01/2001 " + autoTime, "dd/mm/yyyy hh:nn").value_or(LocalTime{});
    return {day.year, day.month, day.day, time.hour, time.minute, 0, 0};
}

}  // namespace

std::string formatDate(const LocalTime& time) {
    return padded(time.day, 2) + '/' + padded(time.month, 2) + '/' + padded(time.year, 4);
}

std::string formatDateTime(const LocalTime& time) {
    return formatDate(time) + ' ' + timeOfDay(time.hour, time.minute) + ':' +
           padded(time.second, 2);
}

std::optional<LocalTime> parseDate(std::string_view text) {
    return parse(text, "dd/mm/yyyy");
}

std::optional<LocalTime> parseDateTime(std::string_view text) {
    return parse(text, "dd/mm/yyyy hh:nn:ss");
}

std::string formatLongDate(const LocalTime& time) {
    constexpr std::array<const char*, 7> days = {"lun.", "mar.", "mer.", "jeu.",
                                                 "ven.", "sam.", "dim."};
    constexpr std::array<const char*, 12> months = {"janvier",   "février", "mars",     "avril",
                                                    "mai",       "juin",    "juillet",  "août",
                                                    "septembre", "octobre", "novembre", "décembre"};
    // 1601-01-01 was a Monday.
    const std::int64_t weekday = (daysSince1601(time) % 7 + 7) % 7;
    const auto month = static_cast<std::size_t>(std::clamp(time.month, 1, 12) - 1);
    return std::string(days.at(static_cast<std::size_t>(weekday))) + ' ' +
           std::to_string(time.day) + ' ' + months.at(month) + ' ' + std::to_string(time.year) +
           " à " + timeOfDay(time.hour, time.minute);
}

std::string formatDuration(std::int64_t milliseconds) {
    const std::int64_t seconds = std::max<std::int64_t>(milliseconds, 0) / millisecondsPerSecond;
    return timeOfDay(seconds / 3600 % 24, seconds / 60 % 60) + ':' + padded(seconds % 60, 2);
}

double secondsSinceMidnight(const LocalTime& time) {
    return time.hour * 3600 + time.minute * 60 + time.second + time.millisecond / 1000.0;
}

std::int64_t toMilliseconds(const LocalTime& time) {
    const std::int64_t seconds = time.hour * 3600LL + time.minute * 60LL + time.second;
    return daysSince1601(time) * millisecondsPerDay + seconds * millisecondsPerSecond +
           time.millisecond;
}

LocalTime nextDay(const LocalTime& time) {
    LocalTime next = time;
    setDate(next, daysSince1601(time) + 1);
    return next;
}

bool isTimeOfDay(std::string_view text) {
    return parse("01/01/2001 " + std::string(text), "dd/mm/yyyy hh:nn").has_value();
}

LocalTime latestScheduledTime(const std::string& autoTime, const LocalTime& now) {
    const LocalTime today = atTimeOfDay(now, autoTime);
    if (wholeSeconds(today) <= wholeSeconds(now)) return today;
    LocalTime yesterday = today;
    setDate(yesterday, daysSince1601(today) - 1);
    return yesterday;
}

bool isPastSchedule(const std::string& nextDate, const std::string& autoTime,
                    const LocalTime& now) {
    const auto day = parseDate(nextDate);
    return day && wholeSeconds(now) > wholeSeconds(atTimeOfDay(*day, autoTime));
}

bool isBackupMissing(const std::string& lastSave, const std::string& autoTime,
                     const LocalTime& now) {
    const auto last = parseDateTime(lastSave);
    if (!last || wholeSeconds(*last) > wholeSeconds(now)) return true;
    return wholeSeconds(latestScheduledTime(autoTime, now)) > wholeSeconds(*last);
}

bool isScheduleLost(const std::string& nextDate, const LocalTime& now) {
    const auto day = parseDate(nextDate);
    return !day || daysSince1601(*day) > daysSince1601(now) + 1;
}

std::string nextScheduledDate(const std::string& stored, bool keepStored, bool afterRun,
                              const std::string& autoTime, const LocalTime& now) {
    LocalTime day = now;
    // A stored day that cannot be read counts as none: it only ever comes from formatDate.
    if (const auto kept = parseDate(stored); keepStored && kept) day = *kept;
    const bool past = wholeSeconds(now) > wholeSeconds(atTimeOfDay(now, autoTime));
    return formatDate(afterRun || past ? nextDay(day) : day);
}

LocalTime calendarOfFileTime(std::uint64_t fileTime) {
    const auto milliseconds = static_cast<std::int64_t>(fileTime / 10'000);
    const std::int64_t ofDay = milliseconds % millisecondsPerDay;
    LocalTime time;
    setDate(time, milliseconds / millisecondsPerDay);
    time.hour = static_cast<int>(ofDay / 3'600'000);
    time.minute = static_cast<int>(ofDay / 60'000 % 60);
    time.second = static_cast<int>(ofDay / millisecondsPerSecond % 60);
    time.millisecond = static_cast<int>(ofDay % millisecondsPerSecond);
    return time;
}

}  // namespace coffrelune
