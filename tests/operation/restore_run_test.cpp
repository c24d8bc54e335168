// Restores, and the pass that deletes excess files, as the operation window runs them.
#include "operation/operation_fixture.h"

namespace coffrelune {
namespace {

using testing::Contains;

class Restore : public OperationTest {
  protected:
    void backUp() {
        system.operationKind = OperationKind::backup;
        system.Confirmation = 1;
        system.Modifie = 1;
        runCopie();
    }
    void restore() {
        system.operationKind = OperationKind::restore;
        runCopie();
    }
};

TEST_F(Restore, OfAnEmptiedSourceGivesBackTheSameTree) {
    const auto before = filesBelow(R"(C:\Docs)");
    backUp();
    disk().remove(R"(C:\Docs\a.txt)");
    disk().remove(R"(C:\Docs\Sub)");
    restore();
    EXPECT_THAT(filesBelow(R"(C:\Docs)"), testing::UnorderedElementsAreArray(before));
    EXPECT_EQ(disk().content(R"(C:\Docs\a.txt)"), "aaaaa");
    EXPECT_FALSE(disk().exists(R"(C:\Docs\Docs)"));
}

// An error of the analysis counts too: nothing else may have been left to copy.
TEST_F(Restore, DeletesNoFileThatTheBackupCouldNotRead) {
    system.AutoMode = true;
    system.options.ContinueOnError = -1;
    selectOnly({0});
    backUp();
    disk().file(R"(C:\Docs\secret.txt)", "never saved").nameAlone = true;
    backUp();
    EXPECT_EQ(statistics.errorCount, 1);
    disk().find(R"(C:\Docs\secret.txt)")->nameAlone = false;
    system.options.SynchroCopie = -1;
    restore();
    EXPECT_EQ(disk().content(R"(C:\Docs\secret.txt)"), "never saved");
}

TEST_F(Restore, MakesTheDirectoriesAboveAgain) {
    system.lines[0].source = R"(C:\Far\Away\Docs)";
    disk().file(R"(C:\Far\Away\Docs\x.txt)", "x");
    selectOnly({0});
    backUp();
    disk().remove(R"(C:\Far)");
    restore();
    EXPECT_EQ(disk().content(R"(C:\Far\Away\Docs\x.txt)"), "x");
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(Restore, OfASingleFileComesBackToItsPlace) {
    system.lines[0].source = R"(C:\Letters\one.txt)";
    disk().file(R"(C:\Letters\one.txt)", "dear");
    selectOnly({0});
    backUp();
    EXPECT_EQ(disk().content(R"(F:\Save\one.txt)"), "dear");
    disk().remove(R"(C:\Letters)");
    restore();
    EXPECT_EQ(disk().content(R"(C:\Letters\one.txt)"), "dear");
}

TEST_F(Restore, OfADriveRootReadsTheDirectoryOfItsLetter) {
    system.lines[0].source = "E:\\";
    disk().file(R"(E:\Sub\e.txt)", "e");
    selectOnly({0});
    backUp();
    EXPECT_EQ(disk().content(R"(F:\Save\E\Sub\e.txt)"), "e");
    disk().remove(R"(E:\Sub)");
    restore();
    EXPECT_EQ(disk().content(R"(E:\Sub\e.txt)"), "e");
}

TEST_F(Restore, OfASourceWithATrailingBackslashOrOneComponent) {
    system.lines[0].source = R"(C:\Docs\)";
    selectOnly({0});
    backUp();
    disk().remove(R"(C:\Docs\a.txt)");
    restore();
    EXPECT_EQ(disk().content(R"(C:\Docs\a.txt)"), "aaaaa");
}

TEST_F(Restore, OfACopyThatLiesInsideItsSource) {
    system.lines[0].destination = R"(C:\Docs\Backup)";
    disk().directory(R"(C:\Docs\Backup)");
    selectOnly({0});
    backUp();
    disk().remove(R"(C:\Docs\a.txt)");
    restore();
    EXPECT_EQ(disk().content(R"(C:\Docs\a.txt)"), "aaaaa");
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(Restore, OntoADiskThatIsNotThereIsInterruptedWithItsCause) {
    selectOnly({1});
    backUp();
    disk().volume("D:\\").present = false;
    restore();
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_EQ(control.lastErrorNumber, error_number::deviceDoesNotExist);
}

TEST_F(Restore, LeavesOutWhatTheLineLeavesOut) {
    system.options.SynchroCopie = -1;
    (void)system.WriteSetting("Travail", "RepExclu0_Mode", "2");
    (void)system.WriteSetting("Travail", "RepExclu0_Rep1", R"(\Sub)");
    selectOnly({0});
    backUp();
    EXPECT_FALSE(disk().exists(R"(F:\Save\Docs\Sub)"));
    restore();
    EXPECT_TRUE(disk().exists(R"(C:\Docs\Sub\b.txt)"));
}

TEST_F(Restore, AsksTwoQuestionsAndStopsAtTheFirstCancel) {
    launcher = std::make_unique<OperationLauncher>(system, host, stage);
    user().answer(Answer::cancel);
    EXPECT_FALSE(launcher->confirmRestore());
    user().answer(Answer::ok);
    user().answer(Answer::cancel);
    EXPECT_FALSE(launcher->confirmRestore());
    user().answer(Answer::ok);
    user().answer(Answer::ok);
    EXPECT_TRUE(launcher->confirmRestore());
    ASSERT_EQ(user().messages().size(), 5U);
    const MessageBoxText& first = user().messages()[3];
    const MessageBoxText& second = user().messages()[4];
    EXPECT_EQ(first.text, "Confirmez-vous la restauration des fichiers ?");
    EXPECT_EQ(second.text, "Vous êtes bien sûr de vous ?\n(Restauration des fichiers)");
    EXPECT_EQ(first.title, system.programTitle);
    EXPECT_EQ(second.icon, MessageIcon::question);
    EXPECT_EQ(second.buttons, MessageButtons::okCancel);
}

class ExcessPass : public OperationTest {
  protected:
    ExcessPass() {
        system.Confirmation = 1;
        system.Modifie = 1;
        system.options.SynchroCopie = -1;
        disk().file(R"(F:\Save\Docs\gone.txt)", "old");
    }
};

TEST_F(ExcessPass, RunsAfterTheTreeAndBeforeTheAnalysis) {
    runCopie();
    EXPECT_THAT(windows.changesOf("Lbl1"),
                testing::IsSupersetOf({"Copie de l'arborescence...",
                                       "Effacement des fichiers excédentaires...",
                                       "Analyse de la copie..."}));
    const Events texts = windows.changesOf("Lbl1");
    EXPECT_EQ(texts[0], "Copie de l'arborescence...");
    EXPECT_EQ(texts[1], "Effacement des fichiers excédentaires...");
    EXPECT_EQ(texts[2], "Analyse de la copie...");
    EXPECT_THAT(windows.changesOf("Lbl3"),
                Contains("Analyse des fichiers excédentaires sur la destination"));
    EXPECT_THAT(windows.changesOf("Lbl3"), Contains("1 fichier(s) effacé(s) sur la destination "));
    EXPECT_FALSE(disk().exists(R"(F:\Save\Docs\gone.txt)"));
    EXPECT_EQ(statistics.filesDeleted, 1);
}

class RestoreOfAnUnfinishedCopy : public Restore {
  protected:
    RestoreOfAnUnfinishedCopy() {
        system.options.SynchroCopie = -1;
        system.options.ContinueOnError = -1;
        selectOnly({0});
    }
    /// The next run ends with an error, and its window waits.
    void closeAtFermer() {
        user().stepIn<Copie>([](Copie& window) { window.Cmd.click(); });
    }
    void stopBackUpAtItsFirstFile() {
        whenEventsRun([](Copie& window) { return window.Lbl[3].caption().starts_with("Vers: "); },
                      [](Copie& window) { window.requestInterruption(); });
        backUp();
        ASSERT_TRUE(control.interruptionRequested);
        ASSERT_TRUE(disk().exists(R"(F:\Save\Docs\a.txt)"));
        ASSERT_FALSE(disk().exists(R"(F:\Save\Docs\Sub\b.txt)"));
    }
};

TEST_F(RestoreOfAnUnfinishedCopy, DeletesNothingThatWasNeverCopied) {
    stopBackUpAtItsFirstFile();
    EXPECT_TRUE(isOpen(R"(F:\Save\Docs)"));
    closeAtFermer();
    restore();
    EXPECT_EQ(disk().content(R"(C:\Docs\Sub\b.txt)"), "bbb");
    EXPECT_THAT(journal(), Contains("Fichiers excédentaires conservés dans C:\\Docs : la dernière "
                                    "sauvegarde dans F:\\Save\\Docs n'a pas tout copié. Une "
                                    "sauvegarde menée jusqu'au bout le permettra."));
    EXPECT_EQ(statistics.errorCount, 1);
}

TEST_F(RestoreOfAnUnfinishedCopy, DeletesAgainOnceABackupHasFinished) {
    stopBackUpAtItsFirstFile();
    backUp();
    EXPECT_TRUE(isComplete(R"(F:\Save\Docs)"));
    disk().file(R"(C:\Docs\new.txt)", "new");
    restore();
    EXPECT_FALSE(disk().exists(R"(C:\Docs\new.txt)"));
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(RestoreOfAnUnfinishedCopy, DeletesAgainOnceABackupFoundNothingLeftToCopy) {
    stopBackUpAtItsFirstFile();
    disk().remove(R"(C:\Docs\Sub\b.txt)");
    backUp();
    EXPECT_FALSE(statistics.copyPassStarted);
    EXPECT_TRUE(isComplete(R"(F:\Save\Docs)"));
}

TEST_F(RestoreOfAnUnfinishedCopy, KeepsWhatCouldNotBeCopied) {
    failCopyOf(R"(C:\Docs\Sub\b.txt)", error_number::sharingViolation);
    closeAtFermer();
    backUp();
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_TRUE(isOpen(R"(F:\Save\Docs)"));
    closeAtFermer();
    restore();
    EXPECT_EQ(disk().content(R"(C:\Docs\Sub\b.txt)"), "bbb");
}

TEST_F(RestoreOfAnUnfinishedCopy, IsNotMarkedByTheErrorOfAnotherLine) {
    selectOnly({0, 1});
    failCopyOf(R"(D:\Photos\c.jpg)", error_number::sharingViolation);
    closeAtFermer();
    backUp();
    EXPECT_TRUE(isOpen(R"(G:\Save\Photos)"));
    EXPECT_TRUE(isComplete(R"(F:\Save\Docs)"));
}

TEST_F(ExcessPass, DoesNotRunWithoutTheOption) {
    system.options.SynchroCopie = 0;
    runCopie();
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\gone.txt)"));
}

TEST_F(ExcessPass, DoesNotRunAfterAnInterruptionOfTheTreePass) {
    whenEventsRun(
        [](Copie& window) { return window.Lbl[1].caption() == "Copie de l'arborescence..."; },
        [](Copie& window) { window.requestInterruption(); });
    runCopie();
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\gone.txt)"));
}

TEST_F(ExcessPass, DoesNotRunWhenOnlyTheTreeIsCopied) {
    system.options.ArbreMode = -1;
    runCopie();
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\gone.txt)"));
}

TEST_F(ExcessPass, KeepsTheExclusionListOfTheLastLineOfTheTreePass) {
    (void)system.WriteSetting("Travail", "RepExclu1_Mode", "2");
    (void)system.WriteSetting("Travail", "RepExclu1_Rep1", R"(\Old)");
    disk().file(R"(F:\Save\Docs\Old\kept.txt)", "x");
    disk().file(R"(F:\Save\Docs\Other\gone.txt)", "x");
    runCopie();
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\Old\kept.txt)"));
    EXPECT_FALSE(disk().exists(R"(F:\Save\Docs\Other\gone.txt)"));
}

TEST_F(ExcessPass, LeavesTheCopyOfALineThatIsNotSelected) {
    system.lines[1].destination = R"(F:\Save\Docs)";
    disk().file(R"(F:\Save\Docs\Photos\c.jpg)", "cccccccc");
    selectOnly({0});
    runCopie();
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\Photos\c.jpg)"));
    EXPECT_FALSE(disk().exists(R"(F:\Save\Docs\gone.txt)"));
}

