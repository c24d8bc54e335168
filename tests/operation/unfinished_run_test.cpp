// What a run that was not finished leaves on one side alone, the next run keeps.
#include "operation/unfinished_fixture.h"

namespace coffrelune {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* beforeTheAnalysis = "Analyse de la copie...";

// ---- a backup -----------------------------------------------------------------------------------

TEST_F(UnfinishedRun, BackupReplacesWhatDiffersAndTakesNothingAwayBefore) {
    selectOnly({0});
    backUp();
    change(R"(C:\Docs\a.txt)");
    stopAt(Copie::phaseLabel, beforeTheAnalysis);
    backUp();
    ASSERT_TRUE(control.interruptionRequested);
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "aaaaa");
    EXPECT_EQ(statistics.filesRemoved, 0);
    backUp();
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "changed");
    EXPECT_TRUE(isComplete(R"(F:\Save\Docs)"));
}

TEST_F(UnfinishedRun, BackupStoppedInOneLineLeavesTheCopiesOfTheLaterOnesOpen) {
    backUp();
    ASSERT_TRUE(isComplete(R"(G:\Save\Photos)"));
    change(R"(C:\Docs\a.txt)");
    disk().file(R"(D:\Photos\new.jpg)", "new");
    stopAt(Copie::detailLabel, "Vers: ");
    backUp();
    ASSERT_TRUE(control.interruptionRequested);
    ASSERT_FALSE(disk().exists(R"(G:\Save\Photos\new.jpg)"));
    EXPECT_TRUE(isOpen(R"(G:\Save\Photos)"));
    restore();
    EXPECT_EQ(disk().content(R"(D:\Photos\new.jpg)"), "new");
}

TEST_F(UnfinishedRun, BackupWithoutDeletionsLeavesTheLaterLinesWithoutProofToo) {
    system.options.SynchroCopie = 0;
    disk().file(R"(G:\Save\Photos\older.jpg)", "older");
    stopAt(Copie::detailLabel, "Vers: ");
    backUp();
    ASSERT_FALSE(disk().exists(R"(G:\Save\Photos\c.jpg)"));
    system.options.SynchroCopie = -1;
    restore();
    EXPECT_EQ(disk().content(R"(D:\Photos\c.jpg)"), "cccccccc");
}

// A run whose only candidates are empty files copies nothing.
TEST_F(UnfinishedRun, BackupLeavesEmptyFilesThatNoRunHasCopied) {
    selectOnly({0});
    backUp();
    disk().file(R"(C:\Docs\empty)", "");
    backUp();
    ASSERT_FALSE(statistics.copyPassStarted);
    ASSERT_FALSE(disk().exists(R"(F:\Save\Docs\empty)"));
    EXPECT_TRUE(isOpen(R"(F:\Save\Docs)"));
    restore();
    EXPECT_TRUE(disk().exists(R"(C:\Docs\empty)"));

    change(R"(C:\Docs\a.txt)");
    backUp();
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\empty)"));
    EXPECT_TRUE(isComplete(R"(F:\Save\Docs)"));
}

TEST_F(UnfinishedRun, TreeOnlyBackupIsNoProof) {
    selectOnly({0});
    system.options.ArbreMode = -1;
    backUp();
    system.options.ArbreMode = 0;
    EXPECT_TRUE(isOpen(R"(F:\Save\Docs)"));
    restore();
    EXPECT_EQ(disk().content(R"(C:\Docs\Sub\b.txt)"), "bbb");
}

// ---- a restore ----------------------------------------------------------------------------------

TEST_F(UnfinishedRun, RestoreStoppedAfterItsFirstFileKeepsTheCopyFromTheNextBackup) {
    selectOnly({0});
    backUp();
    disk().remove(R"(C:\Docs\a.txt)");
    disk().remove(R"(C:\Docs\Sub\b.txt)");
    stopAt(Copie::detailLabel, "Vers: ");
    restore();
    ASSERT_TRUE(disk().exists(R"(C:\Docs\a.txt)"));
    ASSERT_FALSE(disk().exists(R"(C:\Docs\Sub\b.txt)"));
    EXPECT_TRUE(markedUnfinished(R"(C:\Docs)"));

    backUp();
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\Sub\b.txt)"), "bbb");
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_TRUE(statistics.originalInDoubt);
    EXPECT_THAT(journal(),
                Contains(HasSubstr(R"(conservés dans F:\Save\Docs : la dernière restauration dans )"
                                   R"(C:\Docs n'a pas tout remis.)")));

    restore();
    EXPECT_EQ(disk().content(R"(C:\Docs\Sub\b.txt)"), "bbb");
    EXPECT_FALSE(markedUnfinished(R"(C:\Docs)"));
    disk().remove(R"(C:\Docs\a.txt)");
    backUp();
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_FALSE(disk().exists(R"(F:\Save\Docs\a.txt)"));
}

