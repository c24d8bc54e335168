// What becomes of each file: classification, comparison lines, questions.
#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::uint64_t old = fileTimeAt(2024, 7, 10, 12, 30, 15);

/// One file on each side for each way that they may differ.
class Scan : public Engine {
  protected:
    Scan() {
        disk().file("C:\\Docs\\absent", "1", old);
        both("egal", old, old);
        both("ancien", old + 1, old);
        both("recent", old, old + 1);
        both("taille", old, old);
        disk().file("F:\\Docs\\taille", "longer", old);
        both("ete", old + oneHour, old);
    }

    void both(const std::string& name, std::uint64_t source, std::uint64_t copy) {
        disk().file("C:\\Docs\\" + name, "new", source);
        disk().file("F:\\Docs\\" + name, "old", copy);
    }

    std::vector<std::string> compare() {
        system.operationKind = OperationKind::comparison;
        analyse("C:\\Docs", "F:\\");
        return window.comparison;
    }

    /// Names of the files that a copy pass copies.
    std::vector<std::string> copied() {
        act("C:\\Docs", "F:\\");
        std::vector<std::string> names;
        for (const std::string& call : memory.files().calls("copyFile")) {
            names.push_back(call.substr(call.rfind('\\') + 1));
        }
        return names;
    }
};

// ---- comparison
// ----------------------------------------------------------------------------------

TEST_F(Scan, ListsWhatWouldBeCopiedAndWhy) {
    EXPECT_THAT(compare(),
                ElementsAre("F:\\Docs\\absent n'existe pas", "F:\\Docs\\ancien est plus ancien",
                            "F:\\Docs\\recent est plus récent", "F:\\Docs\\ete est plus ancien"));
    EXPECT_EQ(window.journal, window.comparison);
    EXPECT_EQ(statistics.filesToCopy, 4);
    EXPECT_EQ(window.counts.front(), "1 fichier(s) à copier ");
    EXPECT_EQ(window.counts.back(), "4 fichier(s) à copier ");
    EXPECT_EQ(statistics.totalBytes, 10);
}

TEST_F(Scan, ComparesEvenWhenACopyWouldNot) {
    system.Modifie = 0;
    EXPECT_EQ(compare().size(), 4U);
}

TEST_F(Scan, ForgivesTheHourAndKeepsNewerCopiesWithTheOption) {
    system.options.RecentSeul = -1;
    EXPECT_THAT(compare(),
                ElementsAre("F:\\Docs\\absent n'existe pas", "F:\\Docs\\ancien est plus ancien"));
}

TEST_F(Scan, CountsTheHourWhenItsCorrectionIsOff) {
    system.options.RecentSeul = -1;
    system.options.CorrectEteOff = -1;
    EXPECT_EQ(compare().back(), "F:\\Docs\\ete est plus ancien");
}

TEST_F(Scan, ListsEverythingBelowAMissingCopy) {
    disk().file("C:\\Docs\\Sub\\b", "22");
    EXPECT_EQ(compare().back(), "F:\\Docs\\Sub\\b n'existe pas");
}

TEST_F(Scan, KeepsTheListWhateverBecomesOfExistingFiles) {
    switches.keepExisting = true;
    EXPECT_EQ(compare().size(), 4U);
}

TEST_F(Engine, ListsTheFullPathOfTheCopy) {
    disk().file("C:\\Data\\Docs\\a.txt", "1");
    disk().directory("F:\\Save");
    system.operationKind = OperationKind::comparison;
    analyse("C:\\Data\\Docs", "F:\\Save");
    EXPECT_THAT(window.comparison, ElementsAre("F:\\Save\\Docs\\a.txt n'existe pas"));
    EXPECT_THAT(window.counts, ElementsAre("1 fichier(s) à copier "));
}

// ---- copy
// ----------------------------------------------------------------------------------------

TEST_F(Scan, CopiesWhatDiffersInTime) {
    EXPECT_THAT(copied(), ElementsAre("absent", "ancien", "recent", "ete"));
    EXPECT_EQ(disk().content("F:\\Docs\\taille"), "longer");
    EXPECT_EQ(statistics.tallies[0].files, 4U);
    EXPECT_EQ(statistics.tallies[0].bytes, 10U);
    EXPECT_EQ(statistics.bytesDone, 10);
}

