// The mark of a restore, and one run per tree.
#include "engine/line_trees_fixture.h"

namespace coffrelune {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

// ---- the mark of a restore

TEST_F(Trees, MarkTheOriginalBeforeTheFirstChangeOfARestoreAndUnmarkItAtTheEnd) {
    EXPECT_TRUE(backUp());
    startAgain();
    disk().remove("C:\\Docs\\a");
    std::size_t marks = 0;
    memory.files().copyHook = [&](const CopyMoment&) { marks = restoreMarks("C:\\Docs"); };
    EXPECT_TRUE(bringBack());
    EXPECT_EQ(marks, 1U);
    EXPECT_EQ(restoreMarks("C:\\Docs"), 0U);
    EXPECT_THAT(changes()[0], StartsWith("writeWhole C:\\Docs\\.~coffrelune-"));
    EXPECT_TRUE(own().complete);
}

TEST_F(Trees, MarkTheOriginalBeforeTheFirstDeletionOfARestore) {
    EXPECT_TRUE(backUp());
    startAgain();
    disk().file("C:\\Docs\\later", "x");
    EXPECT_TRUE(bringBack());
    EXPECT_FALSE(disk().exists("C:\\Docs\\later"));
    ASSERT_THAT(changes(), SizeIs(testing::Ge(3U)));
    EXPECT_THAT(changes()[0], StartsWith("writeWhole C:\\Docs\\.~coffrelune-"));
    EXPECT_EQ(changes()[1], "removeFile C:\\Docs\\later");
    EXPECT_EQ(restoreMarks("C:\\Docs"), 0U);
}

TEST_F(Trees, LeaveTheMarkOfARestoreThatWasStoppedUntilOneEnds) {
    EXPECT_TRUE(backUp());
    disk().remove("C:\\Docs\\a");
    disk().remove("C:\\Docs\\Sub\\b");
    memory.files().copyHook = [this](const CopyMoment&) { control.interruptionRequested = true; };
    EXPECT_FALSE(bringBack());
    EXPECT_EQ(restoreMarks("C:\\Docs"), 1U);
    memory.files().copyHook = nullptr;
    EXPECT_TRUE(bringBack());
    EXPECT_EQ(restoreMarks("C:\\Docs"), 0U);
}

TEST_F(Trees, RemoveTheMarkByARestoreThatHasNothingLeftToChange) {
    EXPECT_TRUE(backUp());
    disk().remove("C:\\Docs\\a");
    memory.files().copyHook = [this](const CopyMoment&) { control.interruptionRequested = true; };
    EXPECT_FALSE(bringBack());
    memory.files().copyHook = nullptr;
    disk().file("C:\\Docs\\a", "a");
    startAgain();
    EXPECT_TRUE(bringBack());
    EXPECT_EQ(restoreMarks("C:\\Docs"), 0U);
}

TEST_F(Trees, MarkTheOriginalOnceForEachCopyThatItIsRestoredFrom) {
    disk().volume("G:\\");
    EXPECT_TRUE(backUp());
    EXPECT_TRUE(run("C:\\Docs", "G:\\", 1));
    disk().remove("C:\\Docs\\a");
    disk().remove("C:\\Docs\\Sub\\b");
    memory.files().copyHook = [this](const CopyMoment&) { control.interruptionRequested = true; };
    EXPECT_FALSE(restore("C:\\Docs", "G:\\", 1));
    memory.files().copyHook = nullptr;
    EXPECT_TRUE(bringBack());
    EXPECT_EQ(restoreMarks("C:\\Docs"), 1U) << "that of the other copy";
    EXPECT_TRUE(restore("C:\\Docs", "G:\\", 1));
    EXPECT_EQ(restoreMarks("C:\\Docs"), 0U);
}

TEST_F(Trees, MarkTheCopyWhereTheOriginalCannotBeMarked) {
    EXPECT_TRUE(backUp());
    startAgain();
    disk().remove("C:\\Docs\\a");
    disk().remove("C:\\Docs\\Sub\\b");
    const std::string name = ownFileName(OwnFile::restoreMark, placeNumber(own().copy));
    faulty.fail("writeWhole", "C:\\Docs\\" + name, error_number::accessDenied);
    memory.files().copyHook = [this](const CopyMoment&) { control.interruptionRequested = true; };
    EXPECT_FALSE(bringBack());
    EXPECT_EQ(restoreMarks("C:\\Docs"), 0U);
    EXPECT_EQ(restoreMarks("F:\\Docs"), 1U);
    memory.files().copyHook = nullptr;
    EXPECT_TRUE(bringBack());
    EXPECT_EQ(restoreMarks("F:\\Docs"), 0U);
}

TEST_F(Trees, BringFilesBackThoughNothingCanBeMarkedAndWarnTheUser) {
    EXPECT_TRUE(backUp());
    startAgain();
    disk().remove("C:\\Docs\\a");
    faulty.fail("writeWhole", "", error_number::accessDenied);
    (void)bringBack();
    EXPECT_EQ(disk().content("C:\\Docs\\a"), "a");
    EXPECT_THAT(window.journal,
                Contains(HasSubstr("Attention : rien ne peut être noté dans C:\\Docs "
                                   "(erreur 5)")));
}

// ---- one run per tree

TEST_F(Trees, AreRefusedWhileAnotherRunWritesTheSource) {
    disk().setUsedByAnother("C:\\Docs", TreeUse::write);
    EXPECT_FALSE(backUp());
    EXPECT_THAT(window.journal,
                ElementsAre("Ligne 1 refusée : une autre opération est en cours sur C:\\Docs.",
                            "Erreur: 33 - Fichier: C:\\Docs"));
    EXPECT_THAT(changes(), IsEmpty());
    disk().setUsedByAnother("C:\\Docs", TreeUse::read);
    EXPECT_TRUE(backUp()) << "two may read";
}

TEST_F(Trees, AreRefusedWhileAnotherRunUsesTheTarget) {
    EXPECT_TRUE(backUp());
    system.options.ContinueOnError = -1;
    for (const TreeUse use : {TreeUse::read, TreeUse::write}) {
        startAgain();
        window.journal.clear();
        disk().file("F:\\Docs\\gone", "x");
        disk().file("C:\\Docs\\new", "n");
        disk().setUsedByAnother("F:\\Docs", use);
        EXPECT_FALSE(backUp());
        EXPECT_THAT(window.journal,
                    ElementsAre("Ligne 1 refusée : une autre opération est en cours sur F:\\Docs.",
                                "Erreur: 33 - Fichier: C:\\Docs"));
        EXPECT_THAT(changes(), IsEmpty());
    }
    disk().setUsedByAnother("F:\\Docs", {});
    EXPECT_TRUE(backUp());
}

TEST_F(Trees, AreRefusedAtOnceWhenTheUserDidNotChooseToGoOn) {
    disk().setUsedByAnother("C:\\Docs", TreeUse::write);
    EXPECT_FALSE(backUp());
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_EQ(control.lastErrorNumber, error_number::lockViolation);
    EXPECT_EQ(control.sharingPath, "C:\\Docs");
}

TEST_F(Trees, AreClaimedByNoComparison) {
    EXPECT_TRUE(backUp());
    startAgain();
    disk().setUsedByAnother("F:\\Docs", TreeUse::write);
    system.operationKind = OperationKind::comparison;
    analyse("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_THAT(memory.files().calls("claim"), IsEmpty());
    EXPECT_THAT(memory.files().writes(), IsEmpty());
}

TEST_F(Trees, AreNotTouchedWhenTheyAreThereAndCannotBeHeld) {
    EXPECT_TRUE(backUp());
    startAgain();
    disk().file("F:\\Docs\\gone", "x");
    faulty.fail("hold", "F:\\Docs", error_number::ioDevice);
    EXPECT_FALSE(backUp());
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 1117 - Fichier: F:\\Docs"));
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(Trees, OfASingleFileBearNothing) {
    EXPECT_TRUE(run("C:\\Docs\\a", "F:\\"));
    EXPECT_THAT(list("F:\\"), ElementsAre("F:\\a"));
    EXPECT_EQ(disk().list("F:\\"), list("F:\\"));
}

TEST_F(Trees, AreReachedThroughTheirHoldsWhateverBearsTheirNames) {
    disk().file("C:\\Docs\\new", "n");
    EXPECT_TRUE(backUp());
    LineTrees& line = backupTrees();
    ASSERT_TRUE(line.take());
    disk().move("F:\\Docs", "F:\\Moved");
    disk().file("F:\\Docs\\of others", "x");
    disk().file("C:\\Docs\\a", "newer", fileTimeAt(2024, 5, 1));
    engine.walkLine(line, Pass::copy);
    EXPECT_EQ(disk().content("F:\\Moved\\a"), "newer");
    EXPECT_THAT(list("F:\\Docs"), ElementsAre("F:\\Docs\\of others"));
}

}  // namespace
}  // namespace coffrelune