TEST_F(UnfinishedRun, RestoreThatHasChangedNothingLeavesNoMark) {
    selectOnly({0});
    backUp();
    change(R"(C:\Docs\a.txt)");
    stopAt(Copie::phaseLabel, beforeTheAnalysis);
    restore();
    ASSERT_TRUE(control.interruptionRequested);
    EXPECT_EQ(disk().content(R"(C:\Docs\a.txt)"), "changed");
    EXPECT_FALSE(markedUnfinished(R"(C:\Docs)"));
}

// As onto a new disk: nothing had to be deleted, and most of it is in the copy alone.
TEST_F(UnfinishedRun, RestoreStoppedInItsMidstKeepsTheRestOfEveryCopy) {
    backUp();
    disk().remove(R"(C:\Docs)");
    disk().remove(R"(D:\Photos)");
    stopAt(Copie::detailLabel, "Vers: ");
    restore();
    ASSERT_TRUE(disk().exists(R"(C:\Docs\a.txt)"));
    ASSERT_FALSE(disk().exists(R"(C:\Docs\Sub\b.txt)"));

    backUp();
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\Sub\b.txt)"), "bbb");
    EXPECT_EQ(disk().content(R"(G:\Save\Photos\c.jpg)"), "cccccccc");
    restore();
    EXPECT_EQ(disk().content(R"(D:\Photos\c.jpg)"), "cccccccc");
    EXPECT_FALSE(markedUnfinished(R"(C:\Docs)"));
    EXPECT_FALSE(markedUnfinished(R"(D:\Photos)"));
}

TEST_F(UnfinishedRun, RestoreThatCouldNotBringAFileBackKeepsItsCopy) {
    selectOnly({0});
    backUp();
    disk().remove(R"(C:\Docs\a.txt)");
    failCopyOf(R"(F:\Save\Docs\a.txt)", error_number::sharingViolation);
    restore();
    ASSERT_EQ(statistics.errorCount, 1);
    backUp();
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "aaaaa");
}

// No run brings it back by itself, and the error would come for ever.
TEST_F(UnfinishedRun, RestoreIsFinishedWhenOnlyAnEmptyFileIsLeft) {
    selectOnly({0});
    disk().file(R"(C:\Docs\empty)", "");
    backUp();
    disk().remove(R"(C:\Docs\a.txt)");
    disk().remove(R"(C:\Docs\empty)");
    faults.fail("copyFile", R"(F:\Save\Docs\empty)", error_number::sharingViolation);
    restore();
    ASSERT_TRUE(markedUnfinished(R"(C:\Docs)"));
    restore();
    EXPECT_FALSE(markedUnfinished(R"(C:\Docs)"));
}

TEST_F(UnfinishedRun, RestoreThatCannotMarkTheOriginalMarksTheCopy) {
    selectOnly({0});
    backUp();
    disk().remove(R"(C:\Docs\a.txt)");
    disk().remove(R"(C:\Docs\Sub\b.txt)");
    faults.fail("writeWhole", "", error_number::accessDenied, 1);
    stopAt(Copie::detailLabel, "Vers: ");
    restore();
    ASSERT_FALSE(markedUnfinished(R"(C:\Docs)"));
    backUp();
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\Sub\b.txt)"), "bbb");
}

// ---- who says what is right ---------------------------------------------------------------------

TEST_F(UnfinishedRun, TheUserMaySayThatTheOriginalIsRightForOneRun) {
    selectOnly({0});
    backUp();
    disk().remove(R"(C:\Docs\a.txt)");
    disk().remove(R"(C:\Docs\Sub\b.txt)");
    stopAt(Copie::detailLabel, "Vers: ");
    restore();
    ASSERT_TRUE(markedUnfinished(R"(C:\Docs)"));
    switches.acceptOriginal = true;
    backUp();
    EXPECT_FALSE(markedUnfinished(R"(C:\Docs)"));
    EXPECT_FALSE(disk().exists(R"(F:\Save\Docs\Sub\b.txt)"));
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\a.txt)"));
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_FALSE(statistics.originalInDoubt);
}

