#include "system/date_time.h"

#include <gtest/gtest.h>

#include <limits>

namespace coffrelune {
namespace {

LocalTime at(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
             int millisecond = 0) {
    return {year, month, day, hour, minute, second, millisecond};
}

TEST(FormatDateTime, WritesTwoDigitsAndAFourDigitYear) {
    EXPECT_EQ(formatDateTime(at(2025, 3, 4, 8, 5, 9, 999)), "04/03/2025 08:05:09");
    EXPECT_EQ(formatDateTime(at(2024, 12, 31, 23, 59, 59)), "31/12/2024 23:59:59");
    EXPECT_EQ(formatDate(at(987, 1, 2)), "02/01/0987");
}

TEST(ParseDateTime, ReadsWhatWasFormatted) {
    for (const LocalTime& time : {at(2024, 2, 29, 23, 59, 59), at(1999, 12, 31), at(2000, 2, 29)}) {
        EXPECT_EQ(parseDateTime(formatDateTime(time)), time);
    }
    EXPECT_EQ(parseDate("29/02/2024"), at(2024, 2, 29));
}

TEST(ParseDateTime, RefusesWhatIsNoDate) {
    for (const char* text :
         {"", "29/02/2023 00:00:00", "29/02/1900 00:00:00", "31/04/2024 00:00:00",
          "00/01/2024 00:00:00", "01/13/2024 00:00:00", "01/00/2024 00:00:00",
          "01/01/0000 00:00:00", "01/01/2024 24:00:00", "01/01/2024 00:60:00",
          "01/01/2024 00:00:60", "1/1/2024 00:00:00", "01/01/2024", "01/01/2024 00:00",
          "01-01-2024 00:00:00", "01/01/2024 00:00:0x", "01/01/2024 00:00:00 ",
          "-1/01/2024 00:00:00"}) {
        EXPECT_FALSE(parseDateTime(text).has_value()) << text;
    }
    EXPECT_FALSE(parseDate("01/01/2024 00:00:00").has_value());
}

TEST(FormatLongDate, IsFrench) {
    EXPECT_EQ(formatLongDate(at(2025, 3, 3, 8, 5)), "lun. 3 mars 2025 à 08:05");
    EXPECT_EQ(formatLongDate(at(2024, 2, 29, 23, 59)), "jeu. 29 février 2024 à 23:59");
    EXPECT_EQ(formatLongDate(at(2000, 1, 1)), "sam. 1 janvier 2000 à 00:00");
}

TEST(FormatLongDate, NamesEveryDayAndMonth) {
    const char* days[] = {"lun.", "mar.", "mer.", "jeu.", "ven.", "sam.", "dim."};
    for (int i = 0; i < 7; ++i) {
        const std::string text = formatLongDate(at(2025, 3, 3 + i));
        EXPECT_EQ(text.substr(0, 4), days[i]);
    }
    const char* months[] = {"janvier", "février", "mars",      "avril",   "mai",      "juin",
                            "juillet", "août",    "septembre", "octobre", "novembre", "décembre"};
    for (int i = 0; i < 12; ++i) {
        const std::string text = formatLongDate(at(2025, i + 1, 1));
        EXPECT_EQ(text.substr(7), std::string(months[i]) + " 2025 à 00:00");
    }
}

TEST(FormatDuration, CountsHoursMinutesAndSeconds) {
    EXPECT_EQ(formatDuration(0), "00:00:00");
    EXPECT_EQ(formatDuration(999), "00:00:00");
    EXPECT_EQ(formatDuration(83'000), "00:01:23");
    EXPECT_EQ(formatDuration(86'399'999), "23:59:59");
}

TEST(FormatDuration, StartsAgainAfterADay) {
    EXPECT_EQ(formatDuration(86'400'000), "00:00:00");
    EXPECT_EQ(formatDuration(90'061'000), "01:01:01");
}

TEST(FormatDuration, IsZeroWhenTheClockWasSetBack) {
    EXPECT_EQ(formatDuration(-1), "00:00:00");
    EXPECT_EQ(formatDuration(std::numeric_limits<std::int64_t>::min()), "00:00:00");
}

TEST(SecondsSinceMidnight, KeepsTheFraction) {
    EXPECT_DOUBLE_EQ(secondsSinceMidnight(at(2025, 3, 3)), 0.0);
    EXPECT_DOUBLE_EQ(secondsSinceMidnight(at(2025, 3, 3, 23, 59, 59, 500)), 86'399.5);
}

TEST(ToMilliseconds, GivesDifferencesAcrossDaysAndYears) {
    EXPECT_EQ(toMilliseconds(at(1601, 1, 1)), 0);
    EXPECT_EQ(toMilliseconds(at(1970, 1, 1)), 11'644'473'600'000);
    EXPECT_EQ(toMilliseconds(at(2025, 1, 1)) - toMilliseconds(at(2024, 12, 31, 23, 59, 59, 999)),
              1);
    EXPECT_EQ(toMilliseconds(at(2024, 3, 1)) - toMilliseconds(at(2024, 2, 28)), 2 * 86'400'000LL);
    EXPECT_EQ(toMilliseconds(at(1900, 3, 1)) - toMilliseconds(at(1900, 2, 28)), 86'400'000LL);
    EXPECT_EQ(toMilliseconds(at(1600, 12, 31)), -86'400'000LL);
}

TEST(NextDay, CrossesMonthsAndYearsAndKeepsTheTimeOfDay) {
    EXPECT_EQ(nextDay(at(2024, 2, 28, 8, 5, 9, 7)), at(2024, 2, 29, 8, 5, 9, 7));
    EXPECT_EQ(nextDay(at(2023, 2, 28)), at(2023, 3, 1));
    EXPECT_EQ(nextDay(at(2000, 2, 28)), at(2000, 2, 29));
    EXPECT_EQ(nextDay(at(1900, 2, 28)), at(1900, 3, 1));
    EXPECT_EQ(nextDay(at(2024, 12, 31, 23, 59)), at(2025, 1, 1, 23, 59));
    EXPECT_EQ(nextDay(at(2024, 4, 30)), at(2024, 5, 1));
    EXPECT_EQ(nextDay(at(1600, 12, 31)), at(1601, 1, 1));
    EXPECT_EQ(nextDay(at(1600, 2, 28)), at(1600, 2, 29));
}

TEST(IsTimeOfDay, WantsTwoDigitsColonTwoDigits) {
    EXPECT_TRUE(isTimeOfDay("00:00"));
    EXPECT_TRUE(isTimeOfDay("23:59"));
    for (const char* text : {"", "24:00", "25:00", "00:60", "80:00", "8:30", "ab:00", "08.30",
                             "08:3", "08:300", " 8:30", "-1:00", "08:30 "}) {
        EXPECT_FALSE(isTimeOfDay(text)) << text;
    }
}

TEST(NextScheduledDate, IsTodayBeforeTheTimeAndTomorrowAfterIt) {
    EXPECT_EQ(nextScheduledDate("", false, false, "12:00", at(2025, 3, 3, 11)), "03/03/2025");
    EXPECT_EQ(nextScheduledDate("", false, false, "12:00", at(2025, 3, 3, 13)), "04/03/2025");
    EXPECT_EQ(nextScheduledDate("", false, false, "12:00", at(2024, 12, 31, 12, 0, 1)),
              "01/01/2025");
}

TEST(NextScheduledDate, StaysTodayAtTheVeryMinute) {
    EXPECT_EQ(nextScheduledDate("", false, false, "12:00", at(2025, 3, 3, 12)), "03/03/2025");
    EXPECT_EQ(nextScheduledDate("", false, false, "00:00", at(2025, 3, 3)), "03/03/2025");
    EXPECT_EQ(nextScheduledDate("", false, false, "00:00", at(2025, 3, 3, 0, 0, 1)), "04/03/2025");
}

TEST(NextScheduledDate, MovesTheStoredDayOnByOneAfterARun) {
    const LocalTime now = at(2025, 3, 10, 11);
    EXPECT_EQ(nextScheduledDate("28/02/2025", true, true, "12:00", now), "01/03/2025");
    EXPECT_EQ(nextScheduledDate("28/02/2024", true, true, "10:00", now), "29/02/2024")
        << "one day, not two, when the time has passed as well";
}

TEST(NextScheduledDate, StartsFromTodayWhenNothingIsKept) {
    const LocalTime now = at(2025, 3, 10, 11);
    EXPECT_EQ(nextScheduledDate("", true, true, "12:00", now), "11/03/2025");
    EXPECT_EQ(nextScheduledDate("28/02/2025", false, false, "12:00", now), "10/03/2025");
    EXPECT_EQ(nextScheduledDate("30/02/2025", true, false, "12:00", now), "10/03/2025");
}

TEST(NextScheduledDate, TakesASpoiltTimeAsMidnight) {
    EXPECT_EQ(nextScheduledDate("", false, false, "ab", at(2025, 3, 3, 0, 1)), "04/03/2025");
    EXPECT_EQ(nextScheduledDate("", false, false, "", at(2025, 3, 3)), "03/03/2025");
}

TEST(CalendarOfFileTime, AgreesWithKnownValues) {
    EXPECT_EQ(calendarOfFileTime(0), at(1601, 1, 1));
    EXPECT_EQ(calendarOfFileTime(116'444'736'000'000'000), at(1970, 1, 1));
    EXPECT_EQ(calendarOfFileTime(125'911'584'000'000'000), at(2000, 1, 1));
    EXPECT_EQ(calendarOfFileTime(128'166'372'003'061'629), at(2007, 2, 22, 17, 0, 0, 306));
    EXPECT_EQ(calendarOfFileTime(133'537'247'999'999'999), at(2024, 2, 29, 23, 59, 59, 999));
}

TEST(CalendarOfFileTime, HoldsTheLargestFileTime) {
    const LocalTime last = calendarOfFileTime(std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(last, at(60056, 5, 28, 5, 36, 10, 955));
}

TEST(CalendarOfFileTime, AgreesWithToMillisecondsOnEveryDayOf400Years) {
    LocalTime day = at(1601, 1, 1);
    for (std::uint64_t i = 0; i < 146'097; ++i) {
        ASSERT_EQ(calendarOfFileTime(i * 864'000'000'000), day);
        ASSERT_EQ(toMilliseconds(day), static_cast<std::int64_t>(i) * 86'400'000);
        day = nextDay(day);
    }
    EXPECT_EQ(day, at(2001, 1, 1));
}

}  // namespace
}  // namespace coffrelune
