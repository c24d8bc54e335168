#include "engine/excess_walk.h"

#include <algorithm>

#include "engine/excess_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

TEST_F(ExcessFiles, SwappedRootsNameTheCopyItsReferenceAndTheParent) {
    const LineRoots swapped =
        CheminsExcedents(lineRoots("C:\\Data\\Docs", "E:\\Backup", Layout::normal));
    EXPECT_EQ(swapped.source, "E:\\Backup\\Docs");
    EXPECT_EQ(swapped.destination, "C:\\Data\\");
    EXPECT_EQ(swapped.target, "C:\\Data\\Docs");
}

TEST_F(ExcessFiles, ADriveOrShareRootIsItsOwnReference) {
    EXPECT_EQ(CheminsExcedents(lineRoots("E:\\", "F:\\Save", Layout::normal)).destination, "E:\\");
    EXPECT_EQ(CheminsExcedents(lineRoots("E:\\", "F:\\Save", Layout::normal)).source,
              "F:\\Save\\E");
    const LineRoots share =
        CheminsExcedents(lineRoots("\\\\nas\\photos", "F:\\Save", Layout::normal));
    EXPECT_EQ(share.source, "F:\\Save\\photos");
    EXPECT_EQ(share.destination, "\\\\nas\\photos");
    EXPECT_EQ(share.target, "\\\\nas\\photos");
}

TEST_F(ExcessFiles, AFileThatOnlyTheCopyHasIsDeletedAndCountedOnce) {
    pair("a.txt");
    disk().file("F:\\Save\\Docs\\old.txt", "old");
    clean();
    EXPECT_FALSE(kept("F:\\Save\\Docs\\old.txt"));
    EXPECT_TRUE(kept("F:\\Save\\Docs\\a.txt"));
    EXPECT_EQ(statistics.filesDeleted, 1);
    EXPECT_THAT(window.counts, ElementsAre("1 fichier(s) effacé(s) sur la destination "));
    EXPECT_THAT(window.files, ElementsAre("F:\\Save\\Docs\\old.txt"));
    EXPECT_FLOAT_EQ(statistics.totalBytes, 3);
}

TEST_F(ExcessFiles, SystemFilesAreNeverDeleted) {
    pair("a.txt");
    disk().file("F:\\Save\\Docs\\Thumbs.DB", "x");
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\Thumbs.DB"));
    EXPECT_EQ(statistics.filesDeleted, 0);
}

TEST_F(ExcessFiles, ADirectoryThatOnlyTheCopyHasLosesItsFilesButStays) {
    pair("a.txt");
    disk().file("F:\\Save\\Docs\\Gone\\Deep\\b.txt", "b");
    clean();
    EXPECT_FALSE(kept("F:\\Save\\Docs\\Gone\\Deep\\b.txt"));
    EXPECT_TRUE(kept("F:\\Save\\Docs\\Gone\\Deep"));
    EXPECT_FALSE(kept("C:\\Docs\\Gone"));
}

TEST_F(ExcessFiles, AFileThatDiffersIsCountedAndLeftToTheCopy) {
    disk().file("C:\\Docs\\a.txt", "new", fileTimeAt(2024, 5, 1));
    disk().file("F:\\Save\\Docs\\a.txt", "old", fileTimeAt(2024, 4, 1));
    disk().file("C:\\Docs\\b.txt", "old", fileTimeAt(2024, 4, 1));
    disk().file("F:\\Save\\Docs\\b.txt", "new", fileTimeAt(2024, 5, 1));
    clean();
    EXPECT_EQ(statistics.filesDeleted, 2);
    EXPECT_EQ(statistics.filesRemoved, 0);
    EXPECT_EQ(disk().content("F:\\Save\\Docs\\a.txt"), "old");
    EXPECT_EQ(disk().content("F:\\Save\\Docs\\b.txt"), "new");
    EXPECT_THAT(window.journal, testing::IsEmpty());
}

TEST_F(ExcessFiles, EqualTimesKeepAFileOfAnotherSize) {
    disk().file("C:\\Docs\\a.txt", "one");
    disk().file("F:\\Save\\Docs\\a.txt", "another");
    clean();
    EXPECT_EQ(statistics.filesDeleted, 0);
}

