#include "system/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "system/casing_tables.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

TEST(ProperCase, PutsTheFirstCharacterInUpperCaseAndTheRestInLowerCase) {
    EXPECT_EQ(ProperCase("tRAVAIL"), "Travail");
    EXPECT_EQ(ProperCase("travail de NUIT"), "Travail de nuit");
    EXPECT_EQ(ProperCase("AUTO"), "Auto");
    EXPECT_EQ(ProperCase("x"), "X");
    EXPECT_EQ(ProperCase("2024"), "2024");
}

TEST(ProperCase, KeepsAnEmptyTextEmpty) {
    EXPECT_EQ(ProperCase(""), "");
}

TEST(ProperCase, TreatsAccentsAndLigaturesAsLetters) {
    EXPECT_EQ(ProperCase("éTÉ"), "Été");
    EXPECT_EQ(ProperCase("ÉCOLE"), "École");
    EXPECT_EQ(ProperCase("œuf"), "Œuf");
    EXPECT_EQ(ProperCase("ŒUVRE"), "Œuvre");
    EXPECT_EQ(ProperCase("ÿ"), "Ÿ");
    EXPECT_EQ(ProperCase("AŸ"), "Aÿ");
    EXPECT_EQ(ProperCase("çA"), "Ça");
}

TEST(ProperCase, TakesALeadingBlankAsTheFirstCharacter) {
    EXPECT_EQ(ProperCase(" Travail"), " travail");
}

TEST(ProperCase, GivesTheSameWhenAppliedAgain) {
    for (const char* name : {"éTÉ", "ßX", "ǆungla", "İstanbul", "ıI", "ς", " a"}) {
        const std::string once = ProperCase(name);
        EXPECT_EQ(ProperCase(once), once) << name;
    }
}

TEST(ProperCase, LeavesBytesThatAreNoUtf8AsTheyAre) {
    EXPECT_EQ(ProperCase("\xE9T\xC9"), "\xE9t\xC9");
}

TEST(Casing, CoversLatinGreekAndCyrillic) {
    EXPECT_EQ(lowerCase("ÀÖØÞĀŠŽƏẤ ΑΣΏ ЁЖЯ"), "àöøþāšžəấ ασώ ёжя");
    EXPECT_EQ(upperCase("àöøþāšžəấ ας ёжя"), "ÀÖØÞĀŠŽƏẤ ΑΣ ЁЖЯ");
}

TEST(Casing, LeavesWhatHasNoCaseAsItIs) {
    const std::string text = "×÷ 日本語 123_-\\ \xF0\x9F\x8C\x99";
    EXPECT_EQ(lowerCase(text), text);
    EXPECT_EQ(upperCase(text), text);
}

TEST(Casing, KeepsTheLengthOfLettersWhoseCapitalIsSeveral) {
    EXPECT_EQ(upperCase("straße"), "STRAßE");
}

template <typename Table>
void expectSortedAndApart(const Table& table) {
    for (std::size_t i = 1; i < table.size(); ++i) {
        EXPECT_LT(table[i - 1].last, table[i].first) << "entry " << i;
        EXPECT_LE(table[i].first, table[i].last) << "entry " << i;
    }
}

TEST(Casing, HasTablesThatABinarySearchCanRead) {
    expectSortedAndApart(lowerMappings);
    expectSortedAndApart(upperMappings);
}

TEST(Casing, RoundTripsEveryPlainCapital) {
    int pairs = 0;
    for (char32_t c = 'A'; c < 0x530; ++c) {
        const char32_t lower = lowerCase(c);
        if (lower == c || upperCase(lower) != c) continue;
        EXPECT_EQ(lowerCase(lower), lower);
        ++pairs;
    }
    EXPECT_GT(pairs, 300);
}

TEST(EqualIgnoringCase, ComparesWithoutRegardToCase) {
    EXPECT_TRUE(equalIgnoringCase("RepExclu0_Mode", "REPEXCLU0_mode"));
    EXPECT_TRUE(equalIgnoringCase("Été", "éTÉ"));
    EXPECT_TRUE(equalIgnoringCase("", ""));
    EXPECT_FALSE(equalIgnoringCase("Ete", "Été"));
    EXPECT_FALSE(equalIgnoringCase("abc", "ab"));
    EXPECT_FALSE(equalIgnoringCase("ab", "abc"));
    EXPECT_FALSE(equalIgnoringCase(" travail", "travail"));
}

