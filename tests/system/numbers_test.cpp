#include "system/numbers.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/memory/memory_services.h"

namespace coffrelune {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(FormatFixed, WritesTheDecimalsOfTheLocale) {
    MemoryLocale locale;
    EXPECT_EQ(formatFixed(1.5, 2, locale), "1,50");
    EXPECT_EQ(formatFixed(0, 2, locale), "0,00");
    EXPECT_EQ(formatFixed(12.04, 1, locale), "12,0");
    EXPECT_EQ(formatFixed(512, 0, locale), "512");
    EXPECT_EQ(formatFixed(1234.5, 1, locale), "1234,5");
    locale.set(".");
    EXPECT_EQ(formatFixed(1.5, 2, locale), "1.50");
}

TEST(FormatFixed, RoundsAHalfAwayFromZero) {
    const MemoryLocale locale;
    EXPECT_EQ(formatFixed(0.125, 2, locale), "0,13");
    EXPECT_EQ(formatFixed(0.375, 2, locale), "0,38");
    EXPECT_EQ(formatFixed(10.25, 1, locale), "10,3");
    EXPECT_EQ(formatFixed(0.5, 0, locale), "1");
    EXPECT_EQ(formatFixed(1.5, 0, locale), "2");
    EXPECT_EQ(formatFixed(2.5, 0, locale), "3");
    EXPECT_EQ(formatFixed(1000.0 / 1024, 2, locale), "0,98");
    EXPECT_EQ(formatFixed(9.999, 2, locale), "10,00");
    EXPECT_EQ(formatFixed(99.96, 1, locale), "100,0");
}

TEST(FormatFixed, IsZeroForWhatIsNoSize) {
    const MemoryLocale locale;
    EXPECT_EQ(formatFixed(-3, 1, locale), "0,0");
    EXPECT_EQ(formatFixed(notANumber, 0, locale), "0");
    EXPECT_EQ(formatFixed(infinity, 0, locale), "9000000000000000");
}

TEST(FormatGrouped, PartsGroupsOfThreeDigitsByPlainBlanks) {
    EXPECT_EQ(formatGrouped(0), "0");
    EXPECT_EQ(formatGrouped(123), "123");
    EXPECT_EQ(formatGrouped(1023), "1 023");
    EXPECT_EQ(formatGrouped(123456), "123 456");
    EXPECT_EQ(formatGrouped(1234567), "1 234 567");
}

TEST(FormatGrouped, RoundsAHalfAwayFromZero) {
    EXPECT_EQ(formatGrouped(100.5), "101");
    EXPECT_EQ(formatGrouped(999.5), "1 000");
    EXPECT_EQ(formatGrouped(100.49), "100");
    EXPECT_EQ(formatGrouped(-7), "0");
    EXPECT_EQ(formatGrouped(infinity), "9 000 000 000 000 000");
}

}  // namespace
}  // namespace coffrelune
