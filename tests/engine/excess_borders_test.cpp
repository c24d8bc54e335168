// Where a deletion stops, what it says, and what a whole run makes of names that changed their
// kind.
#include "engine/engine_fixture.h"
#include "engine/excess_walk.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// C:\Docs copied to F:\Docs by a backup that ended well.
class Borders : public Engine {
  protected:
    Borders() {
        disk().directory("H:\\Coffrelune");  // for the settings
        disk().file("C:\\Docs\\a", "a");
        system.options.SynchroCopie = -1;
        system.options.ContinueOnError = -1;
        EXPECT_TRUE(backUp());
        startAgain();
    }
    bool backUp() { return run("C:\\Docs", "F:\\"); }
    bool bringBack() { return restore("C:\\Docs", "F:\\"); }
    bool kept(const std::string& path) { return disk().exists(path); }
    bool told(const std::string& words) {
        return std::any_of(window.journal.begin(), window.journal.end(),
                           [&](const auto& line) { return line.find(words) != std::string::npos; });
    }
};

// ---- links and mount points

TEST_F(Borders, AreLinksOfTheCleanedTree) {
    disk().file("D:\\Elsewhere\\precious", "p");
    disk().link("F:\\Docs\\Link", "D:\\Elsewhere");
    EXPECT_TRUE(backUp());
    EXPECT_TRUE(kept("D:\\Elsewhere\\precious"));
    EXPECT_FALSE(kept("F:\\Docs\\Link")) << "the link itself is an excess file";
}

TEST_F(Borders, AreMountPointsOfTheCleanedTree) {
    disk().file("F:\\Docs\\Mnt\\precious", "p");
    disk().setMountPoint("F:\\Docs\\Mnt");
    disk().file("F:\\Docs\\Gone\\Mnt\\precious", "p");
    disk().setMountPoint("F:\\Docs\\Gone\\Mnt");
    EXPECT_TRUE(backUp());
    EXPECT_TRUE(kept("F:\\Docs\\Mnt\\precious"));
    EXPECT_TRUE(kept("F:\\Docs\\Gone\\Mnt\\precious"));
    EXPECT_EQ(statistics.filesRemoved, 0);
}

TEST_F(Borders, AreReferenceDirectoriesThatBecameLinks) {
    disk().file("F:\\Docs\\Sub\\old", "x");
    disk().directory("D:\\Elsewhere");
    disk().link("C:\\Docs\\Sub", "D:\\Elsewhere");
    (void)backUp();
    EXPECT_TRUE(kept("F:\\Docs\\Sub\\old"));
    EXPECT_TRUE(told("conservés dans F:\\Docs\\Sub : C:\\Docs\\Sub est un lien."));
}

TEST_F(Borders, AreReferenceDirectoriesThatBecameMountPoints) {
    disk().file("F:\\Docs\\Sub\\old", "x");
    disk().directory("C:\\Docs\\Sub");
    disk().setMountPoint("C:\\Docs\\Sub");
    (void)backUp();
    EXPECT_TRUE(kept("F:\\Docs\\Sub\\old"));
    EXPECT_TRUE(told("conservés dans F:\\Docs\\Sub : C:\\Docs\\Sub est un autre volume."));
}

TEST_F(Borders, AreReferenceDirectoriesThatCannotBeLookedUp) {
    disk().file("F:\\Docs\\Sub\\old", "x");
    disk().directory("C:\\Docs\\Sub");
    faulty.fail("lookUp", "C:\\Docs\\Sub", error_number::ioDevice);
    EXPECT_FALSE(backUp());
    EXPECT_TRUE(kept("F:\\Docs\\Sub\\old"));
    EXPECT_TRUE(told("Erreur: 1117 - Fichier: C:\\Docs\\Sub"));
}

TEST_F(Borders, AreReferenceDirectoriesWhoseMarksCannotBeRead) {
    disk().file("F:\\Docs\\Sub\\old", "x");
    disk().directory("C:\\Docs\\Sub");
    for (const char* place : {"C:\\Docs\\Sub\\", "F:\\Docs\\Sub\\"}) {
        startAgain();
        window.journal.clear();
        faulty.fail("ownFiles", place, error_number::ioDevice);
        EXPECT_FALSE(backUp());
        EXPECT_TRUE(kept("F:\\Docs\\Sub\\old"));
        EXPECT_EQ(statistics.errorCount, 1);
        EXPECT_TRUE(told("Erreur: 1117 - Fichier: " + withoutTrailingBackslash(place)));
    }
}

