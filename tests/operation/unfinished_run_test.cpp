// What a run that was not finished leaves on one side alone, the next run keeps.
#include "operation/line_texts.h"
#include "operation/operation_fixture.h"
#include "settings/unfinished_copies.h"

namespace coffrelune {
namespace {

using testing::Contains;
using testing::ElementsAre;

constexpr const char* beforeTheAnalysis = "Analyse de la copie...";

class UnfinishedRun : public OperationTest {
  protected:
    UnfinishedRun() {
        system.options.SynchroCopie = -1;
        system.options.ContinueOnError = -1;
        system.Confirmation = 1;
        system.AutoMode = true;  // no window waits because of errors
    }
    void backUp() { run(OperationKind::backup); }
    void restore() { run(OperationKind::restore); }
    void run(OperationKind kind) {
        system.operationKind = kind;
        runCopie();
    }
    void stopAt(std::size_t label, const std::string& beginLike) {
        whenEventsRun(
            [label, beginLike](Copie& window) {
                return window.Lbl.at(label).caption().starts_with(beginLike);
            },
            [](Copie& window) { window.requestInterruption(); });
    }
    void change(const std::string& path) { disk().file(path, "changed", fileTimeAt(2024, 3, 9)); }
    bool marked(const std::string& tree) { return UnfinishedCopies(system).hold(tree); }
    bool markedOriginal(const std::string& tree) {
        return UnfinishedCopies(system, UnfinishedCopies::Kind::originals).hold(tree);
    }
};

TEST_F(UnfinishedRun, BackupStoppedAfterItsDeletionsIsMarked) {
    selectOnly({0});
    backUp();
    change(R"(C:\Docs\a.txt)");
    stopAt(1, beforeTheAnalysis);
    backUp();
    ASSERT_TRUE(statistics.interruptionRequested);
    ASSERT_FALSE(disk().exists(R"(F:\Save\Docs\a.txt)"));
    EXPECT_TRUE(marked(R"(F:\Save\Docs)"));

    restore();
    EXPECT_EQ(disk().content(R"(C:\Docs\a.txt)"), "changed");
    backUp();
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "changed");
    EXPECT_FALSE(marked(R"(F:\Save\Docs)"));
}

TEST_F(UnfinishedRun, BackupStoppedInOneLineLeavesTheLaterOnesMarked) {
    backUp();
    change(R"(C:\Docs\a.txt)");
    change(R"(D:\Photos\c.jpg)");
    disk().file(R"(D:\Photos\new.jpg)", "new");
    stopAt(3, "Vers: ");
    backUp();
    ASSERT_TRUE(statistics.interruptionRequested);
    ASSERT_FALSE(disk().exists(R"(G:\Save\Photos\c.jpg)"));
    EXPECT_TRUE(marked(R"(G:\Save\Photos)"));

    restore();
    EXPECT_EQ(disk().content(R"(D:\Photos\c.jpg)"), "changed");
    EXPECT_EQ(disk().content(R"(D:\Photos\new.jpg)"), "new");
}

TEST_F(UnfinishedRun, WithoutDeletionsLeavesTheLaterLinesMarkedToo) {
    system.options.SynchroCopie = 0;
    disk().directory(R"(G:\Save\Photos)");
    disk().file(R"(G:\Save\Photos\older.jpg)", "older");
    stopAt(3, "Vers: ");
    backUp();
    ASSERT_FALSE(disk().exists(R"(G:\Save\Photos\c.jpg)"));
    system.options.SynchroCopie = -1;
    restore();
    EXPECT_EQ(disk().content(R"(D:\Photos\c.jpg)"), "cccccccc");
}

// A run whose only candidates are empty files copies nothing.
TEST_F(UnfinishedRun, LeavesEmptyFilesThatNoRunHasCopied) {
    selectOnly({0});
    backUp();
    disk().file(R"(C:\Docs\empty)", "");
    backUp();
    ASSERT_FALSE(statistics.copyPassStarted);
    ASSERT_FALSE(disk().exists(R"(F:\Save\Docs\empty)"));
    restore();
    EXPECT_TRUE(disk().exists(R"(C:\Docs\empty)"));

    change(R"(C:\Docs\a.txt)");
    backUp();
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\empty)"));
    EXPECT_FALSE(marked(R"(F:\Save\Docs)"));
}

// What it has deleted to replace it lies in the copy alone.
TEST_F(UnfinishedRun, RestoreStoppedAfterItsDeletionsKeepsTheCopyFromTheNextBackup) {
    selectOnly({0});
    backUp();
    change(R"(C:\Docs\a.txt)");
    stopAt(1, beforeTheAnalysis);
    restore();
    ASSERT_FALSE(disk().exists(R"(C:\Docs\a.txt)"));

    backUp();
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "aaaaa");
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_THAT(journal(), Contains("Fichiers excédentaires conservés dans F:\\Save\\Docs : la "
                                    "dernière restauration dans C:\\Docs n'a pas tout remis."));

    restore();
    EXPECT_EQ(disk().content(R"(C:\Docs\a.txt)"), "aaaaa");
    disk().remove(R"(C:\Docs\a.txt)");
    backUp();
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_FALSE(disk().exists(R"(F:\Save\Docs\a.txt)"));
}

