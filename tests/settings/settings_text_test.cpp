#include "settings/settings_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/characters.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Edit = SettingsText::Edit;

class SettingsTextTest : public testing::Test {
  protected:
    void load(const std::string& bytes) { ASSERT_TRUE(text.parse(bytes)); }

    Windows1252 ansi;
    SettingsText text{ansi};
};

TEST_F(SettingsTextTest, FindsAValueInItsSection) {
    load("[Travail]\r\nSource0=C:\\A\r\n[General]\r\nSource0=C:\\B\r\n");
    EXPECT_EQ(text.value("Travail", "Source0"), "C:\\A");
    EXPECT_EQ(text.value("General", "Source0"), "C:\\B");
}

TEST_F(SettingsTextTest, GivesNothingForWhatIsAbsent) {
    load("[Travail]\r\nSource0=C:\\A\r\nvide=\r\n");
    EXPECT_EQ(text.value("Travail", "Source1"), "");
    EXPECT_EQ(text.value("Travail", "vide"), "");
    EXPECT_EQ(text.value("Autre", "Source0"), "");
    EXPECT_EQ(SettingsText(ansi).value("Travail", "Source0"), "");
}

TEST_F(SettingsTextTest, MatchesNamesWithoutRegardToCase) {
    load("[\xC9t\xE9]\r\nSOURCE0=C:\\A\r\n");
    EXPECT_EQ(text.value("éTÉ", "source0"), "C:\\A");
    EXPECT_TRUE(text.hasSection("ÉTÉ"));
    EXPECT_FALSE(text.hasSection("Ete"));
}

TEST_F(SettingsTextTest, ReadsLinesThatEndWithALineFeedAlone) {
    load("[A]\nx=1\ny=2\n[B]\nx=3\n");
    EXPECT_EQ(text.value("A", "y"), "2");
    EXPECT_EQ(text.value("B", "x"), "3");
}

TEST_F(SettingsTextTest, ReadsALastLineWithoutLineEnd) {
    load("[A]\r\nx=1");
    EXPECT_EQ(text.value("A", "x"), "1");
    load("x=1\r\n[A]");
    EXPECT_TRUE(text.hasSection("A"));
}

TEST_F(SettingsTextTest, IgnoresBlanksRoundTheKeyAndTheValue) {
    load("[A]\r\n  x  =  1 2\t \r\n\ty=\r\r\n");
    EXPECT_EQ(text.value("A", "x"), "1 2");
    EXPECT_EQ(text.value("A", "y"), "");
}

TEST_F(SettingsTextTest, TakesOnePairOfQuotesOff) {
    load(
        "[A]\na=\" C:\\Data \"\nb='x'\nc=\"\"x\"\"\nd=\"x'\ne=\"\nf=\"\"\ng=  \"z\"  \nh=a\"b\"\n");
    EXPECT_EQ(text.value("A", "a"), " C:\\Data ");
    EXPECT_EQ(text.value("A", "b"), "x");
    EXPECT_EQ(text.value("A", "c"), "\"x\"");
    EXPECT_EQ(text.value("A", "d"), "\"x'");
    EXPECT_EQ(text.value("A", "e"), "\"");
    EXPECT_EQ(text.value("A", "f"), "");
    EXPECT_EQ(text.value("A", "g"), "z");
    EXPECT_EQ(text.value("A", "h"), "a\"b\"");
}

TEST_F(SettingsTextTest, KeepsAnEqualsSignAndASemicolonWithinAValue) {
    load("[A]\nx=a=b;c\n");
    EXPECT_EQ(text.value("A", "x"), "a=b;c");
}

TEST_F(SettingsTextTest, LetsTheFirstDuplicateCount) {
    load("[A]\nx=1\nX=2\n[B]\nx=3\n[a]\nx=4\ny=5\n");
    EXPECT_EQ(text.value("A", "x"), "1");
    EXPECT_EQ(text.value("A", "y"), "") << "the second section of one name is never looked at";
    EXPECT_THAT(text.keys("A"), ElementsAre("x", "X"));
}

TEST_F(SettingsTextTest, IgnoresCommentsAndLinesThatAreNoKey) {
    load("[A]\n; x=1\n  ;y=2\nx\n=3\n[sans fin=4\n");
    EXPECT_EQ(text.value("A", "x"), "");
    EXPECT_EQ(text.value("A", "; x"), "");
    EXPECT_EQ(text.value("A", ""), "");
    EXPECT_THAT(text.sections(), ElementsAre("A"));
}

TEST_F(SettingsTextTest, IgnoresKeysBeforeTheFirstSection) {
    load("x=1\n[A]\ny=2\n");
    EXPECT_EQ(text.value("A", "x"), "");
    EXPECT_EQ(text.value("", "x"), "");
    EXPECT_EQ(text.setValue("A", "x", "3"), Edit::made);
    EXPECT_EQ(text.serialise(), "x=1\n[A]\ny=2\nx=3\n");
}

