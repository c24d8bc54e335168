#include "system/date_time.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace coffrelune {
namespace {

using namespace std::chrono;

constexpr sys_days fileTimeEpoch = year{1601} / 1 / 1;

sys_days dayOf(const LocalTime& time) {
    return year{time.year} / time.month / time.day;
}

void setDate(LocalTime& time, sys_days day) {
    const year_month_day date(day);
    time.year = static_cast<int>(date.year());
    time.month = static_cast<int>(static_cast<unsigned>(date.month()));
    time.day = static_cast<int>(static_cast<unsigned>(date.day()));
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
    return time.year >= 1 && (year{time.year} / time.month / time.day).ok() && time.hour <= 23 &&
           time.minute <= 59 && time.second <= 59;
}

std::optional<LocalTime> parse(std::string_view text, std::string_view pattern) {
    LocalTime time;
    if (!readFields(text, pattern, time)) return std::nullopt;
    return time;
}

// The schedule counts whole seconds, as its stored dates do.
sys_seconds wholeSeconds(const LocalTime& time) {
    return dayOf(time) + hours{time.hour} + minutes{time.minute} + seconds{time.second};
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
    constexpr std::array<const char*, 7> dayNames = {"lun.", "mar.", "mer.", "jeu.",
                                                     "ven.", "sam.", "dim."};
    constexpr std::array<const char*, 12> monthNames = {
        "janvier", "février", "mars",      "avril",   "mai",      "juin",
        "juillet", "août",    "septembre", "octobre", "novembre", "décembre"};
    const std::size_t day = weekday(dayOf(time)).iso_encoding() - 1;
    const auto month = static_cast<std::size_t>(std::clamp(time.month, 1, 12) - 1);
    return std::string(dayNames.at(day)) + ' ' + std::to_string(time.day) + ' ' +
           monthNames.at(month) + ' ' + std::to_string(time.year) + " à " +
           timeOfDay(time.hour, time.minute);
}

std::string spokenSchedule(const std::string& nextDate, const std::string& autoTime,
                           const LocalTime& now) {
    constexpr std::array<const char*, 7> dayNames = {"lundi",    "mardi",  "mercredi", "jeudi",
                                                     "vendredi", "samedi", "dimanche"};
    if (isPastSchedule(nextDate, autoTime, now)) return "dans un instant";
    const auto date = parseDate(nextDate);
    if (!date) return "jour inconnu";
    const std::string time = " à " + (isTimeOfDay(autoTime) ? autoTime : std::string("00:00"));
    const auto ahead = (dayOf(*date) - dayOf(now)).count();
    if (ahead == 0) return "aujourd'hui" + time;
    if (ahead == 1) return "demain" + time;
    return dayNames.at(weekday(dayOf(*date)).iso_encoding() - 1) + time;
}

std::string formatDuration(std::int64_t milliseconds) {
    const hh_mm_ss span(
        floor<seconds>(std::chrono::milliseconds(std::max<std::int64_t>(milliseconds, 0))));
    return timeOfDay(span.hours().count() % 24, span.minutes().count()) + ':' +
           padded(span.seconds().count(), 2);
}

double secondsSinceMidnight(const LocalTime& time) {
    return time.hour * 3600 + time.minute * 60 + time.second + time.millisecond / 1000.0;
}

std::int64_t toMilliseconds(const LocalTime& time) {
    return milliseconds(wholeSeconds(time) - fileTimeEpoch).count() + time.millisecond;
}

LocalTime nextDay(const LocalTime& time) {
    LocalTime next = time;
    setDate(next, dayOf(time) + days{1});
    return next;
}

bool isTimeOfDay(std::string_view text) {
    return parse("01/01/2001 " + std::string(text), "dd/mm/yyyy hh:nn").has_value();
}

LocalTime latestScheduledTime(const std::string& autoTime, const LocalTime& now) {
    const LocalTime today = atTimeOfDay(now, autoTime);
    if (wholeSeconds(today) <= wholeSeconds(now)) return today;
    LocalTime yesterday = today;
    setDate(yesterday, dayOf(today) - days{1});
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
    return !day || dayOf(*day) > dayOf(now) + days{1};
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
    // <chrono> ends with the year 32767, file times do not: the calendar repeats after 400 years.
    constexpr days era{146'097};
    const milliseconds since1601(static_cast<std::int64_t>(fileTime / 10'000));
    const auto wholeDays = floor<days>(since1601);
    const hh_mm_ss clock(since1601 - wholeDays);
    LocalTime time;
    setDate(time, fileTimeEpoch + wholeDays % era);
    time.year += static_cast<int>(wholeDays / era) * 400;
    time.hour = static_cast<int>(clock.hours().count());
    time.minute = static_cast<int>(clock.minutes().count());
    time.second = static_cast<int>(clock.seconds().count());
    time.millisecond = static_cast<int>(clock.subseconds().count());
    return time;
}

}  // namespace coffrelune