TEST_F(ExcessFiles, WithoutComparisonEveryFileOfTheCopyCountsAndStays) {
    system.Modifie = 0;
    pair("a.txt");
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\a.txt"));
    EXPECT_EQ(statistics.filesDeleted, 1);
    EXPECT_EQ(statistics.filesRemoved, 0);
}

TEST_F(ExcessFiles, ANewerFileIsKeptWhenOnlyNewerOnesAreCopied) {
    system.options.RecentSeul = -1;
    disk().file("C:\\Docs\\a.txt", "old", fileTimeAt(2024, 4, 1));
    disk().file("F:\\Save\\Docs\\a.txt", "newer on the copy", fileTimeAt(2024, 5, 1));
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\a.txt"));
    EXPECT_EQ(statistics.filesDeleted, 0);
}

TEST_F(ExcessFiles, AnUnpluggedSourceDeletesNothing) {
    disk().file("E:\\Photos\\a.txt", "a");
    disk().file("F:\\Save\\Photos\\a.txt", "a");
    disk().volume("E:\\").present = false;
    clean("E:\\Photos", "F:\\Save");
    EXPECT_TRUE(kept("F:\\Save\\Photos\\a.txt"));
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_THAT(window.journal, ElementsAre(testing::HasSubstr("Fichier: E:\\Photos")));
}

TEST_F(ExcessFiles, ASourceThatIsUnpluggedDuringTheWalkDeletesNothingMore) {
    disk().directory("E:\\Photos\\Sub");
    disk().file("E:\\Photos\\a.txt", "a");
    disk().file("F:\\Save\\Photos\\a.txt", "a");
    disk().file("F:\\Save\\Photos\\Sub\\b.txt", "b");
    window.onEvents = [&] { disk().volume("E:\\").present = false; };
    clean("E:\\Photos", "F:\\Save");
    EXPECT_TRUE(kept("F:\\Save\\Photos\\Sub\\b.txt"));
    EXPECT_EQ(statistics.filesDeleted, 0);
    EXPECT_GE(statistics.errorCount, 1);
}

TEST_F(ExcessFiles, ARestoreOfWhatWasNeverBackedUpDoesNotEmptyTheLiveSource) {
    disk().file("C:\\Docs\\only.txt", "the only copy");
    disk().directory("F:\\Save");
    (void)clean(lineRoots("C:\\Docs", "F:\\Save", Layout::reversed));
    EXPECT_TRUE(kept("C:\\Docs\\only.txt"));
    EXPECT_EQ(statistics.errorCount, 1);
}

TEST_F(ExcessFiles, ADirectoryThatCannotBeReadOnTheReferenceKeepsItsCopies) {
    pair("a.txt");
    disk().file("C:\\Docs\\Secret\\s.txt", "s");
    disk().file("F:\\Save\\Docs\\Secret\\s.txt", "s");
    disk().file("F:\\Save\\Docs\\Secret\\Deep\\d.txt", "d");
    disk().setUnreadable("C:\\Docs\\Secret");
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\Secret\\s.txt"));
    EXPECT_TRUE(kept("F:\\Save\\Docs\\Secret\\Deep\\d.txt"));
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 5 - Fichier: C:\\Docs\\Secret"));
}

TEST_F(ExcessFiles, ALookUpThatFailsIsNoProofOfAbsence) {
    pair("a.txt");
    faulty.fail("find", "C:\\Docs\\a.txt", error_number::ioDevice);
    faulty.fail("lookUp", "C:\\Docs\\a.txt", error_number::ioDevice);
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\a.txt"));
    EXPECT_EQ(statistics.errorCount, 1);
}

TEST_F(ExcessFiles, ADriveRootIsComparedWithItsOwnCopyAlone) {
    disk().file("E:\\a.txt", "a");
    disk().file("F:\\Save\\E\\a.txt", "a");
    disk().file("F:\\Save\\E\\gone.txt", "x");
    disk().file("F:\\Save\\Other\\keep.txt", "x");
    disk().file("F:\\Save\\keep.txt", "x");
    clean("E:\\", "F:\\Save");
    EXPECT_FALSE(kept("F:\\Save\\E\\gone.txt"));
    EXPECT_TRUE(kept("F:\\Save\\E\\a.txt"));
    EXPECT_TRUE(kept("F:\\Save\\Other\\keep.txt"));
    EXPECT_TRUE(kept("F:\\Save\\keep.txt"));
}

