#include "engine/size_text.h"

#include <gtest/gtest.h>

#include "platform/memory/memory_services.h"

namespace coffrelune {
namespace {

constexpr float kilo = 1024.0F;
constexpr float mega = 1024.0F * kilo;
constexpr float giga = 1024.0F * mega;

std::string text(float bytes) {
    MemoryLocale locale;
    return sizeText(bytes, locale);
}

TEST(SizeText, CountsBytesBelowAThousand) {
    EXPECT_EQ(text(0), "0 octet");
    EXPECT_EQ(text(1), "1 octet");
    EXPECT_EQ(text(2), "2 octets");
    EXPECT_EQ(text(512), "512 octets");
    EXPECT_EQ(text(999), "999 octets");
}

TEST(SizeText, RoundsPartsOfAByte) {
    EXPECT_EQ(text(0.4F), "0 octet");
    EXPECT_EQ(text(0.5F), "1 octet");
    EXPECT_EQ(text(1.25F), "1 octets");
    EXPECT_EQ(text(999.75F), "1000 octets");
}

TEST(SizeText, ChangesTheUnitAtAThousandOfTheOneBefore) {
    EXPECT_EQ(text(1000), "0,98 Ko");
    EXPECT_EQ(text(1023), "1,00 Ko");
    EXPECT_EQ(text(1024), "1,00 Ko");
    EXPECT_EQ(text(1'023'999), "1 000 Ko");
    EXPECT_EQ(text(1'024'000), "0,98 Mo");
    EXPECT_EQ(text(1'048'575'936), "1 000 Mo");  // the float just below the next
    EXPECT_EQ(text(1'048'576'000), "0,98 Go");
}

TEST(SizeText, HasThreeSignificantDigitsInEveryUnit) {
    EXPECT_EQ(text(1536), "1,50 Ko");
    EXPECT_EQ(text(9.5F * kilo), "9,50 Ko");
    EXPECT_EQ(text(10 * kilo), "10,0 Ko");
    EXPECT_EQ(text(99.75F * kilo), "99,8 Ko");
    EXPECT_EQ(text(100 * kilo), "100 Ko");
    EXPECT_EQ(text(3.57F * mega), "3,57 Mo");
    EXPECT_EQ(text(42.25F * mega), "42,3 Mo");
    EXPECT_EQ(text(512 * mega), "512 Mo");
    EXPECT_EQ(text(2.5F * giga), "2,50 Go");
    EXPECT_EQ(text(25 * giga), "25,0 Go");
    EXPECT_EQ(text(250 * giga), "250 Go");
}

TEST(SizeText, ChoosesItsDecimalsBeforeItRounds) {
    EXPECT_EQ(text(9.999F * kilo), "10,00 Ko");
    EXPECT_EQ(text(99.99F * kilo), "100,0 Ko");
}

TEST(SizeText, GroupsTheDigitsOfWhatIsBeyondTheLargestUnit) {
    EXPECT_EQ(text(1024 * giga), "1 024 Go");
    EXPECT_EQ(text(1'234'567 * giga), "1 234 567 Go");
}

TEST(SizeText, WritesNumbersAsTheUserDoes) {
    MemoryLocale english;
    english.set(".", ",");
    EXPECT_EQ(sizeText(1536, english), "1.50 Ko");
    EXPECT_EQ(sizeText(1024 * giga, english), "1,024 Go");
}

}  // namespace
}  // namespace coffrelune