TEST_F(UnfinishedRun, AnOriginalOnAnotherVolumeIsDoubtedUntilItIsConfirmed) {
    selectOnly({0});
    backUp();
    disk().volume(R"(C:\)").identity = "another";
    disk().remove(R"(C:\Docs\a.txt)");
    backUp();
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\a.txt)"));
    EXPECT_TRUE(statistics.originalInDoubt);
    switches.acceptOriginal = true;
    backUp();
    EXPECT_FALSE(disk().exists(R"(F:\Save\Docs\a.txt)"));
    switches.acceptOriginal = false;
    disk().file(R"(F:\Save\Docs\gone.txt)", "gone");
    backUp();
    EXPECT_FALSE(disk().exists(R"(F:\Save\Docs\gone.txt)"));
    EXPECT_EQ(statistics.errorCount, 0);
}

// ---- two copies of one original -----------------------------------------------------------------

class CopiesInTurn : public UnfinishedRun {
  protected:
    CopiesInTurn() { selectOnly({0}); }
    void plugIn(const char* destination) { system.lines[0].destination = destination; }
};

TEST_F(CopiesInTurn, AnOpenOneIsNoProofThoughTheOtherIsComplete) {
    backUp();
    plugIn(R"(G:\Save)");
    disk().file(R"(C:\Docs\Sub\new.txt)", "new");
    stopAt(Copie::detailLabel, "Vers: ");
    backUp();
    ASSERT_TRUE(isOpen(R"(G:\Save\Docs)"));
    ASSERT_TRUE(isComplete(R"(F:\Save\Docs)"));
    restore();
    EXPECT_EQ(disk().content(R"(C:\Docs\Sub\new.txt)"), "new");
    EXPECT_EQ(disk().content(R"(C:\Docs\Sub\b.txt)"), "bbb");
}

TEST_F(CopiesInTurn, AnUnfinishedRestoreFromOneKeepsTheOther) {
    backUp();
    plugIn(R"(G:\Save)");
    backUp();
    disk().remove(R"(C:\Docs\a.txt)");
    disk().remove(R"(C:\Docs\Sub\b.txt)");
    stopAt(Copie::detailLabel, "Vers: ");
    restore();
    ASSERT_FALSE(disk().exists(R"(C:\Docs\Sub\b.txt)"));
    plugIn(R"(F:\Save)");
    backUp();
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\Sub\b.txt)"), "bbb");
}

TEST_F(CopiesInTurn, TheEndOfOneRestoreDoesNotPassForThatOfAnother) {
    backUp();
    plugIn(R"(G:\Save)");
    disk().file(R"(C:\Docs\Sub\later.txt)", "later");
    backUp();
    disk().remove(R"(C:\Docs\a.txt)");
    disk().remove(R"(C:\Docs\Sub)");
    stopAt(Copie::detailLabel, "Vers: ");
    restore();
    plugIn(R"(F:\Save)");
    restore();
    ASSERT_FALSE(disk().exists(R"(C:\Docs\Sub\later.txt)"));
    EXPECT_TRUE(markedUnfinished(R"(C:\Docs)"));
    plugIn(R"(G:\Save)");
    backUp();
    EXPECT_EQ(disk().content(R"(G:\Save\Docs\Sub\later.txt)"), "later");
}

// ---- C:\Docs to F:\Save, and that copy to G:\Save -----------------------------------------------

class ChainOfLines : public UnfinishedRun {
  protected:
    ChainOfLines() { system.lines[1].source = R"(F:\Save\Docs)"; }
    void runLine(int line, OperationKind kind) {
        selectOnly({line});
        run(kind);
    }
};

TEST_F(ChainOfLines, IsNoErrorAndLosesNoVersion) {
    backUp();
    change(R"(C:\Docs\a.txt)");
    backUp();
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "changed");
    EXPECT_EQ(disk().content(R"(G:\Save\Docs\a.txt)"), "changed");
    disk().file(R"(C:\Docs\a.txt)", "spoilt", fileTimeAt(2024, 3, 11));
    restore();
    EXPECT_EQ(disk().content(R"(C:\Docs\a.txt)"), "changed");
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "changed");
}