TEST_F(ExcessPass, OfARestoreCleansTheSourceOfWhatTheCopyLacks) {
    runCopie();
    disk().file(R"(C:\Docs\later.txt)", "made after the backup");
    system.operationKind = OperationKind::restore;
    runCopie();
    EXPECT_FALSE(disk().exists(R"(C:\Docs\later.txt)"));
    EXPECT_TRUE(disk().exists(R"(C:\Docs\a.txt)"));
}

TEST_F(ExcessPass, DoesNotRunForWhoKeepsExistingFiles) {
    launcher = std::make_unique<OperationLauncher>(system, host, stage);
    launcher->keepExistingFiles();
    user().answer(Answer::ok);
    launcher->LanceOperation(RunMode::startedByUser);
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\gone.txt)"));
}

TEST_F(ExcessPass, KeepsToTheListsThatTheRunBeganWith) {
    (void)system.WriteSetting("Travail", "RepExclu0_Mode", "2");
    (void)system.WriteSetting("Travail", "RepExclu0_Rep1", R"(\Photos)");
    disk().file(R"(F:\Save\Docs\Photos\p.jpg)", "never in the source");
    whenEventsRun(
        [](Copie& window) {
            return window.Lbl[1].caption() == "Effacement des fichiers excédentaires...";
        },
        [this](Copie&) { (void)system.WriteSetting("Travail", "RepExclu0_Mode", "0"); });
    runCopie();
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\Photos\p.jpg)"));
}

TEST_F(ExcessPass, OfARestoreThatWasNeverBackedUpEmptiesNothing) {
    selectOnly({1});
    system.operationKind = OperationKind::restore;
    system.options.ContinueOnError = -1;
    user().stepIn<Copie>([](Copie& window) { window.Cmd.click(); });
    runCopie();
    EXPECT_TRUE(disk().exists(R"(D:\Photos\c.jpg)"));
    EXPECT_EQ(statistics.errorCount, 1);
}

}  // namespace
}  // namespace coffrelune
