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

/// Calendar fields (UTC) of a file time in units of 100 ns since 1601-01-01.
LocalTime calendarOfFileTime(std::uint64_t fileTime);

}  // namespace coffrelune
