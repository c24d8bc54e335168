// Places that are missing, cannot be read or cannot be made.
#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// ---- a source that is missing
// --------------------------------------------------------------------

TEST_F(Engine, SaysThatASourceIsMissing) {
    act("C:\\Docs", "F:\\");
    EXPECT_THAT(window.criticals, ElementsAre("Répertoire source 'C:\\Docs\\' non trouvé."));
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_TRUE(statistics.tallies[0].sourceMissing);
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(Engine, CreatesTheTargetOfAMissingSourceWhenItActs) {
    disk().directory("F:\\Save");
    act("C:\\Docs", "F:\\Save");
    EXPECT_TRUE(disk().exists("F:\\Save\\Docs"));
    EXPECT_EQ(statistics.directoriesCreated, 1);
    EXPECT_EQ(statistics.directoriesRead, 0);
    act("C:\\Docs", "F:\\Save");
    EXPECT_EQ(statistics.directoriesCreated, 1) << "only what was really created counts";
}

TEST_F(Engine, CreatesTheTargetOfAMissingDriveUnderItsLetter) {
    act("E:\\", "F:\\");
    EXPECT_TRUE(disk().exists("F:\\E"));
    EXPECT_EQ(statistics.directoriesCreated, 1);
    EXPECT_THAT(window.criticals, ElementsAre("Répertoire source 'E:\\' non trouvé."));
}

TEST_F(Engine, IsSilentAboutAMissingSourceInTheAnalysis) {
    analyse("C:\\Docs", "F:\\");
    EXPECT_THAT(window.criticals, IsEmpty());
    EXPECT_FALSE(control.interruptionRequested);
    EXPECT_FALSE(disk().exists("F:\\Docs"));
    EXPECT_TRUE(statistics.tallies[0].sourceMissing);
}

TEST_F(Engine, CreatesTheTargetOfAMissingSourceInTheTreePass) {
    makeTree("C:\\Docs", "F:\\");
    EXPECT_TRUE(disk().exists("F:\\Docs"));
    EXPECT_EQ(statistics.directoriesCreated, 1);
    EXPECT_THAT(window.criticals, IsEmpty());
}

TEST_F(Engine, IsSilentAboutAMissingSpecialFolder) {
    for (const char* name : {"Ma musique", "Mes images", "Mes vidéos"}) {
        act(std::string("C:\\") + name, "F:\\");
        EXPECT_TRUE(statistics.tallies[0].sourceMissing) << "who reads the result learns it";
    }
    EXPECT_THAT(window.criticals, IsEmpty());
    EXPECT_FALSE(control.interruptionRequested);
}

TEST_F(Engine, TakesASourceThatCannotBeLookedUpForNoDirectory) {
    disk().file("C:\\a.txt", "x");
    faulty.fail("lookUp", "C:\\a.txt", error_number::ioDevice);
    makeTree("C:\\a.txt", "F:\\");
    EXPECT_FALSE(disk().exists("F:\\a.txt"));
    EXPECT_EQ(statistics.errorCount, 1);
}

// ---- a directory that cannot be read
// -------------------------------------------------------------

class UnreadableDirectory : public Engine {
  protected:
    UnreadableDirectory() {
        disk().file("C:\\Docs\\Secret\\s", "x");
        disk().file("C:\\Docs\\Voisin\\v", "x");
        disk().setUnreadable("C:\\Docs\\Secret");
    }
};

TEST_F(UnreadableDirectory, IsCountedOnceOverAllPasses) {
    system.options.ContinueOnError = -1;
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 5 - Fichier: C:\\Docs\\Secret"));
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_FALSE(control.interruptionRequested);
    EXPECT_EQ(disk().content("F:\\Docs\\Voisin\\v"), "x");
    EXPECT_THAT(window.criticals, IsEmpty());
}

TEST(UnreadableDirectoryAlone, IsCountedThoughNothingElseIsToBeCopied) {
    for (const int goOn : {0, -1}) {
        EngineBench bench;
        bench.disk().directory("C:\\Docs\\Secret");
        bench.disk().setUnreadable("C:\\Docs\\Secret");
        bench.system.options.ContinueOnError = goOn;
        bench.run("C:\\Docs", "F:\\");
        EXPECT_THAT(bench.window.journal, ElementsAre("Erreur: 5 - Fichier: C:\\Docs\\Secret"));
        EXPECT_FALSE(bench.control.interruptionRequested);
    }
}

TEST_F(UnreadableDirectory, StopsTheCopyWithAMessage) {
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 5 - Fichier: C:\\Docs\\Secret"));
    EXPECT_THAT(window.criticals,
                ElementsAre("Répertoire source 'C:\\Docs\\Secret\\' non trouvé."));
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_FALSE(disk().exists("F:\\Docs\\Voisin\\v"));
}

TEST(UnreadableDirectoryAlone, IsCountedForEachReason) {
    for (const auto number : {error_number::notReady, error_number::deviceDoesNotExist,
                              error_number::ioDevice, error_number::notADirectory}) {
        EngineBench bench;
        bench.disk().directory("C:\\Docs\\Secret");
        bench.faulty.fail("openDirectory", "C:\\Docs\\Secret\\", number);
        bench.analyse("C:\\Docs", "F:\\");
        EXPECT_EQ(bench.statistics.errorCount, 1) << number;
    }
}

TEST_F(UnreadableDirectory, IsNamedWhenItIsTheSourceItself) {
    disk().setUnreadable("C:\\Docs");
    system.options.ContinueOnError = -1;
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 5 - Fichier: C:\\Docs"));
    EXPECT_FALSE(statistics.tallies[0].sourceMissing);
    act("C:\\Docs", "F:\\");
    EXPECT_EQ(window.criticals.size(), 1U);
    EXPECT_EQ(statistics.errorCount, 1);
}

TEST_F(UnreadableDirectory, IsCopiedWhenItCanBeReadAgain) {
    system.options.ContinueOnError = -1;
    makeTree("C:\\Docs", "F:\\");
    disk().setUnreadable("C:\\Docs\\Secret", false);
    act("C:\\Docs", "F:\\");
    EXPECT_EQ(disk().content("F:\\Docs\\Secret\\s"), "x");
}

TEST_F(Engine, CountsADirectoryThatVanishedBeforeItsFilesWereCopied) {
    disk().file("C:\\Docs\\A\\a", "x");
    disk().file("C:\\Docs\\B\\b", "x");
    window.onEvents = [this] {
        if (passing == Pass::copy) disk().remove("C:\\Docs\\B");
    };
    system.options.ContinueOnError = -1;
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 3 - Fichier: C:\\Docs\\B"));
    EXPECT_FALSE(control.interruptionRequested);
}

TEST_F(Engine, StopsAtADirectoryThatVanished) {
    disk().file("C:\\Docs\\A\\a", "x");
    disk().file("C:\\Docs\\B\\b", "x");
    window.onEvents = [this] {
        if (passing == Pass::copy) disk().remove("C:\\Docs\\B");
    };
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(window.criticals, ElementsAre("Répertoire source 'C:\\Docs\\B\\' non trouvé."));
    EXPECT_TRUE(control.interruptionRequested);
}

TEST_F(Engine, CountsASourceThatIsUnpluggedDuringTheAnalysis) {
    disk().file("E:\\Docs\\A\\a", "x");
    disk().file("E:\\Docs\\B\\b", "x");
    run("E:\\Docs", "F:\\");
    statistics.directoriesRead = 0;
    window.onEvents = [this] {
        if (statistics.directoriesRead == 2) disk().volume("E:\\").present = false;
    };
    run("E:\\Docs", "F:\\");
    EXPECT_GT(statistics.errorCount, 0) << "nothing to copy, but B was not looked at";
}

TEST_F(Engine, TakesADirectoryDeletedDuringTheAnalysisForNoError) {
    disk().file("C:\\Docs\\A\\a", "x");
    disk().directory("C:\\Docs\\B");
    window.onEvents = [this] { disk().remove("C:\\Docs\\B"); };
    analyse("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(Engine, CountsAListingThatBreaksOff) {
    disk().file("C:\\Docs\\a", "x");
    disk().file("C:\\Docs\\Sub\\b", "x");
    system.options.ContinueOnError = -1;
    faulty.fail("next", "C:\\Docs\\Sub\\", error_number::ioDevice);
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 1117 - Fichier: C:\\Docs\\Sub"));
    EXPECT_EQ(disk().content("F:\\Docs\\a"), "x");
}

// ---- a directory that cannot be made
// -------------------------------------------------------------

TEST_F(Engine, CountsAWriteProtectedDestinationOnce) {
    disk().file("C:\\Docs\\Sub\\a", "x");
    disk().volume("F:\\").writeProtected = true;
    system.options.ContinueOnError = -1;
    run("C:\\Docs", "F:\\");
    act("C:\\Docs", "F:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 19 - Fichier: C:\\Docs"));
    EXPECT_THAT(memory.files().calls("copyFile"), IsEmpty());
    EXPECT_EQ(statistics.directoriesCreated, 0);
}

TEST_F(Engine, CountsAWriteProtectedDestinationOfADriveOnce) {
    disk().file("E:\\Sub\\a", "x");
    disk().volume("F:\\").writeProtected = true;
    system.options.ContinueOnError = -1;
    run("E:\\", "F:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 19 - Fichier: E:\\"));
}