TEST_F(Borders, AreTheTreesOfOtherPairs) {
    Certificate other;
    other.original = "X:\\Autre";
    other.complete = true;
    disk().file("F:\\Docs\\Foreign\\f", "of another pair");
    putCertificate("F:\\Docs\\Foreign", other);
    disk().file("F:\\Docs\\Half\\h", "x");
    disk().file("F:\\Docs\\Half\\" + ownFileName(OwnFile::restoreMark, 1), "");
    disk().file("F:\\Docs\\gone", "x");
    EXPECT_TRUE(backUp());
    EXPECT_TRUE(kept("F:\\Docs\\Foreign\\f"));
    EXPECT_TRUE(kept("F:\\Docs\\Half\\h"));
    EXPECT_FALSE(kept("F:\\Docs\\gone"));
    EXPECT_TRUE(told("conservés dans F:\\Docs\\Foreign : c'est la copie d'une autre sauvegarde"));
}

TEST_F(Borders, AreReferenceDirectoriesThatAreUnfinishedThemselves) {
    Certificate other;
    other.original = "X:\\Autre";
    disk().file("F:\\Docs\\Sub\\old", "x");
    disk().directory("C:\\Docs\\Sub");
    putCertificate("C:\\Docs\\Sub", other);
    (void)backUp();
    EXPECT_TRUE(kept("F:\\Docs\\Sub\\old"));
    EXPECT_TRUE(told("C:\\Docs\\Sub est inachevé"));
    other.complete = true;
    putCertificate("C:\\Docs\\Sub", other);
    EXPECT_TRUE(backUp());
    EXPECT_FALSE(kept("F:\\Docs\\Sub\\old"));
}

// ---- names that changed their kind

