#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/services.h"

namespace coffrelune {

/// "dd/mm/yyyy hh:nn:ss", the form in which dates are stored.
std::string formatDateTime(const LocalTime& time);
std::optional<LocalTime> parseDateTime(std::string_view text);

/// "dd/mm/yyyy", the scheduler's day.
std::string formatDate(const LocalTime& time);
std::optional<LocalTime> parseDate(std::string_view text);

/// "ddd d mmmm yyyy à hh:nn" in French: "lun. 3 mars 2025 à 08:05".
std::string formatLongDate(const LocalTime& time);

/// "hh:nn:ss" of a span; hours start again at 0 after a day, a negative span (the clock was set
/// back) gives "00:00:00".
std::string formatDuration(std::int64_t milliseconds);

/// Seconds since local midnight, with their fraction.
double secondsSinceMidnight(const LocalTime& time);

/// Milliseconds since 1601-01-01 of the calendar fields, for differences between two local times.
std::int64_t toMilliseconds(const LocalTime& time);

/// The day after, time of day kept.
LocalTime nextDay(const LocalTime& time);

/// "hh:nn" with hours 00-23 and minutes 00-59, exactly five characters.
bool isTimeOfDay(std::string_view text);

/// The day of the next scheduled backup, as "dd/mm/yyyy". Starts from today, or from `stored` when
/// it is to be kept and is not empty; one day is added when re-arming after a run, or when `now` is
/// already past `autoTime` ("hh:nn").
std::string nextScheduledDate(const std::string& stored, bool keepStored, bool afterRun,
                              const std::string& autoTime, const LocalTime& now);

/// The latest scheduled instant ("hh:nn" of any day) that is not after `now`: today's, or
/// yesterday's while today's is still to come. Whole seconds. A time that is none counts as 00:00.
LocalTime latestScheduledTime(const std::string& autoTime, const LocalTime& now);

/// True when `now` is later, in whole seconds, than `nextDate` ("dd/mm/yyyy") at `autoTime`. False
/// for a day that is none.
bool isPastSchedule(const std::string& nextDate, const std::string& autoTime, const LocalTime& now);

/// True when no clean backup has been made since the latest scheduled instant: `lastSave`
/// ("dd/mm/yyyy hh:nn:ss") is older, is no date, or lies in the future, which only a clock that was
/// set back can bring about and which says nothing of what has been saved.
bool isBackupMissing(const std::string& lastSave, const std::string& autoTime,
                     const LocalTime& now);

/// True for a due day that no arming on `now` or earlier gives: later than tomorrow, or no date.
/// The clock was set back, and waiting for that day would leave out those between.
bool isScheduleLost(const std::string& nextDate, const LocalTime& now);

/// The day and time of a scheduled backup in words: "aujourd'hui à 19:30", "demain à 08:30", "lundi
/// à 08:30"; "dans un instant" once it is past.
std::string spokenSchedule(const std::string& nextDate, const std::string& autoTime,
                           const LocalTime& now);

/// Calendar fields (UTC) of a file time in units of 100 ns since 1601-01-01.
LocalTime calendarOfFileTime(std::uint64_t fileTime);

}  // namespace coffrelune
