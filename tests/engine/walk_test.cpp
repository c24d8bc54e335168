// The order and the counts of the walk, and the roots of a line.
#include <algorithm>

#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(Engine, HandlesFilesBeforeSubdirectoriesInTheOrderOfTheSystem) {
    for (const char* path : {"C:\\Docs\\B\\b2", "C:\\Docs\\z", "C:\\Docs\\A\\Deep\\d",
                             "C:\\Docs\\B\\b1", "C:\\Docs\\A\\a", "C:\\Docs\\c"}) {
        disk().file(path, "x");
    }
    act("C:\\Docs", "F:\\");
    EXPECT_THAT(memory.files().calls("copyFile"),
                ElementsAre("copyFile C:\\Docs\\z F:\\Docs\\z", "copyFile C:\\Docs\\c F:\\Docs\\c",
                            "copyFile C:\\Docs\\B\\b2 F:\\Docs\\B\\b2",
                            "copyFile C:\\Docs\\B\\b1 F:\\Docs\\B\\b1",
                            "copyFile C:\\Docs\\A\\a F:\\Docs\\A\\a",
                            "copyFile C:\\Docs\\A\\Deep\\d F:\\Docs\\A\\Deep\\d"));
}

TEST_F(Engine, CountsDirectoriesReadAndCreated) {
    disk().file("C:\\Docs\\A\\a", "x");
    disk().directory("C:\\Docs\\B");
    makeTree("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.directoriesRead, 3);
    EXPECT_EQ(statistics.directoriesCreated, 3);
    EXPECT_THAT(window.counts, ElementsAre("1 répertoire(s) lu(s), 1 répertoire(s) créé(s)",
                                           "2 répertoire(s) lu(s), 2 répertoire(s) créé(s)",
                                           "3 répertoire(s) lu(s), 3 répertoire(s) créé(s)"));
    EXPECT_THAT(list("F:\\"), ElementsAre("F:\\Docs", "F:\\Docs\\A", "F:\\Docs\\B"));
}

TEST_F(Engine, CreatesNothingInASecondTreePass) {
    disk().file("C:\\Docs\\A\\a", "x");
    makeTree("C:\\Docs", "F:\\");
    statistics.directoriesRead = statistics.directoriesCreated = 0;
    makeTree("C:\\Docs", "F:\\");
    EXPECT_EQ(window.counts.back(), "2 répertoire(s) lu(s), 0 répertoire(s) créé(s)");
}

TEST_F(Engine, LooksForNothingInADirectoryThatItHasJustMade) {
    disk().file("C:\\Docs\\A\\B\\b", "x");
    makeTree("C:\\Docs", "F:\\");
    const std::vector<std::string>& calls = faulty.calls();
    for (const char* path : {"F:\\Docs\\A\\", "F:\\Docs\\A\\B\\"}) {
        EXPECT_EQ(std::count(calls.begin(), calls.end(), std::string("openDirectory ") + path), 1);
    }
    EXPECT_EQ(statistics.directoriesCreated, 3);
}

TEST_F(Engine, EntersADirectoryThatSomebodyMadeMeanwhile) {
    disk().file("C:\\Docs\\A\\a", "x");
    window.onEvents = [&] {
        if (disk().exists("F:\\Docs")) disk().file("F:\\Docs\\A\\mine", "y");
    };
    makeTree("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.directoriesCreated, 1);
    act("C:\\Docs", "F:\\");
    EXPECT_EQ(disk().content("F:\\Docs\\A\\a"), "x");
    EXPECT_EQ(disk().content("F:\\Docs\\A\\mine"), "y");
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(Engine, TellsOfADirectoryThatItHasMadeAndCannotEnter) {
    disk().file("C:\\Docs\\A\\a", "x");
    faulty.fail("openDirectory", "F:\\Docs\\A\\", error_number::ioDevice, 1);
    act("C:\\Docs", "F:\\");
    EXPECT_TRUE(disk().exists("F:\\Docs\\A"));
    EXPECT_FALSE(disk().exists("F:\\Docs\\A\\a"));
    EXPECT_EQ(window.journal, std::vector<std::string>{"Erreur: 1117 - Fichier: C:\\Docs\\A"});
}

TEST_F(Engine, CreatesMissingDirectoriesWhenItCopies) {
    disk().file("C:\\Docs\\A\\a", "x");
    act("C:\\Docs", "F:\\Save");
    EXPECT_TRUE(control.interruptionRequested) << "the destination itself must exist";
    control.interruptionRequested = false;
    disk().directory("F:\\Save");
    act("C:\\Docs", "F:\\Save");
    EXPECT_EQ(statistics.directoriesCreated, 2);
    EXPECT_EQ(disk().content("F:\\Save\\Docs\\A\\a"), "x");
    EXPECT_THAT(window.counts, IsEmpty());
}

TEST_F(Engine, WritesNothingInAnAnalysisOrAComparison) {
    disk().file("C:\\Docs\\A\\a", "x");
    analyse("C:\\Docs", "F:\\");
    system.operationKind = OperationKind::comparison;
    analyse("C:\\Docs", "F:\\");
    EXPECT_THAT(memory.files().writes(), IsEmpty());
    EXPECT_EQ(statistics.directoriesRead, 4);
    EXPECT_THAT(list("F:\\"), IsEmpty());
}

TEST_F(Engine, LeavesOutWhatTheLineExcludes) {
    for (const char* path : {"C:\\Docs\\Photos\\p", "C:\\Docs\\Docs\\Photos\\q",
                             "C:\\Docs\\Recycled\\r", "C:\\Docs\\recycled\\s", "C:\\Docs\\t"}) {
        disk().file(path, "x");
    }
    exclusions = {ExclusionMode::listed, {"\\Photos"}};
    run("C:\\Docs", "F:\\");
    EXPECT_FALSE(disk().exists("F:\\Docs\\Photos"));
    EXPECT_TRUE(disk().exists("F:\\Docs\\Docs\\Photos\\q"));
    EXPECT_FALSE(disk().exists("F:\\Docs\\Recycled"));
    EXPECT_TRUE(disk().exists("F:\\Docs\\recycled\\s"));
}

TEST_F(Engine, TakesTheFilesOfTheSourceAloneWithoutItsSubdirectories) {
    disk().file("C:\\Docs\\a", "x");
    disk().file("C:\\Docs\\Sub\\b", "x");
    exclusions.mode = ExclusionMode::all;
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(list("F:\\"), ElementsAre("F:\\Docs", "F:\\Docs\\a"));
}

TEST_F(Engine, NeverEntersTheDirectoryOfTheSystem) {
    disk().file("C:\\WINDOWS\\explorer.exe", "x");
    disk().file("C:\\a", "x");
    memory.drives().setWindowsDirectory("C:\\WINDOWS");
    run("C:\\", "F:\\");
    EXPECT_THAT(list("F:\\"), ElementsAre("F:\\C", "F:\\C\\a"));
}

// ---- roots
// ---------------------------------------------------------------------------------------

TEST_F(Engine, CopiesADriveRootIntoItsLetter) {
    disk().file("E:\\Sub\\a", "x");
    disk().directory("F:\\Save");
    run("E:\\", "F:\\Save");
    EXPECT_THAT(list("F:\\"),
                ElementsAre("F:\\Save", "F:\\Save\\E", "F:\\Save\\E\\Sub", "F:\\Save\\E\\Sub\\a"));
    EXPECT_EQ(statistics.directoriesCreated, 2);
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(Engine, CopiesAShare) {
    disk().file("\\\\nas\\photos\\a", "x");
    run("\\\\nas\\photos", "F:\\");
    EXPECT_EQ(disk().content("F:\\photos\\a"), "x");
}

TEST_F(Engine, TakesAnEmptyDriveForAnEmptyDirectory) {
    disk().volume("E:\\");
    disk().file("C:\\Docs\\a", "x");
    run("E:\\", "F:\\");
    EXPECT_FALSE(control.interruptionRequested);
    EXPECT_TRUE(disk().exists("F:\\E"));
    run("C:\\Docs", "E:\\");
    EXPECT_EQ(disk().content("E:\\Docs\\a"), "x");
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_THAT(window.criticals, IsEmpty());
}

TEST_F(Engine, TakesAnEmptyDirectoryForNoMissingOne) {
    disk().directory("C:\\Docs");
    disk().directory("F:\\Save");
    act("C:\\Docs", "F:\\Save");
    EXPECT_FALSE(control.interruptionRequested);
    EXPECT_TRUE(disk().exists("F:\\Save\\Docs"));
}

TEST_F(Engine, StopsWithoutADestination) {
    disk().file("C:\\Docs\\a", "x");
    for (const char* destination : {"G:\\", "G:\\Save", "F:\\Save", "\\\\nas\\photos", "G:"}) {
        for (const Pass one : {Pass::tree, Pass::analysis, Pass::copy}) {
            control.interruptionRequested = false;
            control.lastErrorNumber = 0;
            pass(lineRoots("C:\\Docs", destination, Layout::normal), one);
            EXPECT_TRUE(control.interruptionRequested) << destination;
            EXPECT_EQ(control.lastErrorNumber, error_number::deviceDoesNotExist) << destination;
        }
    }
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_THAT(memory.files().writes(), IsEmpty());
}

TEST_F(Engine, MissesADriveThatIsUnplugged) {
    disk().file("C:\\Docs\\a", "x");
    disk().volume("F:\\").present = false;
    run("C:\\Docs", "F:");
    EXPECT_EQ(control.lastErrorNumber, error_number::deviceDoesNotExist);
}

TEST_F(Engine, TakesADriveWithoutItsBackslashForItsRoot) {
    disk().file("C:\\a", "x");
    run("C:", "F:");
    EXPECT_EQ(disk().content("F:\\C\\a"), "x");
    EXPECT_THAT(window.sources, testing::Each("C:\\"));
}

TEST_F(Engine, FollowsALinkAtTheRootsOfALine) {
    disk().file("C:\\Vrai\\a", "x");
    disk().link("C:\\Docs", "C:\\Vrai");
    disk().directory("F:\\Ailleurs");
    disk().link("F:\\Docs", "F:\\Ailleurs");
    run("C:\\Docs", "F:\\");
    EXPECT_EQ(disk().content("F:\\Ailleurs\\a"), "x");
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(Engine, FollowsALinkThatIsASingleFile) {
    disk().file("C:\\vrai.txt", "text");
    disk().link("C:\\a.txt", "C:\\vrai.txt");
    run("C:\\a.txt", "F:\\");
    EXPECT_EQ(disk().content("F:\\a.txt"), "text");
    EXPECT_FALSE(disk().find("F:\\a.txt")->isLink());
}

TEST_F(Engine, CopiesALinkBelowTheRootAsALink) {
    disk().file("C:\\Docs\\a", "x");
    disk().directory("C:\\Autre");
    disk().link("C:\\Docs\\Vers", "C:\\Autre");
    disk().link("C:\\Docs\\Rond", "C:\\Docs");
    run("C:\\Docs", "F:\\");
    ASSERT_NE(disk().find("F:\\Docs\\Vers"), nullptr);
    EXPECT_TRUE(disk().find("F:\\Docs\\Vers")->isLink());
    EXPECT_TRUE(disk().find("F:\\Docs\\Rond")->isLink());
}

TEST_F(Engine, RemovesWhatAnInterruptedCopyLeft) {
    disk().file("C:\\Docs\\a", "x");
    disk().directory("F:\\Docs");
    disk().leftover("F:\\Docs");
    run("C:\\Docs", "F:\\");
    EXPECT_THAT(list("F:\\"), ElementsAre("F:\\Docs", "F:\\Docs\\a"));
}

TEST_F(Engine, LetsEventsRunAfterEachEntry) {
    for (const char* name : {"a", "b", "c"}) disk().file(std::string("C:\\Docs\\") + name, "x");
    disk().directory("C:\\Docs\\Sub");
    analyse("C:\\Docs", "F:\\");
    EXPECT_EQ(window.events, 4);
}

TEST_F(Engine, LeadsARestoreBackToTheSource) {
    disk().file("F:\\Save\\Docs\\Sub\\a", "x");
    disk().volume("C:\\");
    const LineRoots roots = lineRoots("C:\\Data\\Docs", "F:\\Save", Layout::reversed);
    system.operationKind = OperationKind::restore;
    pass(roots, Pass::copy);
    EXPECT_EQ(disk().content("C:\\Data\\Docs\\Sub\\a"), "x");
    EXPECT_FALSE(disk().exists("C:\\Data\\Docs\\Docs"));
}

}  // namespace
}  // namespace coffrelune