TEST_F(SettingsTextTest, TakesASectionsNameAsItStandsBetweenTheBrackets) {
    load("  [ travail]\n[a]b] reste\n[]\n[Travail]\n");
    EXPECT_THAT(text.sections(), ElementsAre(" travail", "a]b", "", "Travail"));
    EXPECT_TRUE(text.hasSection(" TRAVAIL"));
    EXPECT_FALSE(text.hasSection("travail "));
}

TEST_F(SettingsTextTest, ListsEveryHeader) {
    load("[B]\n[A]\n[Position]\n[b]\n");
    EXPECT_THAT(text.sections(), ElementsAre("B", "A", "Position", "b"));
}

TEST_F(SettingsTextTest, ReplacesAValueAndNothingElse) {
    const std::string before =
        "; en-t\xEAte\n\n[A]\r\n\tX  =  \"old\"  \nunknown=1\n ; c\n\n\n[B]\nx=2";
    load(before);
    EXPECT_EQ(text.setValue("a", "x", "new"), Edit::made);
    EXPECT_EQ(text.serialise(),
              "; en-t\xEAte\n\n[A]\r\n\tX  =  new\nunknown=1\n ; c\n\n\n[B]\nx=2");
}

TEST_F(SettingsTextTest, ReplacesTheFirstOfTwoKeys) {
    load("[A]\nx=1\nx=2\n");
    EXPECT_EQ(text.setValue("A", "x", "3"), Edit::made);
    EXPECT_EQ(text.serialise(), "[A]\nx=3\nx=2\n");
}

TEST_F(SettingsTextTest, SaysWhenNothingChanges) {
    load("[A]\nx= 1\n");
    EXPECT_EQ(text.setValue("A", "x", "1"), Edit::none);
    EXPECT_EQ(text.deleteKey("A", "y"), Edit::none);
    EXPECT_EQ(text.deleteKey("B", "x"), Edit::none);
    EXPECT_EQ(text.deleteSection("B"), Edit::none);
    EXPECT_EQ(text.serialise(), "[A]\nx= 1\n");
}

TEST_F(SettingsTextTest, PutsANewKeyAfterTheLastLineOfItsSection) {
    load("[A]\nx=1\n; de A\n\n\n[B]\nx=2\n");
    EXPECT_EQ(text.setValue("A", "y", "3"), Edit::made);
    EXPECT_EQ(text.serialise(), "[A]\nx=1\n; de A\ny=3\n\n\n[B]\nx=2\n");
}

TEST_F(SettingsTextTest, LeavesACommentWithTheHeaderBelowIt) {
    load("[A]\nx=1\n\n; de B\n[B]\nx=2\n");
    EXPECT_EQ(text.setValue("A", "y", "3"), Edit::made);
    EXPECT_EQ(text.serialise(), "[A]\nx=1\ny=3\n\n; de B\n[B]\nx=2\n");
    EXPECT_EQ(text.deleteSection("A"), Edit::made);
    EXPECT_EQ(text.serialise(), "; de B\n[B]\nx=2\n");
}

TEST_F(SettingsTextTest, PutsANewKeyAtTheVeryEndAfterAComment) {
    load("[A]\n; fin");
    EXPECT_EQ(text.setValue("A", "y", "3"), Edit::made);
    EXPECT_EQ(text.serialise(), "[A]\n; fin\ny=3\n");
}

TEST_F(SettingsTextTest, PutsANewSectionAtTheEnd) {
    load("[A]\r\nx=1");
    EXPECT_EQ(text.setValue("B", "y", "2"), Edit::made);
    EXPECT_EQ(text.serialise(), "[A]\r\nx=1\r\n[B]\r\ny=2\r\n");
}

TEST_F(SettingsTextTest, WritesLinesAsTheFirstOneEnds) {
    load("; c\n[A]\r\nx=1\r\n");
    EXPECT_EQ(text.setValue("A", "y", "2"), Edit::made);
    EXPECT_EQ(text.setValue("A", "x", "3"), Edit::made);
    EXPECT_EQ(text.serialise(), "; c\n[A]\r\nx=3\r\ny=2\n");
}

TEST_F(SettingsTextTest, StartsANewFileWithCarriageReturns) {
    EXPECT_EQ(text.setValue("Position", "Config", "Travail"), Edit::made);
    EXPECT_EQ(text.serialise(), "[Position]\r\nConfig=Travail\r\n");
}

TEST_F(SettingsTextTest, DeletesEveryDuplicateOfAKey) {
    load("[A]\nx=1\n;c\ny=2\nX =3\n[B]\nx=4\n");
    EXPECT_EQ(text.deleteKey("A", "x"), Edit::made);
    EXPECT_EQ(text.serialise(), "[A]\n;c\ny=2\n[B]\nx=4\n");
    EXPECT_EQ(text.value("A", "x"), "");
}