TEST_F(ExcessFiles, AShareRootIsComparedWithTheShare) {
    disk().file("\\\\nas\\photos\\a.txt", "a");
    disk().file("F:\\Save\\photos\\a.txt", "a");
    disk().file("F:\\Save\\photos\\gone.txt", "x");
    clean("\\\\nas\\photos", "F:\\Save");
    EXPECT_TRUE(kept("F:\\Save\\photos\\a.txt"));
    EXPECT_FALSE(kept("F:\\Save\\photos\\gone.txt"));
}

TEST_F(ExcessFiles, WhatTheLineItselfLeavesOutIsNotEntered) {
    disk().file("C:\\Docs\\a.txt", "a");
    disk().file("C:\\Docs\\Tmp\\precious.txt", "never backed up");
    disk().file("F:\\Save\\Docs\\a.txt", "a");
    exclusions = {ExclusionMode::listed, {"\\Tmp"}};
    cleanBack("C:\\Docs", "F:\\Save");
    EXPECT_TRUE(kept("C:\\Docs\\Tmp\\precious.txt"));
    exclusions = {ExclusionMode::all, {}};
    disk().file("C:\\Docs\\Sub\\precious.txt", "never backed up");
    cleanBack("C:\\Docs", "F:\\Save");
    EXPECT_TRUE(kept("C:\\Docs\\Sub\\precious.txt"));
}

// The copy may have been made when the directory was spelled otherwise, or by another system.
TEST_F(ExcessFiles, WhatTheLineLeavesOutIsNotEnteredInAnotherCaseEither) {
    pair("a.txt");
    disk().file("F:\\Save\\Docs\\TMP\\precious.txt", "no longer backed up");
    disk().file("F:\\Save\\Docs\\été\\precious.txt", "no longer backed up");
    disk().file("F:\\Save\\Docs\\Sub\\gone.txt", "x");
    exclusions = {ExclusionMode::listed, {"\\Tmp"}};
    loadedLast = {ExclusionMode::listed, {"\\Été"}};
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\TMP\\precious.txt"));
    EXPECT_TRUE(kept("F:\\Save\\Docs\\été\\precious.txt"));
    EXPECT_FALSE(kept("F:\\Save\\Docs\\Sub\\gone.txt"));
}

TEST_F(ExcessFiles, TheSystemsDirectoryIsNotEnteredHoweverItIsSpelled) {
    memory.drives().setWindowsDirectory("C:\\WINDOWS");
    disk().file("C:\\Windows\\system.dll", "live");
    disk().file("C:\\a.txt", "a");
    disk().file("F:\\Save\\C\\a.txt", "a");
    cleanBack("C:\\", "F:\\Save");
    EXPECT_TRUE(kept("C:\\Windows\\system.dll"));
}

TEST_F(ExcessFiles, AFileOfUnknownAgeStaysWhereItHasACounterpart) {
    pair("same.txt");
    pair("a.txt");
    disk().find("F:\\Save\\Docs\\a.txt")->nameAlone = true;
    disk().file("F:\\Save\\Docs\\gone.txt", "x");
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\a.txt"));
    EXPECT_FALSE(kept("F:\\Save\\Docs\\gone.txt"));
}

TEST_F(ExcessFiles, TheListLeftOverFromTheLastLineHoldsToo) {
    pair("a.txt");
    disk().file("F:\\Save\\Docs\\Old\\x.txt", "x");
    loadedLast = {ExclusionMode::listed, {"\\Old"}};
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\Old\\x.txt"));
}

TEST_F(ExcessFiles, TheCopyOfAnotherLineIsNotEntered) {
    pair("a.txt");
    disk().file("C:\\B\\Sub\\b.txt", "b");
    disk().file("F:\\Save\\Docs\\Sub\\b.txt", "b");
    clean("C:\\Docs", "F:\\Save", {lineRoots("C:\\B\\Sub", "F:\\Save\\Docs", Layout::normal)});
    EXPECT_TRUE(kept("F:\\Save\\Docs\\Sub\\b.txt"));
}

