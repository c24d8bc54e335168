// Names that differ in their case alone, and volumes to which they are one.
#include "engine/folded_names.h"

#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(FoldedNames, KnowANameInAnyCase) {
    FoldedNames names;
    EXPECT_TRUE(names.add("Plan.txt"));
    EXPECT_TRUE(names.add("été"));
    EXPECT_TRUE(names.add("plan.txt2"));
    EXPECT_TRUE(names.add(""));
    EXPECT_FALSE(names.add("Plan.txt"));
    EXPECT_FALSE(names.add("PLAN.TXT"));
    EXPECT_FALSE(names.add("ÉtÉ"));
    EXPECT_FALSE(names.add(""));
}

TEST(FoldedNames, ContainWhatWasAddedInAnyCase) {
    FoldedNames names;
    EXPECT_FALSE(names.contains("Plan.txt"));
    EXPECT_FALSE(names.contains(""));
    EXPECT_TRUE(names.add("Plan.txt"));
    EXPECT_TRUE(names.add("été"));
    EXPECT_TRUE(names.contains("Plan.txt"));
    EXPECT_TRUE(names.contains("PLAN.txt"));
    EXPECT_TRUE(names.contains("ÉTÉ"));
    EXPECT_FALSE(names.contains("plan.tx"));
    EXPECT_FALSE(names.contains(""));
    EXPECT_TRUE(names.add("plan.tx")) << "a question adds nothing";
}

TEST(FoldedNames, HoldManyNames) {
    FoldedNames names;
    constexpr int many = 20'000;
    for (int i = 0; i < many; ++i) ASSERT_TRUE(names.add("Nom " + std::to_string(i))) << i;
    for (int i = 0; i < many; ++i) ASSERT_FALSE(names.add("NOM " + std::to_string(i))) << i;
    for (int i = 0; i < many; ++i) ASSERT_TRUE(names.contains("nom " + std::to_string(i))) << i;
    EXPECT_FALSE(names.contains("nom " + std::to_string(many)));
}

// ---- two names and the entries that they lead to

class TwoNames : public Engine {
  protected:
    TwoNames() {
        disk().volume("F:\\").foldsCase = true;
        disk().file("F:\\Plan");
        disk().file("C:\\Plan");
        disk().file("C:\\PLAN");
        disk().link("C:\\plan", "C:\\Plan");
    }
    bool one(const std::string& a, const std::string& b) { return isOneEntry(faulty, a, b); }
    bool two(const std::string& a, const std::string& b) {
        return areOneEntry(faulty, a, b, failed) == false;
    }

    Status failed;
};

TEST_F(TwoNames, AreOneEntryWhereTheVolumeFoldsCase) {
    EXPECT_TRUE(one("F:\\Plan", "F:\\PLAN"));
    EXPECT_FALSE(two("F:\\Plan", "F:\\PLAN"));
}

TEST_F(TwoNames, AreTwoEntriesWhereItDoesNotALinkIncluded) {
    for (const char* other : {"C:\\PLAN", "C:\\plan", "C:\\PLan"}) {
        EXPECT_FALSE(one("C:\\Plan", other)) << other;
        EXPECT_TRUE(two("C:\\Plan", other)) << other;
    }
}

TEST_F(TwoNames, AreNeitherForCertainWhenTheyCannotBeLookedUp) {
    for (const char* failing : {"F:\\Plan", "F:\\PLAN"}) {
        faulty.restart();
        faulty.fail("lookUp", failing, error_number::ioDevice);
        EXPECT_FALSE(one("F:\\Plan", "F:\\PLAN")) << failing;
        EXPECT_FALSE(two("F:\\Plan", "F:\\PLAN")) << failing;
        EXPECT_EQ(failed.code(), error_number::ioDevice) << failing;
    }
}

TEST_F(TwoNames, AreNeitherForCertainWhereNothingHasAnIdentity) {
    disk().find("F:\\Plan")->id = {};
    EXPECT_FALSE(one("F:\\Plan", "F:\\PLAN"));
    EXPECT_FALSE(two("F:\\Plan", "F:\\PLAN"));
}

/// C: tells case, F: does not.
class CaseBlindCopy : public Engine {
  protected:
    CaseBlindCopy() {
        disk().volume("F:\\").foldsCase = true;
        disk().file("C:\\Docs\\Plan.txt", "first", fileTimeAt(2024, 5, 1));
        disk().file("C:\\Docs\\autre", "x");
    }
};

TEST_F(CaseBlindCopy, CountsTheSecondOfTwoFilesAndKeepsTheCopyOfTheFirst) {
    disk().file("C:\\Docs\\PLAN.TXT", "second", fileTimeAt(2024, 6, 1));
    for (const bool firstRun : {true, false}) {
        EngineBench::run("C:\\Docs", "F:\\");
        EXPECT_EQ(disk().content("F:\\Docs\\Plan.txt"), "first") << firstRun;
        EXPECT_EQ(disk().content("F:\\Docs\\autre"), "x");
        EXPECT_THAT(window.journal, ElementsAre("Erreur: 183 - Fichier: C:\\Docs\\PLAN.TXT"));
        EXPECT_EQ(statistics.errorCount, 1);
    }
}