TEST_F(SettingsTextTest, DeletesALastLineWithoutLineEnd) {
    load("[A]\nx=1\ny=2");
    EXPECT_EQ(text.deleteKey("A", "y"), Edit::made);
    EXPECT_EQ(text.serialise(), "[A]\nx=1\n");
}

TEST_F(SettingsTextTest, DeletesEverySectionOfAName) {
    load("; tout\n[A]\nx=1\n\n[B]\nx=2\n[a]\nx=3");
    EXPECT_EQ(text.deleteSection("A"), Edit::made);
    EXPECT_EQ(text.serialise(), "; tout\n[B]\nx=2\n");
    EXPECT_FALSE(text.hasSection("A"));
    EXPECT_EQ(text.deleteSection("B"), Edit::made);
    EXPECT_EQ(text.serialise(), "; tout\n");
}

TEST_F(SettingsTextTest, RefusesAKeyThatCouldNotBeReadBack) {
    load("[A]\nx=1\n");
    for (const char* key : {"", " x", "x ", "a=b", ";c", "[s", "a\nb", "\t"}) {
        EXPECT_EQ(text.setValue("A", key, "1"), Edit::refused) << '"' << key << '"';
    }
    EXPECT_EQ(text.serialise(), "[A]\nx=1\n");
}

TEST_F(SettingsTextTest, StoresASectionNameOfAnyText) {
    for (const char* name : {" travail", "a]b", "[", "]", "été", ";", "a=b"}) {
        SettingsText fresh(ansi);
        EXPECT_EQ(fresh.setValue(name, "k", "v"), Edit::made);
        SettingsText again(ansi);
        ASSERT_TRUE(again.parse(fresh.serialise()));
        EXPECT_EQ(again.value(name, "k"), "v") << name;
        EXPECT_THAT(again.sections(), ElementsAre(name));
    }
}

// How many line ends of `before` lie in the part that `after` has otherwise.
std::ptrdiff_t lineEndsBetween(const std::string& before, const std::string& after) {
    const std::size_t shorter = std::min(before.size(), after.size());
    std::size_t head = 0;
    while (head < shorter && before[head] == after[head]) ++head;
    std::size_t tail = 0;
    while (tail < shorter - head &&
           before[before.size() - 1 - tail] == after[after.size() - 1 - tail]) {
        ++tail;
    }
    const std::string changed = before.substr(head, before.size() - head - tail);
    return std::count(changed.begin(), changed.end(), '\n');
}

// Random texts made of what matters to the format, and random edits on them.
TEST_F(SettingsTextTest, KeepsEveryOtherLineThroughRandomEdits) {
    std::uint32_t state = 12345;
    const auto random = [&state](std::size_t count) {
        state = state * 1664525U + 1013904223U;
        return static_cast<std::size_t>(state >> 8) % count;
    };
    const std::vector<std::string> pieces = {"[A]",  "[b]", "x=", "y",  "=",    "1",    ";", "\r\n",
                                             "\n",   " ",   "\"", "[",  "]",    "\xE9", "'", "\n",
                                             "\r\n", "\r",  "A",  "\n", "\xFF", "x=2\n"};
    for (int round = 0; round < 3000; ++round) {
        std::string bytes;
        for (std::size_t i = random(30); i > 0; --i) bytes += pieces[random(pieces.size())];
        if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) continue;
        load(bytes);
        ASSERT_EQ(text.serialise(), bytes);
        const std::string other = text.value("b", "x");
        const std::string value = "v" + std::to_string(round);
        ASSERT_NE(text.setValue("A", "x", value), Edit::refused);
        ASSERT_EQ(text.value("a", "X"), value) << bytes;
        ASSERT_EQ(text.value("b", "x"), other) << bytes;
        ASSERT_EQ(lineEndsBetween(bytes, text.serialise()), 0) << bytes;
        ASSERT_EQ(text.deleteKey("A", "x"), Edit::made);
        ASSERT_EQ(text.value("A", "x"), "") << bytes;
        ASSERT_EQ(text.deleteSection("A"), Edit::made);
        ASSERT_FALSE(text.hasSection("A")) << bytes;
        ASSERT_EQ(text.value("b", "x"), other) << bytes;
    }
}

TEST_F(SettingsTextTest, HandlesAMillionLines) {
    std::string bytes = "[A]\n";
    for (int i = 0; i < 1'000'000; ++i) bytes += "k=1\n";
    load(bytes + "[B]\nx=1\n");
    EXPECT_EQ(text.value("B", "x"), "1");
    EXPECT_EQ(text.deleteKey("A", "k"), Edit::made);
    EXPECT_EQ(text.serialise(), "[A]\n[B]\nx=1\n");
}

TEST_F(SettingsTextTest, IsEmptyAfterRefusingAFile) {
    load("[A]\nx=1\n");
    EXPECT_FALSE(text.parse(std::string("[A]\nx=1\n\0", 9)));
    EXPECT_THAT(text.sections(), IsEmpty());
    EXPECT_EQ(text.serialise(), "");
}

}  // namespace
}  // namespace coffrelune