TEST(EqualIgnoringCase, TellsRawBytesApart) {
    EXPECT_TRUE(equalIgnoringCase("a\xE9", "A\xE9"));
    EXPECT_FALSE(equalIgnoringCase("a\xE9", "a\xC9"));
}

TEST(QuoteValue, QuotesWhatIsNotEmpty) {
    EXPECT_EQ(QuoteValue(""), "");
    EXPECT_EQ(QuoteValue(" C:\\Data "), "\" C:\\Data \"");
    EXPECT_EQ(QuoteValue("a\"b"), "\"a\"b\"");
}

TEST(TrimBlanks, TakesBlanksOffBothEndsAlone) {
    EXPECT_EQ(trimBlanks("  a b  "), "a b");
    EXPECT_EQ(trimBlanks("   "), "");
    EXPECT_EQ(trimBlanks(""), "");
    EXPECT_EQ(trimBlanks("\ta "), "\ta");
}

TEST(SplitText, GivesOneElementMoreThanThereAreSeparators) {
    EXPECT_THAT(splitText("2||C:\\A", '|'), ElementsAre("2", "", "C:\\A"));
    EXPECT_THAT(splitText("", '|'), ElementsAre(""));
    EXPECT_THAT(splitText("/Auto/", '/'), ElementsAre("", "Auto", ""));
}

TEST(LeadingNumber, ReadsTheNumberAtTheStart) {
    EXPECT_EQ(leadingNumber("12"), 12);
    EXPECT_EQ(leadingNumber("  -1"), -1);
    EXPECT_EQ(leadingNumber("+7 lignes"), 7);
    EXPECT_EQ(leadingNumber("3abc"), 3);
    EXPECT_EQ(leadingNumber("1.9"), 1);
}

TEST(LeadingNumber, IsZeroWithoutANumber) {
    for (const char* text : {"", " ", "abc", "-", "+", "--1", "x5"}) {
        EXPECT_EQ(leadingNumber(text), 0) << '"' << text << '"';
    }
}

TEST(LeadingNumber, StaysWithin32Bits) {
    EXPECT_EQ(leadingNumber("2147483647"), 2147483647);
    EXPECT_EQ(leadingNumber("2147483648"), 2147483647);
    EXPECT_EQ(leadingNumber("-2147483649"), -2147483647 - 1);
    EXPECT_EQ(leadingNumber("99999999999999999999999999"), 2147483647);
    EXPECT_EQ(leadingNumber("-99999999999999999999999999"), -2147483647 - 1);
}

TEST(WithoutQuotes, TakesOffOnePairOfEqualQuotes) {
    EXPECT_EQ(withoutQuotes("\"a b\""), "a b");
    EXPECT_EQ(withoutQuotes("'a'"), "a");
    EXPECT_EQ(withoutQuotes("\"\"a\"\""), "\"a\"");
    EXPECT_EQ(withoutQuotes("\"\""), "");
    for (const char* kept : {"", "\"", "\"a", "a\"", "\"a'", "aba"}) {
        EXPECT_EQ(withoutQuotes(kept), kept);
    }
}

TEST(Characters, AreCountedAndCutWhole) {
    EXPECT_EQ(characterCount(""), 0U);
    EXPECT_EQ(characterCount("été €"), 5U);
    EXPECT_EQ(characterCount("\xE9t\xE9"), 3U) << "a byte that is no UTF-8 counts as one";
    EXPECT_EQ(firstCharacters("été", 2), "ét");
    EXPECT_EQ(firstCharacters("été", 3), "été");
    EXPECT_EQ(firstCharacters("été", 9), "été");
    EXPECT_EQ(firstCharacters("été", 0), "");
}

TEST(VisibleControls, ShowTheColonThatANameBears) {
    EXPECT_EQ(visibleControls("C:\\a\uF03Ab\n"), "C:\\a:b␊");
    EXPECT_EQ(visibleControls("\uF0FF\uF03A"), "\uF0FF\uF03A") << "the character itself";
    EXPECT_EQ(visibleControls("\xEF\x80"), "\xEF\x80");
}

}  // namespace
}  // namespace coffrelune