TEST_F(Engine, StopsAtADirectoryThatCannotBeMade) {
    disk().file("C:\\Docs\\a", "x");
    disk().volume("F:\\").writeProtected = true;
    run("C:\\Docs", "F:\\");
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_EQ(control.lastErrorNumber, error_number::writeProtect);
}

TEST_F(Engine, TriesNothingBelowADirectoryWhoseNameAFileBears) {
    disk().file("C:\\Docs\\Sub\\Deep\\a", "x");
    disk().file("C:\\Docs\\Autre\\b", "x");
    disk().file("F:\\Docs\\Sub", "a file of the user");
    system.options.ContinueOnError = -1;
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(
        window.journal,
        ElementsAre("F:\\Docs\\Sub est un fichier : le répertoire de ce nom ne peut pas être créé.",
                    "Erreur: 267 - Fichier: C:\\Docs\\Sub"));
    EXPECT_EQ(disk().content("F:\\Docs\\Sub"), "a file of the user");
    EXPECT_EQ(disk().content("F:\\Docs\\Autre\\b"), "x");
    for (const std::string& call : memory.files().calls("openDirectory")) {
        EXPECT_THAT(call, testing::Not(testing::HasSubstr("Deep")));
    }
}

TEST_F(Engine, DoesNotFollowALinkWhereADirectoryIsNeeded) {
    disk().file("C:\\Docs\\Sub\\a", "new");
    disk().file("F:\\Ailleurs\\a", "of somebody else");
    disk().directory("F:\\Docs");
    disk().link("F:\\Docs\\Sub", "F:\\Ailleurs");
    system.options.ContinueOnError = -1;
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(
        window.journal,
        ElementsAre("F:\\Docs\\Sub est un lien : le répertoire de ce nom ne peut pas être créé.",
                    "Erreur: 267 - Fichier: C:\\Docs\\Sub"));
    EXPECT_EQ(disk().content("F:\\Ailleurs\\a"), "of somebody else");
    EXPECT_TRUE(disk().find("F:\\Docs\\Sub")->isLink());
}

TEST_F(Engine, CopiesTheSameSourceToABetterPlaceInAnotherLine) {
    disk().file("C:\\Docs\\a", "x");
    disk().volume("F:\\").writeProtected = true;
    disk().volume("G:\\");
    system.options.ContinueOnError = -1;
    run("C:\\Docs", "F:\\", 0);
    run("C:\\Docs", "G:\\", 1);
    EXPECT_EQ(disk().content("G:\\Docs\\a"), "x");
    EXPECT_EQ(statistics.errorCount, 1);
    run("C:\\Docs", "F:\\", 2);
    EXPECT_EQ(statistics.errorCount, 2) << "each line tells what it could not do";
}

}  // namespace
}  // namespace coffrelune