TEST_F(UnfinishedRun, RestoreThatHasReplacedNothingLeavesNoMark) {
    selectOnly({0});
    backUp();
    stopAt(1, beforeTheAnalysis);
    restore();
    ASSERT_TRUE(statistics.interruptionRequested);
    EXPECT_FALSE(markedOriginal(R"(C:\Docs)"));
}

// As onto a new disk: nothing had to be deleted, and most of it is in the copy alone.
TEST_F(UnfinishedRun, RestoreStoppedInItsMidstKeepsTheRestOfTheCopy) {
    backUp();
    disk().remove(R"(C:\Docs)");
    disk().remove(R"(D:\Photos)");
    disk().file(R"(D:\Photos\mine.jpg)", "mine");
    stopAt(3, "Vers: ");
    restore();
    ASSERT_TRUE(disk().exists(R"(C:\Docs\a.txt)"));
    ASSERT_FALSE(disk().exists(R"(C:\Docs\Sub\b.txt)"));

    backUp();
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\Sub\b.txt)"), "bbb");
    EXPECT_EQ(disk().content(R"(G:\Save\Photos\c.jpg)"), "cccccccc");
    EXPECT_EQ(statistics.errorCount, 2);
    restore();
    EXPECT_EQ(disk().content(R"(D:\Photos\c.jpg)"), "cccccccc");
    EXPECT_FALSE(markedOriginal(R"(C:\Docs)"));
    EXPECT_FALSE(markedOriginal(R"(D:\Photos)"));
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
    ASSERT_TRUE(markedOriginal(R"(C:\Docs)"));
    restore();
    EXPECT_FALSE(markedOriginal(R"(C:\Docs)"));
}

// C:\Docs to F:\Save, and that copy to G:\Save.
TEST_F(UnfinishedRun, ChainOfLinesIsNoErrorAndLosesNoVersion) {
    system.sources[1] = R"(F:\Save\Docs)";
    backUp();
    change(R"(C:\Docs\a.txt)");
    backUp();
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "changed");

    disk().file(R"(C:\Docs\a.txt)", "changed again", fileTimeAt(2024, 3, 10));
    selectOnly({0});
    backUp();
    selectOnly({0, 1});
    disk().file(R"(C:\Docs\a.txt)", "spoilt", fileTimeAt(2024, 3, 11));
    restore();
    EXPECT_TRUE(disk().exists(R"(C:\Docs\a.txt)"));
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\a.txt)"));
}

TEST_F(UnfinishedRun, WithoutAPlaceForItsMarkDeletesNothingThatMerelyDiffers) {
    selectOnly({0});
    backUp();
    change(R"(C:\Docs\a.txt)");
    disk().file(R"(F:\Save\Docs\gone.txt)", "gone");
    disk().volume(R"(C:\)").writeProtected = true;
    stopAt(1, beforeTheAnalysis);
    backUp();
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "aaaaa");
    EXPECT_FALSE(disk().exists(R"(F:\Save\Docs\gone.txt)"));
}

TEST_F(UnfinishedRun, KeepsItsMarkUnderAnotherLetter) {
    selectOnly({0});
    stopAt(3, "Vers: ");
    backUp();
    ASSERT_TRUE(marked(R"(F:\Save\Docs)"));
    system.operationKind = OperationKind::backup;
    editLine(system, 0, LineSide::right, R"(G:\Save)");
    EXPECT_TRUE(marked(R"(G:\Save\Docs)"));
    EXPECT_TRUE(marked(R"(F:\Save\Docs)"));
    editLine(system, 1, LineSide::right, R"(F:\Other)");
    EXPECT_FALSE(marked(R"(F:\Other\Photos)"));
}

TEST_F(UnfinishedRun, TellsHowManyFilesARestoreHasDeleted) {
    selectOnly({0});
    EXPECT_EQ(launch(0), RunEnd::finished);
    disk().file(R"(C:\Docs\new.txt)", "new");
    disk().file(R"(F:\Save\Docs\gone.txt)", "gone");
    system.operationKind = OperationKind::restore;
    EXPECT_EQ(launch(0), RunEnd::finished);
    EXPECT_THAT(user().notices(),
                ElementsAre("La restauration a effacé 1 fichier(s) excédentaire(s) ou à "
                            "remplacer."));
    system.operationKind = OperationKind::backup;
    disk().remove(R"(C:\Docs\gone.txt)");
    EXPECT_EQ(launch(0), RunEnd::nothing);
    EXPECT_EQ(launcher->statistics().filesDeleted, 1);
    EXPECT_EQ(user().notices().size(), 1U);
}

}  // namespace
}  // namespace coffrelune