TEST_F(ExcessFiles, TheSingleFileOfAnotherLineIsKept) {
    pair("a.txt");
    disk().file("C:\\single.txt", "s");
    disk().file("F:\\Save\\Docs\\single.txt", "s");
    clean("C:\\Docs", "F:\\Save", {lineRoots("C:\\single.txt", "F:\\Save\\Docs", Layout::normal)});
    EXPECT_TRUE(kept("F:\\Save\\Docs\\single.txt"));
}

TEST_F(ExcessFiles, ACopyThatTwoLinesShareIsNotCleanedAtAll) {
    pair("a.txt");
    disk().file("D:\\Docs\\d.txt", "d");
    disk().file("F:\\Save\\Docs\\d.txt", "d");
    disk().file("F:\\Save\\Docs\\gone.txt", "x");
    clean("C:\\Docs", "F:\\Save", {lineRoots("D:\\Docs", "F:\\Save\\", Layout::normal)});
    EXPECT_TRUE(kept("F:\\Save\\Docs\\d.txt"));
    EXPECT_TRUE(kept("F:\\Save\\Docs\\gone.txt"));
    EXPECT_THAT(window.journal, ElementsAre(testing::HasSubstr("F:\\Save\\Docs")));
}

TEST_F(ExcessFiles, LinksAreNotEntered) {
    pair("a.txt");
    disk().file("D:\\Elsewhere\\precious.txt", "p");
    disk().link("F:\\Save\\Docs\\Link", "D:\\Elsewhere");
    clean();
    EXPECT_TRUE(kept("D:\\Elsewhere\\precious.txt"));
}

TEST_F(ExcessFiles, ACopyThatIsItselfALinkIsNotCleaned) {
    disk().file("C:\\Docs\\a.txt", "a");
    disk().file("D:\\Elsewhere\\precious.txt", "p");
    disk().directory("F:\\Save");
    disk().link("F:\\Save\\Docs", "D:\\Elsewhere");
    clean();
    EXPECT_TRUE(kept("D:\\Elsewhere\\precious.txt"));
}

TEST_F(ExcessFiles, ALineWhoseTargetHoldsItsSourceIsNotCleaned) {
    disk().file("C:\\Data\\Docs\\Docs\\a.txt", "a");
    disk().file("C:\\Data\\Docs\\b.txt", "b");
    clean("C:\\Data\\Docs\\Docs", "C:\\Data");
    EXPECT_TRUE(kept("C:\\Data\\Docs\\b.txt"));
    EXPECT_EQ(statistics.filesDeleted, 0);
}