TEST_F(Borders, LetAFileThatBecameADirectoryBeSetRight) {
    disk().file("F:\\Docs\\x", "a file once");
    disk().file("C:\\Docs\\x\\Deep\\new", "new");
    EXPECT_TRUE(backUp());
    EXPECT_EQ(disk().content("F:\\Docs\\x\\Deep\\new"), "new");
    EXPECT_TRUE(told("Effacé : F:\\Docs\\x"));
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(Borders, LetADirectoryThatBecameAFileBeSetRight) {
    disk().file("F:\\Docs\\x\\one", "1");
    disk().file("F:\\Docs\\x\\Deep\\Deeper\\two", "2");
    disk().file("C:\\Docs\\x", "a file by now");
    EXPECT_TRUE(backUp());
    EXPECT_EQ(disk().content("F:\\Docs\\x"), "a file by now");
    EXPECT_EQ(statistics.filesRemoved, 2);
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(Borders, KeepADirectoryInTheWayWithWhatStaysInIt) {
    disk().file("F:\\Docs\\x\\one", "1");
    disk().file("F:\\Docs\\x\\Mnt\\two", "2");
    disk().setMountPoint("F:\\Docs\\x\\Mnt");
    disk().file("C:\\Docs\\x", "a file by now");
    EXPECT_FALSE(backUp());
    EXPECT_TRUE(kept("F:\\Docs\\x\\Mnt\\two"));
    EXPECT_TRUE(
        told("F:\\Docs\\x est un répertoire : le fichier de ce nom ne peut pas être copié."));
    EXPECT_EQ(statistics.errorCount, 1);
}

TEST_F(Borders, KeepWhatStandsInTheWayWithoutADeletionAndSaySo) {
    system.options.SynchroCopie = 0;
    disk().file("F:\\Docs\\x", "a file");
    disk().file("C:\\Docs\\x\\new", "new");
    disk().file("F:\\Docs\\y\\one", "1");
    disk().file("C:\\Docs\\y", "a file by now");
    EXPECT_FALSE(backUp());
    EXPECT_EQ(disk().content("F:\\Docs\\x"), "a file");
    EXPECT_TRUE(kept("F:\\Docs\\y\\one"));
    EXPECT_TRUE(
        told("F:\\Docs\\x est un fichier : le répertoire de ce nom ne peut pas être créé."));
    EXPECT_TRUE(
        told("F:\\Docs\\y est un répertoire : le fichier de ce nom ne peut pas être copié."));
    EXPECT_EQ(statistics.errorCount, 2);
}

// ---- what a restore keeps and says

TEST_F(Borders, HoldForARestoreWhatWasLeftOutThenOrIsNow) {
    exclusions = {ExclusionMode::listed, {"\\Then"}};
    disk().file("C:\\Docs\\Then\\t", "left out then");
    EXPECT_TRUE(backUp());
    exclusions = {ExclusionMode::listed, {"\\Now"}};
    disk().file("C:\\Docs\\Now\\n", "left out now");
    disk().file("C:\\Docs\\Other\\o", "in no copy");
    EXPECT_TRUE(bringBack());
    EXPECT_TRUE(kept("C:\\Docs\\Then\\t"));
    EXPECT_TRUE(kept("C:\\Docs\\Now\\n"));
    EXPECT_FALSE(kept("C:\\Docs\\Other\\o"));
}

TEST_F(Borders, HoldForARestoreWhatLiesBelowAMountPointOfOld) {
    for (const char* mount : {"C:\\Docs\\Mnt", "C:\\Docs\\Sub\\Mnt"}) {
        disk().directory(mount);
        disk().setMountPoint(mount);
    }
    EXPECT_TRUE(backUp());
    disk().remove("C:\\Docs\\Mnt");
    disk().file("C:\\Docs\\MNT\\m", "behind the mount, spelled otherwise");
    disk().setMountPoint("C:\\Docs\\Sub\\Mnt", false);
    disk().file("C:\\Docs\\Sub\\Mnt\\m", "behind the mount");
    EXPECT_TRUE(bringBack());
    EXPECT_TRUE(kept("C:\\Docs\\MNT\\m"));
    EXPECT_TRUE(kept("C:\\Docs\\Sub\\Mnt\\m"));
}

TEST_F(Borders, AreToldByARestoreBeforeItDeletes) {
    for (int i = 10; i < 22; ++i) disk().file("C:\\Docs\\later" + std::to_string(i), "x");
    EXPECT_TRUE(bringBack());
    ASSERT_GE(window.journal.size(), 24U);
    EXPECT_EQ(window.journal[0],
              "La restauration va effacer 12 fichier(s) de C:\\Docs que la copie n'a pas :");
    EXPECT_EQ(window.journal[1], "  C:\\Docs\\later10");
    EXPECT_EQ(window.journal[10], "  C:\\Docs\\later19");
    EXPECT_EQ(window.journal[11], "  …");
    EXPECT_EQ(window.journal[12], "Effacé : C:\\Docs\\later10");
    EXPECT_EQ(window.journal[23], "Effacé : C:\\Docs\\later21");
    EXPECT_EQ(statistics.filesRemoved, 12);
    EXPECT_EQ(statistics.filesDeleted, 12) << "counted once";
}

TEST_F(Borders, AreToldByNoRestoreThatDeletesNothing) {
    disk().remove("C:\\Docs\\a");
    EXPECT_TRUE(bringBack());
    EXPECT_THAT(window.journal, IsEmpty());
}

TEST_F(Borders, StopARestoreThatTheUserStopsWhileItCounts) {
    disk().file("C:\\Docs\\later1", "x");
    disk().file("C:\\Docs\\later2", "x");
    window.onEvents = [this] { control.interruptionRequested = true; };
    EXPECT_FALSE(bringBack());
    EXPECT_TRUE(kept("C:\\Docs\\later1"));
    EXPECT_TRUE(kept("C:\\Docs\\later2"));
}

// ---- spelling

TEST_F(Borders, KeepACopyThatItsVolumeSpellsOtherwise) {
    disk().volume("G:\\").foldsCase = true;
    disk().file("C:\\Docs\\Plan.txt", "plan");
    disk().file("G:\\Docs\\PLAN.TXT", "plan");
    disk().file("G:\\Docs\\gone.txt", "x");
    EXPECT_TRUE(run("C:\\Docs", "G:\\", 1));
    EXPECT_TRUE(kept("G:\\Docs\\PLAN.TXT"));
    EXPECT_FALSE(kept("G:\\Docs\\gone.txt"));
}

TEST_F(Borders, KeepEverythingBesideACopyThatOnlyItsVolumeSpellsOtherwise) {
    disk().volume("G:\\").foldsCase = true;
    disk().file("C:\\Docs\\Երևան.txt", "x");
    disk().file("C:\\Docs\\Ծաղիկ\\a", "a");
    disk().file("G:\\Docs\\երևան.txt", "x");
    disk().file("G:\\Docs\\ծաղիկ\\a", "a");
    disk().file("G:\\Docs\\ծաղիկ\\b", "of another directory, perhaps");
    disk().file("G:\\Docs\\plain.txt", "gone, or listed under a name of its volume's own");
    disk().file("G:\\Docs\\Juin\\gone", "x");
    EXPECT_TRUE(run("C:\\Docs", "G:\\", 1));
    for (const char* name : {"երևան.txt", "ծաղիկ\\a", "ծաղիկ\\b", "plain.txt", "Juin\\gone"}) {
        EXPECT_TRUE(kept(std::string("G:\\Docs\\") + name)) << name;
    }
    EXPECT_THAT(
        window.journal,
        testing::Contains(testing::HasSubstr("ce volume y montre certains noms autrement")));
}

TEST_F(Borders, KeepWhatALinkOfTheSameNameInAnotherCaseStandsFor) {
    disk().volume("G:\\").foldsCase = true;
    disk().link("C:\\Docs\\Data", "C:\\Elsewhere");
    disk().file("G:\\Docs\\data\\f", "x");
    (void)run("C:\\Docs", "G:\\", 1);  // the link finds the directory in its way
    EXPECT_TRUE(kept("G:\\Docs\\data\\f"));
    EXPECT_THAT(window.journal, testing::Contains(testing::HasSubstr("Data est un lien.")));
}

TEST_F(Borders, MakeRoomForAFileOfTheSameNameInAnotherCase) {
    disk().volume("G:\\").foldsCase = true;
    disk().file("C:\\Docs\\Data", "a file");
    disk().file("G:\\Docs\\data\\f", "x");
    EXPECT_TRUE(run("C:\\Docs", "G:\\", 1));
    EXPECT_FALSE(disk().exists("G:\\Docs\\data\\f"));
    EXPECT_EQ(disk().content("G:\\Docs\\Data"), "a file");
}

TEST_F(Borders, DeleteAnotherSpellingWhereItIsAnotherFile) {
    disk().file("C:\\Docs\\Plan.txt", "plan");
    disk().file("F:\\Docs\\Plan.txt", "plan");
    disk().file("F:\\Docs\\PLAN.TXT", "another file");
    EXPECT_TRUE(backUp());
    EXPECT_FALSE(kept("F:\\Docs\\PLAN.TXT"));
    EXPECT_TRUE(kept("F:\\Docs\\Plan.txt"));
}

TEST_F(Borders, KeepTheFilesOfADirectoryThatItsVolumeSpellsOtherwise) {
    disk().volume("G:\\").foldsCase = true;
    disk().file("C:\\Docs\\MAI\\Sous\\a", "a");
    disk().file("G:\\Docs\\Mai\\SOUS\\a", "a");
    disk().file("G:\\Docs\\Mai\\SOUS\\gone", "x");
    disk().file("G:\\Docs\\Juin\\gone", "x");
    EXPECT_TRUE(run("C:\\Docs", "G:\\", 1));
    EXPECT_TRUE(kept("G:\\Docs\\Mai\\SOUS\\a"));
    EXPECT_FALSE(kept("G:\\Docs\\Mai\\SOUS\\gone"));
    EXPECT_FALSE(kept("G:\\Docs\\Juin\\gone"));
}

TEST_F(Borders, EmptyADirectoryOfAnotherSpellingWhereItIsAnotherOne) {
    disk().file("C:\\Docs\\MAI\\a", "a");
    disk().file("F:\\Docs\\MAI\\a", "a");
    disk().file("F:\\Docs\\Mai\\a", "a");
    EXPECT_TRUE(backUp());
    EXPECT_TRUE(kept("F:\\Docs\\MAI\\a"));
    EXPECT_FALSE(kept("F:\\Docs\\Mai\\a"));
}

TEST_F(Borders, KeepWhatIsInADirectoryThatIsTheCopyOfTwo) {
    disk().volume("G:\\").foldsCase = true;
    disk().file("C:\\Docs\\Mai\\a", "a");
    disk().file("C:\\Docs\\MAI\\Sous\\b", "b");
    disk().file("C:\\Docs\\Juin\\c", "c");
    disk().file("G:\\Docs\\Mai\\a", "a");
    disk().file("G:\\Docs\\Mai\\b", "b");
    disk().file("G:\\Docs\\Mai\\Sous\\b", "b");
    disk().file("G:\\Docs\\Juin\\gone", "x");
    EXPECT_FALSE(run("C:\\Docs", "G:\\", 1));
    EXPECT_TRUE(kept("G:\\Docs\\Mai\\b"));
    EXPECT_TRUE(kept("G:\\Docs\\Mai\\Sous\\b"));
    EXPECT_FALSE(kept("G:\\Docs\\Juin\\gone"));
    EXPECT_THAT(window.journal,
                testing::Contains(testing::HasSubstr("Fichiers excédentaires conservés dans "
                                                     "G:\\Docs\\Mai : deux répertoires de "
                                                     "C:\\Docs\\, dont les noms")));
}

TEST_F(Borders, KeepADirectoryBesideAFileOfItsNameInAnotherCase) {
    disk().volume("G:\\").foldsCase = true;
    disk().file("C:\\Docs\\mai", "a file");
    disk().file("C:\\Docs\\Mai\\a", "a");
    disk().file("G:\\Docs\\mai\\a", "a");
    (void)run("C:\\Docs", "G:\\", 1);
    EXPECT_TRUE(kept("G:\\Docs\\mai\\a"));
}

// ---- what is counted and named

TEST_F(Borders, CountApartWhatIsGoneAndWhatIsReplaced) {
    disk().file("F:\\Docs\\gone", "12");
    disk().file("C:\\Docs\\a", "newer", fileTimeAt(2024, 5, 1));
    EXPECT_TRUE(backUp());
    EXPECT_EQ(statistics.filesDeleted, 2);
    EXPECT_EQ(statistics.filesRemoved, 1);
    EXPECT_THAT(window.journal, ElementsAre("Effacé : F:\\Docs\\gone"));
    EXPECT_EQ(disk().content("F:\\Docs\\a"), "newer");
}

TEST_F(Borders, NameAFileThatCouldNotBeDeletedForWhatItIs) {
    disk().file("F:\\Docs\\gone", "x", MemoryDisk::defaultTime, attribute::readOnly);
    EXPECT_TRUE(backUp());
    EXPECT_EQ(statistics.filesDeleted, 1);
    EXPECT_EQ(statistics.filesRemoved, 0);
    EXPECT_THAT(window.journal, ElementsAre("Non effacé : F:\\Docs\\gone (erreur 5)."));
}

TEST_F(Borders, DeleteNothingMoreWhenTheCertificateCannotBeOpened) {
    disk().file("F:\\Docs\\gone1", "x");
    disk().file("F:\\Docs\\Sub\\gone2", "x");
    disk().find("F:\\Docs\\" + certificates("F:\\Docs").begin()->first)->writeError = 5;
    EXPECT_FALSE(backUp());
    EXPECT_TRUE(kept("F:\\Docs\\gone1"));
    EXPECT_TRUE(kept("F:\\Docs\\Sub\\gone2"));
    EXPECT_EQ(statistics.filesDeleted, 0);
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 5 - Fichier: C:\\Docs"));
}

TEST_F(Borders, KeepEverythingInATreeThatAnotherRunUses) {
    disk().file("F:\\Docs\\gone", "x");
    disk().setUsedByAnother("F:\\Docs", TreeUse::write);
    (void)clean(lineRoots("C:\\Docs", "F:\\", Layout::normal));
    EXPECT_TRUE(kept("F:\\Docs\\gone"));
    EXPECT_TRUE(told("Erreur: 33 - Fichier: C:\\Docs"));
}

TEST_F(Borders, AskForObjectionsAgainToTreesThatCameLater) {
    disk().file("F:\\Docs\\gone", "x");
    disk().volume("C:\\").identity = "another disk";
    disk().volume("F:\\").present = false;
    ExcessWalk excess(state, errors);
    LineTrees& line = trees(lineRoots("C:\\Docs", "F:\\", Layout::normal));
    ASSERT_TRUE(line.take());
    excess.prepare(line);
    disk().volume("F:\\").present = true;
    EXPECT_FALSE(excess.cleanLine(line, {}));
    EXPECT_TRUE(kept("F:\\Docs\\gone"));
    EXPECT_TRUE(told("n'est pas sur le même volume"));
}

}  // namespace
}  // namespace coffrelune
