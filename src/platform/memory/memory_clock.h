#pragma once

#include <cstdint>

#include "platform/services.h"

namespace coffrelune {

/// Units of 100 ns since 1601-01-01 of calendar fields, and back. In memory the local time zone is
/// UTC, so both directions are exact (to the millisecond).
std::uint64_t fileTimeOf(const LocalTime& time);
LocalTime localTimeOf(std::uint64_t fileTime);

/// Shorthand for tests: `fileTimeOf` of the fields.
std::uint64_t fileTimeAt(int year, int month, int day, int hour = 0, int minute = 0,
                         int second = 0);

/// A clock that moves only when told. The calendar and the monotonic reading advance together;
/// `set` moves the calendar alone, as a user does who sets the clock.
class MemoryClock final : public Clock {
  public:
    explicit MemoryClock(const LocalTime& start = {2024, 3, 15, 10, 0, 0, 0}) { set(start); }

    LocalTime now() override { return localTimeOf(fileTime_); }
    std::int64_t monotonicMilliseconds() override { return monotonic_; }

    /// The reading of now() as the time of a file written at this moment.
    std::uint64_t fileTime() const { return fileTime_; }

    void set(const LocalTime& time) { fileTime_ = fileTimeOf(time); }

    /// Moves both readings on; `milliseconds` is not negative.
    void advance(std::int64_t milliseconds);
    void advanceSeconds(std::int64_t seconds) { advance(seconds * 1000); }

  private:
    std::uint64_t fileTime_ = 0;
    std::int64_t monotonic_ = 0;
};

}  // namespace coffrelune