TEST_F(Scan, CopiesEverythingWithoutTheOptionToCompare) {
    system.Modifie = 0;
    EXPECT_EQ(copied().size(), 6U);
}

TEST_F(Scan, KeepsANewerCopyWithTheOption) {
    system.options.RecentSeul = -1;
    EXPECT_THAT(copied(), ElementsAre("absent", "ancien"));
    EXPECT_EQ(disk().content("F:\\Docs\\recent"), "old");
}

TEST_F(Scan, CountsTheSameInTheAnalysis) {
    analyse("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.totalBytes, 10);
    EXPECT_THAT(window.journal, IsEmpty());
    EXPECT_THAT(window.counts, IsEmpty());
    EXPECT_EQ(statistics.filesToCopy, 0);
}

// A directory in the way is no copy: whatever its time says, the file must not pass for saved.
TEST_F(Scan, CountsAFileWhoseNameADirectoryBearsOnTheDestination) {
    system.options.ContinueOnError = -1;
    for (const bool newerOnly : {false, true}) {
        system.options.RecentSeul = newerOnly ? -1 : 0;
        for (const bool keepExisting : {false, true}) {
            EngineBench bench;
            bench.system.options = system.options;
            bench.switches.keepExisting = keepExisting;
            bench.disk().file("C:\\Docs\\a", "new", old);
            bench.disk().directory("F:\\Docs\\a", old);
            bench.run("C:\\Docs", "F:\\");
            EXPECT_EQ(bench.statistics.errorCount, 1);
            EXPECT_THAT(
                bench.window.journal,
                ElementsAre(
                    "F:\\Docs\\a est un répertoire : le fichier de ce nom ne peut pas être copié.",
                    "Erreur: 5 - Fichier: C:\\Docs\\a"));
            EXPECT_GT(bench.statistics.tallies[0].filesToCopy, 0);
            EXPECT_TRUE(bench.disk().find("F:\\Docs\\a")->isDirectory());
        }
    }
}

TEST_F(Scan, ListsAFileWhoseNameADirectoryBearsOnTheDestination) {
    disk().file("C:\\Docs\\plus", "new", old);
    disk().directory("F:\\Docs\\plus", old);
    EXPECT_EQ(compare().back(), "F:\\Docs\\plus n'existe pas");
}

// Entries of some volumes have no date, and some systems then say 0.
TEST_F(Engine, CopiesAFileWithoutADate) {
    disk().file("C:\\Docs\\a", "x", 0).id = {};
    run("C:\\Docs", "F:\\");
    EXPECT_EQ(disk().content("F:\\Docs\\a"), "x");
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(Engine, NamesOnceAFileThatTheListingCouldNotLookAt) {
    disk().file("C:\\Docs\\a", "new", old + 1).nameAlone = true;
    disk().file("C:\\Docs\\b", "x");
    disk().file("F:\\Docs\\a", "old", old);
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 5 - Fichier: C:\\Docs\\a"));
    EXPECT_EQ(disk().content("F:\\Docs\\a"), "old");
    EXPECT_EQ(disk().content("F:\\Docs\\b"), "x");
}

TEST_F(Engine, TellsWhyTheListingCouldNotLookAtAFile) {
    MemoryNode& file = disk().file("C:\\Docs\\a", "new");
    file.nameAlone = true;
    file.readError = error_number::deviceDoesNotExist;
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 55 - Fichier: C:\\Docs\\a"));
}

// A copy that a look-up did not find for a fault of the volume's is no missing one.
class DoubtfulLookUp : public Engine {
  protected:
    DoubtfulLookUp() {
        disk().file("C:\\Docs\\a", "new", old + 1);
        disk().file("F:\\Docs\\a", "old", old);
        disk().file("C:\\Docs\\b", "b", old);
        system.options.ContinueOnError = -1;
        faulty.fail("find", "F:\\Docs\\a", error_number::networkNameDeleted);
    }
    void failAgain() { faulty.fail("lookUp", "F:\\Docs\\a", error_number::ioDevice); }
};

TEST_F(DoubtfulLookUp, IsToldAsWhatItIsAndTheCopyStays) {
    failAgain();
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 1117 - Fichier: C:\\Docs\\a"));
    EXPECT_EQ(disk().content("F:\\Docs\\a"), "old");
    EXPECT_EQ(disk().content("F:\\Docs\\b"), "b") << "whose absence is certain";
}

TEST_F(DoubtfulLookUp, IsNoErrorWhenTheNextOneFinds) {
    run("C:\\Docs", "F:\\");
    EXPECT_EQ(disk().content("F:\\Docs\\a"), "new");
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(DoubtfulLookUp, SaysInAComparisonNotThatNothingIsThere) {
    failAgain();
    system.operationKind = OperationKind::comparison;
    analyse("C:\\Docs", "F:\\");
    EXPECT_THAT(window.comparison, ElementsAre("F:\\Docs\\b n'existe pas"));
    EXPECT_EQ(window.journal.front(), "Erreur: 1117 - Fichier: C:\\Docs\\a");
}

TEST_F(Scan, HasNothingLeftAfterARun) {
    run("C:\\Docs", "F:\\");
    statistics.totalBytes = 0;
    analyse("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.totalBytes, 0);
}

TEST_F(Engine, ShowsWhereTheCopyStandsRoundEachFile) {
    disk().file("C:\\Docs\\a", "12345");
    disk().file("C:\\Docs\\b", "12345");
    system.options.AltCopie = -1;
    run("C:\\Docs", "F:\\");
    std::vector<int> percents;
    for (const auto& shown : window.percentages) percents.push_back(shown.first);
    EXPECT_THAT(percents, ElementsAre(0, 50, 50, 100));
    EXPECT_THAT(window.sources, testing::Each("C:\\Docs\\"));
    EXPECT_THAT(window.destinations, testing::Each("F:\\Docs\\"));
    EXPECT_EQ(window.percentages.back().second, "100% copiés (10 octets de 10 octets)");
}

TEST_F(Engine, ShowsTheRemainingTimeOfASlowCopy) {
    for (const char* name : {"a", "b", "c", "d"}) {
        disk().file(std::string("C:\\Docs\\") + name, "1234567890");
    }
    statistics.baselineTime = 10 * 3600;  // where the clock stands
    memory.files().setCopyCost(12'000, 0);
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(window.remainingTimes,
                ElementsAre("Temps restant: 35 secondes", "Temps restant: 20 secondes",
                            "Temps restant: 10 secondes", "Temps restant: "));
}

TEST_F(Engine, NeverListsOrCopiesTheFilesOfTheSystem) {
    for (const char* name : {"pagefile.sys", "Thumbs.db", "NTUSER.DAT", "a"}) {
        disk().file(std::string("C:\\Docs\\") + name, "x");
    }
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(list("F:\\"), ElementsAre("F:\\Docs", "F:\\Docs\\a"));
    EXPECT_EQ(statistics.bytesDone, 1);
    system.operationKind = OperationKind::comparison;
    disk().remove("F:\\Docs\\a");
    analyse("C:\\Docs", "F:\\");
    EXPECT_THAT(window.comparison, ElementsAre("F:\\Docs\\a n'existe pas"));
}

// ---- following the analysis
// ----------------------------------------------------------------------

TEST_F(Scan, ShowsTheFilesFoundOnBothSidesWhileTheUserFollows) {
    system.SuiviAnalyse = -1;
    analyse("C:\\Docs", "F:\\");
    EXPECT_THAT(window.files, ElementsAre("C:\\Docs\\egal", "C:\\Docs\\ancien", "C:\\Docs\\recent",
                                          "C:\\Docs\\taille", "C:\\Docs\\ete"));
}

TEST_F(Scan, ShowsNoOtherFileThanThoseItCopies) {
    analyse("C:\\Docs", "F:\\");
    EXPECT_THAT(window.files, IsEmpty()) << "not asked for";
    system.SuiviAnalyse = -1;
    makeTree("C:\\Docs", "F:\\");
    EXPECT_THAT(window.files, IsEmpty()) << "tree pass";
    compare();
    EXPECT_THAT(window.files, IsEmpty()) << "comparison";
    system.operationKind = OperationKind::backup;
    system.Modifie = 0;
    analyse("C:\\Docs", "F:\\");
    EXPECT_THAT(window.files, IsEmpty()) << "nothing is compared";
    system.Modifie = 1;
    act("C:\\Docs", "F:\\");
    EXPECT_THAT(window.files, ElementsAre("Fichier: absent", "Fichier: ancien", "Fichier: recent",
                                          "Fichier: ete"))
        << "copy pass";
}

}  // namespace
}  // namespace coffrelune