// The volume takes these for one name, and the program's own tables do not.
TEST_F(CaseBlindCopy, CountsTheSecondOfTwoFilesThatOnlyTheVolumeTakesForOne) {
    disk().file("C:\\Docs\\Երևան.txt", "first", fileTimeAt(2024, 5, 1));
    disk().file("C:\\Docs\\երևան.txt", "second", fileTimeAt(2024, 6, 1));
    const std::string refused = "Erreur: 183 - Fichier: C:\\Docs\\երևան.txt";
    for (const bool firstRun : {true, false}) {
        EngineBench::run("C:\\Docs", "F:\\");
        EXPECT_EQ(disk().content("F:\\Docs\\Երևան.txt"), "first") << firstRun;
        EXPECT_EQ(disk().content("F:\\Docs\\autre"), "x");
        EXPECT_THAT(window.journal, testing::Each(refused)) << firstRun;
        EXPECT_EQ(window.journal.size(), firstRun ? 1U : 2U) << "once for each run";
    }
}

TEST_F(CaseBlindCopy, RefusesNoneOfThemOnAnotherVolumeThatTellsThem) {
    for (const char* name : {"Երևան.txt", "երևան.txt"}) {
        disk().file(std::string("C:\\Docs\\") + name, "newer", fileTimeAt(2024, 6, 1));
        disk().file(std::string("G:\\Docs\\") + name, "older", fileTimeAt(2024, 5, 1));
    }
    disk().file("F:\\Docs\\Երևան.txt", "older", fileTimeAt(2024, 5, 1));
    EngineBench::run("C:\\Docs", "F:\\");
    EngineBench::run("C:\\Docs", "G:\\");
    EXPECT_EQ(disk().content("G:\\Docs\\Երևան.txt"), "newer");
    EXPECT_EQ(disk().content("G:\\Docs\\երևան.txt"), "newer");
}

TEST_F(CaseBlindCopy, TakesHardLinksInTheCopyForWhatTheyAre) {
    disk().file("C:\\Docs\\b", "b");
    disk().file("F:\\Docs\\autre", "x");
    disk().file("F:\\Docs\\b", "b");
    disk().find("F:\\Docs\\b")->id = disk().find("F:\\Docs\\autre")->id;
    analyse("C:\\Docs", "F:\\");
    EXPECT_THAT(window.journal, IsEmpty());
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(CaseBlindCopy, CountsTheSecondThoughItsTimeIsThatOfTheFirst) {
    disk().file("C:\\Docs\\PLAN.TXT", "other", fileTimeAt(2024, 5, 1));
    disk().file("F:\\Docs\\Plan.txt", "first", fileTimeAt(2024, 5, 1));
    analyse("C:\\Docs", "F:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 183 - Fichier: C:\\Docs\\PLAN.TXT"));
}

TEST_F(CaseBlindCopy, DoesNotMixTwoDirectories) {
    disk().file("C:\\Docs\\Mai\\a", "first");
    disk().file("C:\\Docs\\MAI\\A", "second", fileTimeAt(2024, 6, 1));
    disk().file("C:\\Docs\\MAI\\b", "second");
    run("C:\\Docs", "F:\\");
    EXPECT_EQ(disk().content("F:\\Docs\\Mai\\a"), "first");
    EXPECT_FALSE(disk().exists("F:\\Docs\\Mai\\b"));
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 183 - Fichier: C:\\Docs\\MAI"));
}

TEST_F(Engine, CopiesNamesThatDifferInCaseWhereTheyAreTwo) {
    disk().file("C:\\Docs\\Plan.txt", "first");
    disk().file("C:\\Docs\\PLAN.TXT", "second");
    disk().link("C:\\Docs\\Lien", "Plan.txt");
    disk().link("C:\\Docs\\LIEN", "Plan.txt");
    disk().file("C:\\Docs\\Mai\\a", "first");
    disk().file("C:\\Docs\\MAI\\a", "second");
    for (int times = 0; times < 2; ++times) run("C:\\Docs", "F:\\");
    EXPECT_EQ(disk().content("F:\\Docs\\Plan.txt"), "first");
    EXPECT_EQ(disk().content("F:\\Docs\\PLAN.TXT"), "second");
    EXPECT_TRUE(disk().exists("F:\\Docs\\LIEN"));
    EXPECT_EQ(disk().content("F:\\Docs\\Mai\\a"), "first");
    EXPECT_EQ(disk().content("F:\\Docs\\MAI\\a"), "second");
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(CaseBlindCopy, AsksTheDestinationNothingMoreInTheUsualCase) {
    run("C:\\Docs", "F:\\");
    memory.files().clearCalls();
    analyse("C:\\Docs", "F:\\");
    EXPECT_THAT(memory.files().calls("lookUp"), ElementsAre("lookUp F:\\Docs", "lookUp C:\\Docs"))
        << "the two roots";
    EXPECT_THAT(memory.files().calls("openDirectory"),
                ElementsAre("openDirectory C:\\Docs\\", "openDirectory F:\\Docs\\"));
    EXPECT_THAT(window.journal, IsEmpty());
}

}  // namespace
}  // namespace coffrelune