TEST_F(ChainOfLines, WhatTheFirstCopyDoesNotHaveYetStaysInTheSecond) {
    backUp();
    disk().remove(R"(F:\Save\Docs)");  // a new disk in the place of the old one
    selectOnly({0});
    stopAt(Copie::detailLabel, "Vers: ");
    backUp();
    ASSERT_FALSE(disk().exists(R"(F:\Save\Docs\Sub\b.txt)"));
    runLine(1, OperationKind::backup);
    EXPECT_EQ(disk().content(R"(G:\Save\Docs\Sub\b.txt)"), "bbb");
    EXPECT_FALSE(statistics.originalInDoubt);
}

TEST_F(ChainOfLines, ARestoreIntoTheMiddleDeletesNothingThere) {
    backUp();
    disk().file(R"(C:\Docs\new.txt)", "new");
    runLine(0, OperationKind::backup);
    runLine(1, OperationKind::restore);
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\new.txt)"), "new");
    runLine(0, OperationKind::restore);
    EXPECT_EQ(disk().content(R"(C:\Docs\new.txt)"), "new");
}

TEST_F(ChainOfLines, AnUnfinishedRestoreIntoTheMiddleKeepsBothSides) {
    backUp();
    disk().remove(R"(F:\Save\Docs\a.txt)");
    disk().remove(R"(F:\Save\Docs\Sub\b.txt)");
    selectOnly({1});
    stopAt(Copie::detailLabel, "Vers: ");
    restore();
    ASSERT_FALSE(disk().exists(R"(F:\Save\Docs\Sub\b.txt)"));
    runLine(1, OperationKind::backup);
    EXPECT_EQ(disk().content(R"(G:\Save\Docs\Sub\b.txt)"), "bbb");
    runLine(0, OperationKind::restore);
    EXPECT_EQ(disk().content(R"(C:\Docs\Sub\b.txt)"), "bbb");
}

// ---- what does not depend on the settings -------------------------------------------------------

TEST_F(UnfinishedRun, IsKnownUnderAnotherLetterAndByOtherSettings) {
    selectOnly({0});
    stopAt(Copie::detailLabel, "Vers: ");
    backUp();
    ASSERT_TRUE(isOpen(R"(F:\Save\Docs)"));
    ASSERT_TRUE(system.WriteSetting("Travail", "Destination0", "").ok());
    system.configurationName = "Autre";
    EXPECT_TRUE(isOpen(R"(F:\Save\Docs)"));
    restore();
    EXPECT_EQ(disk().content(R"(C:\Docs\Sub\b.txt)"), "bbb");
}

TEST_F(UnfinishedRun, WritesNoKeyOfItsOwnIntoTheSettings) {
    stopAt(Copie::detailLabel, "Vers: ");
    backUp();
    const std::string settings = errorList("Coffrelune.ini");
    EXPECT_EQ(settings.find("Incomplete"), std::string::npos);
}

TEST_F(UnfinishedRun, TellsHowManyFilesEachRunHasDeleted) {
    selectOnly({0});
    EXPECT_EQ(launch(RunMode::unattended), RunEnd::finished);
    EXPECT_THAT(user().notices(), IsEmpty());
    disk().file(R"(C:\Docs\new.txt)", "new");
    change(R"(C:\Docs\a.txt)");
    disk().file(R"(F:\Save\Docs\gone.txt)", "gone");
    system.operationKind = OperationKind::restore;
    EXPECT_EQ(launch(RunMode::unattended), RunEnd::finished);
    EXPECT_EQ(launcher->statistics().filesDeleted, 2);
    EXPECT_EQ(launcher->statistics().filesRemoved, 1);
    system.operationKind = OperationKind::backup;
    disk().remove(R"(C:\Docs\gone.txt)");
    EXPECT_EQ(launch(RunMode::unattended), RunEnd::nothing);
    EXPECT_EQ(launcher->statistics().filesRemoved, 1);
    EXPECT_THAT(user().notices(),
                ElementsAre("La restauration a effacé 1 fichier(s) excédentaire(s).",
                            "La sauvegarde a effacé de la copie 1 fichier(s) excédentaire(s)."));
}

}  // namespace
}  // namespace coffrelune
