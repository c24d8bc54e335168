// Two pairs, the copy of one of which lies in that of the other: what a restore replaces.
#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

// C:\Data\Docs copied to F:\ and C:\Other\Sub copied into that copy, to F:\Docs.
class OtherPairs : public Engine {
  protected:
    OtherPairs() {
        system.options.ContinueOnError = -1;
        disk().directory("H:\\Coffrelune");  // for the settings
        disk().file(around + "\\Sub\\f", "of Docs", fileTimeAt(2024, 1, 1));
        disk().file(around + "\\Sub\\only", "of Docs alone", fileTimeAt(2024, 1, 1));
        disk().file(inside + "\\f", "of the other Sub", fileTimeAt(2024, 2, 1));
    }
    bool backUp(const std::string& source, const std::string& destination) {
        startAgain();
        return run(source, destination);
    }
    void bringBack(const std::string& source, const std::string& destination) {
        startAgain();
        window.journal.clear();
        (void)restore(source, destination);
    }
    void expectKept(const std::string& path) {
        EXPECT_THAT(window.journal, Contains(HasSubstr(path + " est conservé : la copie est aussi "
                                                              "celle d'une autre sauvegarde")));
    }

    const std::string around = "C:\\Data\\Docs";
    const std::string inside = "C:\\Other\\Sub";
};

TEST_F(OtherPairs, KeepTheOriginalWhoseCopyIsThatOfThePairInside) {
    EXPECT_TRUE(backUp(around, "F:\\"));
    EXPECT_TRUE(backUp(inside, "F:\\Docs"));
    bringBack(around, "F:\\");
    EXPECT_EQ(disk().content(around + "\\Sub\\f"), "of Docs");
    expectKept(around + "\\Sub\\f");
}

TEST_F(OtherPairs, KeepTheOriginalWhoseCopyIsThatOfThePairAround) {
    disk().directory("F:\\Docs");
    EXPECT_TRUE(backUp(inside, "F:\\Docs"));
    EXPECT_TRUE(backUp(around, "F:\\"));
    bringBack(inside, "F:\\Docs");
    EXPECT_EQ(disk().content(inside + "\\f"), "of the other Sub");
    expectKept(inside + "\\f");
}

TEST_F(OtherPairs, BringBackWhatTheOtherOriginalHasNot) {
    EXPECT_TRUE(backUp(around, "F:\\"));
    EXPECT_TRUE(backUp(inside, "F:\\Docs"));
    disk().file(around + "\\Sub\\only", "spoiled", fileTimeAt(2024, 3, 1));
    bringBack(around, "F:\\");
    EXPECT_EQ(disk().content(around + "\\Sub\\only"), "of Docs alone");
}

TEST_F(OtherPairs, KeepWhatAnOriginalThatIsAwayMayHave) {
    EXPECT_TRUE(backUp(around, "F:\\"));
    EXPECT_TRUE(backUp(inside, "F:\\Docs"));
    disk().remove(inside);
    disk().file(around + "\\Sub\\only", "newer", fileTimeAt(2024, 3, 1));
    bringBack(around, "F:\\");
    EXPECT_EQ(disk().content(around + "\\Sub\\only"), "newer");
    expectKept(around + "\\Sub\\only");
}

TEST_F(OtherPairs, AreNoneOfOneOriginalThatTwoLinesSave) {
    EXPECT_TRUE(backUp(around, "F:\\"));
    EXPECT_TRUE(backUp(around + "\\Sub", "F:\\Docs"));
    disk().file(around + "\\Sub\\f", "spoiled", fileTimeAt(2024, 3, 1));
    bringBack(around, "F:\\");
    EXPECT_EQ(disk().content(around + "\\Sub\\f"), "of Docs");
    disk().file(around + "\\Sub\\f", "spoiled", fileTimeAt(2024, 3, 1));
    bringBack(around + "\\Sub", "F:\\Docs");
    EXPECT_EQ(disk().content(around + "\\Sub\\f"), "of Docs");
    EXPECT_THAT(window.journal, IsEmpty());
}

// On another computer, say.
TEST_F(OtherPairs, AreNoneWhereTwoLinesHaveSavedAnOriginalThatHasGone) {
    EXPECT_TRUE(backUp(around, "F:\\"));
    EXPECT_TRUE(backUp(around + "\\Sub", "F:\\Docs"));
    disk().remove(around);
    disk().file("C:\\New\\Docs\\Sub\\f", "older", fileTimeAt(2023, 3, 1));
    bringBack("C:\\New\\Docs", "F:\\");
    EXPECT_EQ(disk().content("C:\\New\\Docs\\Sub\\f"), "of Docs");
    disk().file("C:\\New\\Docs\\Sub\\f", "older", fileTimeAt(2023, 3, 1));
    bringBack("C:\\New\\Docs\\Sub", "F:\\Docs");
    EXPECT_EQ(disk().content("C:\\New\\Docs\\Sub\\f"), "of Docs");
}

}  // namespace
}  // namespace coffrelune