TEST_F(ExcessFiles, AFailedDeletionCountsAndIsNotReported) {
    pair("a.txt");
    disk().file("F:\\Save\\Docs\\ro.txt", "x", MemoryDisk::defaultTime, attribute::readOnly);
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\ro.txt"));
    EXPECT_EQ(statistics.filesDeleted, 1);
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(ExcessFiles, TheReferenceIsNeverWrittenTo) {
    pair("a.txt");
    disk().file("F:\\Save\\Docs\\Sub\\b.txt", "b");
    memory.files().clearCalls();
    clean();
    using testing::StartsWith;
    const std::string certificate = "F:\\Save\\Docs\\.~coffrelune-";
    EXPECT_THAT(memory.files().writes(), ElementsAre("removeLeftovers F:\\Save\\Docs\\",
                                                     "removeLeftovers F:\\Save\\Docs\\Sub\\",
                                                     StartsWith("writeWhole " + certificate),
                                                     StartsWith("setAttributes " + certificate),
                                                     "removeFile F:\\Save\\Docs\\Sub\\b.txt"));
}

TEST_F(ExcessFiles, AnInterruptionEndsTheWalk) {
    pair("a.txt");
    disk().file("F:\\Save\\Docs\\x.txt", "x");
    disk().file("F:\\Save\\Docs\\y.txt", "y");
    window.onEvents = [&] { control.interruptionRequested = statistics.filesDeleted == 1; };
    clean();
    EXPECT_FALSE(kept("F:\\Save\\Docs\\x.txt"));
    EXPECT_TRUE(kept("F:\\Save\\Docs\\y.txt"));
}

TEST_F(ExcessFiles, AReferenceWithoutAnyFileDeletesNothing) {
    disk().directory("C:\\Docs\\Sub");
    disk().file("F:\\Save\\Docs\\Sub\\a.txt", "the only copy");
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\Sub\\a.txt"));
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_FALSE(control.interruptionRequested);
    EXPECT_THAT(window.journal, ElementsAre(testing::HasSubstr("ne contient aucun fichier"),
                                            "Erreur: 2 - Fichier: C:\\Docs"));
}

TEST_F(ExcessFiles, TwoTreesWithoutFilesAreNoTrouble) {
    disk().directory("C:\\Docs\\Sub");
    disk().directory("F:\\Save\\Docs\\Sub");
    clean();
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(ExcessFiles, TheReferenceInsideTheCleanedTreeIsNotEntered) {
    disk().file("C:\\Data\\a.txt", "a");
    disk().file("C:\\Data\\Backup\\Data\\a.txt", "a");
    disk().file("C:\\Data\\Backup\\Data\\only.txt", "only in the backup");
    cleanBack("C:\\Data", "C:\\Data\\Backup");
    EXPECT_TRUE(kept("C:\\Data\\Backup\\Data\\only.txt"));
    EXPECT_TRUE(kept("C:\\Data\\Backup\\Data\\a.txt"));
}

TEST_F(ExcessFiles, AFileWhoseCounterpartCannotBeReadStays) {
    pair("same.txt");
    disk().file("C:\\Docs\\a.txt", "new", fileTimeAt(2024, 5, 1));
    disk().file("F:\\Save\\Docs\\a.txt", "old", fileTimeAt(2024, 4, 1));
    disk().setUnreadable("C:\\Docs\\a.txt");
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\a.txt"));
}

TEST_F(ExcessFiles, AFileWhoseCounterpartIsEmptyStays) {
    pair("same.txt");
    disk().file("C:\\Docs\\a.txt", "", fileTimeAt(2024, 5, 1));
    disk().file("F:\\Save\\Docs\\a.txt", "a day of work", fileTimeAt(2024, 4, 1));
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\a.txt"));
}

TEST_F(ExcessFiles, AFileThatDiffersStaysWhileTheUserIsToBeAsked) {
    control.askBeforeReplacing = true;
    pair("same.txt");
    disk().file("C:\\Docs\\a.txt", "new", fileTimeAt(2024, 5, 1));
    disk().file("F:\\Save\\Docs\\a.txt", "old", fileTimeAt(2024, 4, 1));
    disk().file("F:\\Save\\Docs\\gone.txt", "x");
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\a.txt"));
    EXPECT_FALSE(kept("F:\\Save\\Docs\\gone.txt"));
}

TEST_F(ExcessFiles, ACopyInsideAnotherLinesCopyIsNotCleaned) {
    disk().file("C:\\X\\Docs\\a.txt", "a");
    disk().file("F:\\Save\\Data\\Docs\\a.txt", "a");
    disk().file("F:\\Save\\Data\\Docs\\one.txt", "of the other line");
    clean("C:\\X\\Docs", "F:\\Save\\Data", {lineRoots("C:\\Data", "F:\\Save", Layout::normal)});
    EXPECT_TRUE(kept("F:\\Save\\Data\\Docs\\one.txt"));
}

TEST_F(ExcessFiles, TheProgramsOwnFilesAreLeftAlone) {
    disk().file("F:\\Save\\Coffrelune\\a.txt", "a");
    disk().file("H:\\Coffrelune\\a.txt", "a");
    disk().file("H:\\Coffrelune\\Coffrelune.ini", "[Position]");
    cleanBack("H:\\Coffrelune", "F:\\Save");
    EXPECT_TRUE(kept("H:\\Coffrelune\\Coffrelune.ini"));
}

TEST_F(ExcessFiles, ASingleFileLineHasNothingToClean) {
    disk().file("C:\\Docs\\a.txt", "a");
    disk().file("F:\\Save\\a.txt", "a");
    disk().file("F:\\Save\\b.txt", "b");
    clean("C:\\Docs\\a.txt", "F:\\Save");
    EXPECT_TRUE(kept("F:\\Save\\a.txt"));
    EXPECT_TRUE(kept("F:\\Save\\b.txt"));
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(ExcessFiles, AnEmptyDirectoryMakesRoomForTheCopyOfASingleFile) {
    disk().directory("F:\\Save");
    makeTree("C:\\Docs\\a.txt", "F:\\Save");
    ASSERT_TRUE(kept("F:\\Save\\a.txt")) << "made for what was missing";
    letGo();
    disk().file("C:\\Docs\\a.txt", "a");
    clean("C:\\Docs\\a.txt", "F:\\Save");
    EXPECT_FALSE(kept("F:\\Save\\a.txt"));
    act("C:\\Docs\\a.txt", "F:\\Save");
    EXPECT_EQ(disk().content("F:\\Save\\a.txt"), "a");
}

TEST_F(ExcessFiles, ADirectoryThatHoldsSomethingStaysInTheWayOfASingleFile) {
    disk().file("C:\\Docs\\a.txt", "a");
    disk().file("F:\\Save\\a.txt\\b", "b");
    clean("C:\\Docs\\a.txt", "F:\\Save");
    EXPECT_TRUE(kept("F:\\Save\\a.txt\\b"));
}

TEST_F(ExcessFiles, ARestoreKeepsTheSystemDirectoryOfTheComputerThatWasSaved) {
    memory.drives().setWindowsDirectory("C:\\Docs\\WINDOWS");
    pair("a.txt");
    disk().file("C:\\Docs\\WINDOWS\\system.dll", "x");
    EXPECT_TRUE(run("C:\\Docs", "F:\\Save"));
    EXPECT_EQ(certificate("F:\\Save\\Docs").exclusions,
              (ExclusionList{ExclusionMode::listed, {"WINDOWS"}}));
    memory.drives().setWindowsDirectory("E:\\WINDOWS");
    disk().file("C:\\Docs\\new.txt", "n");
    system.options.SynchroCopie = -1;
    EXPECT_TRUE(restore("C:\\Docs", "F:\\Save"));
    EXPECT_FALSE(kept("C:\\Docs\\new.txt"));
    EXPECT_TRUE(kept("C:\\Docs\\WINDOWS\\system.dll"));
}

// ---- what cannot be listed ----------------------------------------------------------------------

TEST_F(ExcessFiles, AListingOfTheCopyThatBreaksOffIsAnError) {
    system.options.ContinueOnError = -1;
    pair("same.txt");
    disk().file("F:\\Save\\Docs\\Sub\\gone.txt", "x");
    faulty.fail("next", "F:\\Save\\Docs\\Sub\\", error_number::ioDevice);
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\Sub\\gone.txt"));
    EXPECT_THAT(window.journal, testing::Contains("Erreur: 1117 - Fichier: F:\\Save\\Docs\\Sub"));
    EXPECT_EQ(statistics.errorCount, 1);
}

TEST_F(ExcessFiles, ATreeThatCannotBeOpenedKeepsItsFilesAndIsAnError) {
    disk().file("C:\\Docs\\a.txt", "a");
    disk().file("F:\\Save\\Docs\\a.txt", "a");
    disk().file("F:\\Save\\Docs\\gone", "x");
    faulty.fail("openDirectory", "F:\\Save\\Docs", error_number::ioDevice);
    clean("C:\\Docs", "F:\\Save");
    EXPECT_TRUE(kept("F:\\Save\\Docs\\gone"));
    EXPECT_GT(faulty.failureCount(), 0U);
    EXPECT_EQ(statistics.errorCount, 1);
}

TEST_F(ExcessFiles, AReferenceThatCannotBeListedKeepsItsFilesAndIsAnError) {
    system.options.ContinueOnError = -1;
    pair("same.txt");
    pair("Sub\\same.txt");
    disk().file("F:\\Save\\Docs\\Sub\\gone.txt", "x");
    faulty.fail("next", "C:\\Docs\\Sub\\", error_number::ioDevice);
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\Sub\\gone.txt"));
    EXPECT_THAT(window.journal, testing::Contains("Erreur: 1117 - Fichier: C:\\Docs\\Sub"));
    EXPECT_EQ(statistics.errorCount, 1);
}

TEST_F(ExcessFiles, SubdirectoriesThatCannotBeListedAreAnError) {
    system.options.ContinueOnError = -1;
    pair("same.txt");
    const std::string gone = "F:\\Save\\Docs\\Sub\\Deep\\gone.txt";
    const auto isListing = [](const std::string& call) {
        return call == "openDirectory F:\\Save\\Docs\\Sub\\";
    };
    // The first run opens the certificate; those after it make the same calls as each other.
    std::vector<std::string> calls;
    for (int run = 0; run < 2; ++run) {
        disk().file(gone, "x");
        faulty.restart();
        clean();
        calls = faulty.calls();
    }
    const auto last = std::find_if(calls.rbegin(), calls.rend(), isListing);
    ASSERT_NE(last, calls.rend());
    disk().file(gone, "x");
    faulty.restart();
    faulty.failCall(static_cast<std::uint64_t>(calls.rend() - last), error_number::ioDevice);
    clean();
    ASSERT_TRUE(isListing(faulty.calls().at(static_cast<std::size_t>(calls.rend() - last) - 1)));
    EXPECT_TRUE(kept(gone));
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_THAT(window.journal, testing::Contains("Erreur: 1117 - Fichier: F:\\Save\\Docs\\Sub"));
}

/// Where names have to be told apart: files and directories listed in another case, and some that
/// went.
class NamesInAnyCase : public ExcessFiles, public testing::WithParamInterface<bool> {
  protected:
    NamesInAnyCase() {
        system.options.ContinueOnError = -1;
        disk().volume("F:\\").foldsCase = GetParam();
    }
    /// With the call of that number failing, from 1; 0 fails none.
    void cleanWhatHasGone(std::size_t failing) {
        for (const char* name : {"same.txt", "Plan.txt", "Sub\\same.txt"}) {
            disk().file(std::string("C:\\Docs\\") + name, "same");
        }
        for (const char* name : {"same.txt", "PLAN.TXT", "SUB\\same.txt"}) {
            disk().file(std::string("F:\\Save\\Docs\\") + name, "same");
        }
        for (const std::string& path : gone()) disk().file(path, "x");
        startAgain();
        window.journal.clear();
        faulty.restart();
        if (failing != 0) faulty.failCall(failing, error_number::ioDevice);
        clean();
    }
    static std::vector<std::string> gone() {
        const std::string copy = "F:\\Save\\Docs\\";
        return {copy + "gone.txt", copy + "SUB\\gone.txt", copy + "Old\\gone.txt"};
    }
    bool hasTold() const {
        return std::any_of(window.journal.begin(), window.journal.end(), [](const auto& line) {
            return line.starts_with("Erreur:") || line.starts_with("Non effacé");
        });
    }
};

TEST_P(NamesInAnyCase, AnyCallThatFailsIsToldWhereAFileIsKeptForIt) {
    // The first run opens the certificate; those after it make the same calls as each other.
    for (int run = 0; run < 2; ++run) {
        cleanWhatHasGone(0);
    }
    for (const std::string& path : gone()) ASSERT_FALSE(kept(path)) << path;
    const std::vector<std::string> calls = faulty.calls();
    for (std::size_t number = 1; number <= calls.size(); ++number) {
        cleanWhatHasGone(number);
        EXPECT_TRUE(kept("F:\\Save\\Docs\\same.txt")) << calls[number - 1];
        for (const char* name : {"PLAN.TXT", "SUB\\same.txt"}) {  // excess where case is told
            const std::string path = std::string("F:\\Save\\Docs\\") + name;
            EXPECT_TRUE(!GetParam() || kept(path)) << calls[number - 1];
        }
        const std::vector<std::string> paths = gone();
        if (std::none_of(paths.begin(), paths.end(), [&](const auto& one) { return kept(one); }))
            continue;
        EXPECT_TRUE(hasTold()) << number << " " << calls[number - 1];
    }
}

INSTANTIATE_TEST_SUITE_P(, NamesInAnyCase, testing::Bool());

TEST_F(ExcessFiles, ANameThatTheCopyCannotBearKeepsItsFilesAndIsNoError) {
    pair("same.txt");
    disk().file("C:\\Docs\\long.txt", "x");
    disk().file("F:\\Save\\Docs\\gone.txt", "x");
    faulty.fail("lookUp", "F:\\Save\\Docs\\long.txt", error_number::nameTooLong);
    clean();
    EXPECT_TRUE(kept("F:\\Save\\Docs\\gone.txt"));
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_THAT(window.journal, testing::Contains(testing::HasSubstr("certains noms autrement")));
}

}  // namespace
}  // namespace coffrelune
