#include "platform/memory/memory_services.h"

#include <gtest/gtest.h>

#include <ostream>

namespace coffrelune {

void PrintTo(const LocalTime& time, std::ostream* out) {
    *out << time.year << '-' << time.month << '-' << time.day << ' ' << time.hour << ':'
         << time.minute << ':' << time.second << '.' << time.millisecond;
}

namespace {

TEST(MemoryClock, StandsStillUntilItIsTold) {
    MemoryClock clock({2024, 3, 15, 10, 0, 0, 0});
    EXPECT_EQ(clock.now(), (LocalTime{2024, 3, 15, 10, 0, 0, 0}));
    EXPECT_EQ(clock.now(), (LocalTime{2024, 3, 15, 10, 0, 0, 0}));
    EXPECT_EQ(clock.monotonicMilliseconds(), 0);
}

TEST(MemoryClock, AdvancesBothReadingsTogether) {
    MemoryClock clock({2024, 3, 15, 10, 0, 0, 0});
    clock.advance(1234);
    EXPECT_EQ(clock.now(), (LocalTime{2024, 3, 15, 10, 0, 1, 234}));
    EXPECT_EQ(clock.monotonicMilliseconds(), 1234);
    clock.advanceSeconds(60);
    EXPECT_EQ(clock.now(), (LocalTime{2024, 3, 15, 10, 1, 1, 234}));
    EXPECT_EQ(clock.monotonicMilliseconds(), 61234);
}

TEST(MemoryClock, CarriesOverMidnightMonthsAndLeapDays) {
    MemoryClock clock({2024, 2, 28, 23, 59, 59, 999});
    clock.advance(1);
    EXPECT_EQ(clock.now(), (LocalTime{2024, 2, 29, 0, 0, 0, 0}));
    clock.advanceSeconds(86'400);
    EXPECT_EQ(clock.now(), (LocalTime{2024, 3, 1, 0, 0, 0, 0}));
    clock.set({2023, 2, 28, 23, 59, 59, 0});
    clock.advanceSeconds(1);
    EXPECT_EQ(clock.now(), (LocalTime{2023, 3, 1, 0, 0, 0, 0}));
    clock.set({1999, 12, 31, 23, 59, 59, 0});
    clock.advanceSeconds(1);
    EXPECT_EQ(clock.now(), (LocalTime{2000, 1, 1, 0, 0, 0, 0}));
}

TEST(MemoryClock, SettingTheCalendarLeavesTheMonotonicReading) {
    MemoryClock clock;
    clock.advance(500);
    clock.set({2001, 1, 1, 0, 0, 0, 0});
    EXPECT_EQ(clock.now(), (LocalTime{2001, 1, 1, 0, 0, 0, 0}));
    EXPECT_EQ(clock.monotonicMilliseconds(), 500);
}

TEST(MemoryClock, FileTimesCountFromSixteenHundredAndOne) {
    EXPECT_EQ(fileTimeAt(1601, 1, 1), 0U);
    EXPECT_EQ(fileTimeAt(1601, 1, 2), 864'000'000'000U);
    EXPECT_EQ(fileTimeAt(1970, 1, 1), 116'444'736'000'000'000U);
    EXPECT_EQ(localTimeOf(fileTimeAt(2024, 2, 29, 12, 34, 56)),
              (LocalTime{2024, 2, 29, 12, 34, 56, 0}));
}

}  // namespace
}  // namespace coffrelune
