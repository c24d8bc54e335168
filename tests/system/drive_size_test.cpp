#include <gtest/gtest.h>

#include "platform/memory/memory_services.h"
#include "system/numbers.h"

namespace coffrelune {
namespace {

constexpr std::uint64_t kilo = 1024;
constexpr std::uint64_t mega = kilo * 1024;
constexpr std::uint64_t giga = mega * 1024;
constexpr std::uint64_t tera = giga * 1024;

std::string text(std::uint64_t bytes) {
    MemoryLocale locale;
    locale.set(".");
    return driveSizeText(bytes, locale);
}

TEST(DriveSize, CountsSmallSizesInBytes) {
    EXPECT_EQ(text(0), "0 octet");
    EXPECT_EQ(text(1), "1 octet");
    EXPECT_EQ(text(2), "2 octets");
    EXPECT_EQ(text(1023), "1023 octets");
}

TEST(DriveSize, ShowsThreeDigits) {
    EXPECT_EQ(text(1024), "1.00 Ko");
    EXPECT_EQ(text(10'240), "10.0 Ko");
    EXPECT_EQ(text(102'400), "100 Ko");
    EXPECT_EQ(text(1'000'000), "976 Ko");
}

TEST(DriveSize, CutsOffInsteadOfRounding) {
    EXPECT_EQ(text(1'023'999), "999 Ko");
    EXPECT_EQ(text(10 * kilo - 1), "9.99 Ko");
    EXPECT_EQ(text(100 * kilo - 1), "99.9 Ko");
    EXPECT_EQ(text(2 * giga - 1), "1.99 Go");
}

TEST(DriveSize, ChangesItsUnitAt1000OfTheSmallerOne) {
    EXPECT_EQ(text(1'024'000), "0.97 Mo");
    EXPECT_EQ(text(1'048'575'999), "999 Mo");
    EXPECT_EQ(text(1'048'576'000), "0.97 Go");
    EXPECT_EQ(text(1'073'741'823'999), "999 Go");
    EXPECT_EQ(text(1'073'741'824'000), "0.97 To");
}

TEST(DriveSize, StaysExactUpToTheLargestCount) {
    EXPECT_EQ(text(8 * tera), "8.00 To");
    EXPECT_EQ(text(10 * tera - 1), "9.99 To");
    EXPECT_EQ(text(1'000 * tera), "1 000 To");
    EXPECT_EQ(text(~std::uint64_t{0}), "16 777 215 To");
}

TEST(DriveSize, TakesTheDecimalSeparatorOfTheLocale) {
    const MemoryLocale french;
    EXPECT_EQ(driveSizeText(1536, french), "1,50 Ko");
}

}  // namespace
}  // namespace coffrelune
