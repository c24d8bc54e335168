// The date rules of the automatic backup.
#include <gtest/gtest.h>

#include "system/date_time.h"

namespace coffrelune {
namespace {

LocalTime at(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
             int millisecond = 0) {
    return {year, month, day, hour, minute, second, millisecond};
}

TEST(LatestScheduledTime, IsTodaysOnceItHasStruck) {
    EXPECT_EQ(latestScheduledTime("12:00", at(2025, 3, 14, 12)), at(2025, 3, 14, 12));
    EXPECT_EQ(latestScheduledTime("12:00", at(2025, 3, 14, 23, 59, 59, 999)), at(2025, 3, 14, 12));
    EXPECT_EQ(latestScheduledTime("00:00", at(2025, 3, 14)), at(2025, 3, 14));
}

TEST(LatestScheduledTime, IsYesterdaysBefore) {
    EXPECT_EQ(latestScheduledTime("12:00", at(2025, 3, 14, 11, 59, 59)), at(2025, 3, 13, 12));
    EXPECT_EQ(latestScheduledTime("12:00", at(2025, 1, 1, 9)), at(2024, 12, 31, 12));
    EXPECT_EQ(latestScheduledTime("12:00", at(2024, 3, 1, 9)), at(2024, 2, 29, 12));
    EXPECT_EQ(latestScheduledTime("12:00", at(2025, 3, 1, 9)), at(2025, 2, 28, 12));
}

TEST(LatestScheduledTime, TakesASpoiltTimeAsMidnight) {
    EXPECT_EQ(latestScheduledTime("99:99", at(2025, 3, 14, 9)), at(2025, 3, 14));
}

TEST(IsPastSchedule, BeginsTheSecondAfter) {
    EXPECT_FALSE(isPastSchedule("14/03/2025", "12:00", at(2025, 3, 14, 12, 0, 0, 999)));
    EXPECT_TRUE(isPastSchedule("14/03/2025", "12:00", at(2025, 3, 14, 12, 0, 1)));
    EXPECT_FALSE(isPastSchedule("15/03/2025", "12:00", at(2025, 3, 14, 23)));
    EXPECT_TRUE(isPastSchedule("31/12/2024", "23:00", at(2025, 1, 1)));
    EXPECT_FALSE(isPastSchedule("", "12:00", at(2025, 3, 14, 23)));
}

TEST(IsBackupMissing, ComparesWithTheLatestScheduledInstant) {
    const LocalTime now = at(2025, 3, 14, 13);
    EXPECT_TRUE(isBackupMissing("", "12:00", now));
    EXPECT_TRUE(isBackupMissing("hier", "12:00", now));
    EXPECT_TRUE(isBackupMissing("14/03/2025 11:59:59", "12:00", now));
    EXPECT_FALSE(isBackupMissing("14/03/2025 12:00:00", "12:00", now));
    EXPECT_FALSE(isBackupMissing("14/03/2025 12:30:00", "12:00", now));
    EXPECT_FALSE(isBackupMissing("13/03/2025 15:00:00", "14:00", now));
    EXPECT_TRUE(isBackupMissing("13/03/2025 13:00:00", "14:00", now));
}

TEST(IsBackupMissing, DoesNotTrustABackupOfTheFuture) {
    EXPECT_TRUE(isBackupMissing("14/03/2025 13:00:01", "12:00", at(2025, 3, 14, 13)));
    EXPECT_FALSE(isBackupMissing("14/03/2025 13:00:00", "12:00", at(2025, 3, 14, 13)));
}

TEST(IsScheduleLost, WhenTheDueDayIsLaterThanTomorrow) {
    const LocalTime now = at(2025, 2, 28, 13);
    EXPECT_FALSE(isScheduleLost("27/02/2025", now));
    EXPECT_FALSE(isScheduleLost("28/02/2025", now));
    EXPECT_FALSE(isScheduleLost("01/03/2025", now));
    EXPECT_TRUE(isScheduleLost("02/03/2025", now));
    EXPECT_TRUE(isScheduleLost("", now));
}

}  // namespace
}  // namespace coffrelune
