#include "engine/line_roots.h"

#include <gtest/gtest.h>

#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

void expectRoots(const LineRoots& roots, const std::string& source, const std::string& destination,
                 const std::string& target) {
    EXPECT_EQ(roots.source, source);
    EXPECT_EQ(roots.destination, destination);
    EXPECT_EQ(roots.target, target);
}

LineRoots normal(const std::string& source, const std::string& destination) {
    return lineRoots(source, destination, Layout::normal);
}

LineRoots reversed(const std::string& source, const std::string& destination) {
    return lineRoots(source, destination, Layout::reversed);
}

TEST(LineRoots, AddTheLastComponentOfTheSource) {
    expectRoots(normal("C:\\Data\\Docs", "F:\\Save"), "C:\\Data\\Docs", "F:\\Save",
                "F:\\Save\\Docs");
    expectRoots(normal("C:\\Docs", "F:\\"), "C:\\Docs", "F:\\", "F:\\Docs");
    expectRoots(normal("C:\\Docs\\a.txt", "F:\\Save"), "C:\\Docs\\a.txt", "F:\\Save",
                "F:\\Save\\a.txt");
}

TEST(LineRoots, AddTheLetterOfADriveRoot) {
    expectRoots(normal("E:\\", "F:\\Save"), "E:\\", "F:\\Save", "F:\\Save\\E");
    expectRoots(normal("E:\\", "F:\\"), "E:\\", "F:\\", "F:\\E");
}

TEST(LineRoots, TakeADriveWithoutItsBackslashForItsRoot) {
    expectRoots(normal("E:", "F:"), "E:\\", "F:\\", "F:\\E");
    expectRoots(normal("C:\\Docs", "F:"), "C:\\Docs", "F:\\", "F:\\Docs");
    expectRoots(reversed("E:", "F:\\Save"), "F:\\Save\\E", "E:\\", "E:\\");
}

TEST(LineRoots, AddTheNameOfAShare) {
    expectRoots(normal("\\\\nas\\photos", "F:\\Save"), "\\\\nas\\photos", "F:\\Save",
                "F:\\Save\\photos");
    expectRoots(normal("C:\\Docs", "\\\\nas\\photos\\Save"), "C:\\Docs", "\\\\nas\\photos\\Save",
                "\\\\nas\\photos\\Save\\Docs");
}

TEST(LineRoots, JoinWithOneBackslash) {
    EXPECT_EQ(normal("C:\\Docs\\", "F:\\Save\\").target, "F:\\Save\\Docs");
    EXPECT_EQ(normal("C:\\Data\\Docs\\", "F:\\Save").target, "F:\\Save\\Docs");
}

// With an empty last component the copy would be the destination itself, where other lines lie.
TEST(LineRoots, NeverMakeTheDestinationItselfTheTarget) {
    expectRoots(normal("C:\\Docs\\\\", "F:\\Save\\\\"), "C:\\Docs\\", "F:\\Save\\",
                "F:\\Save\\Docs");
    expectRoots(normal("E:\\\\", "F:\\Save"), "E:\\", "F:\\Save", "F:\\Save\\E");
    EXPECT_EQ(normal("Docs", "F:\\Save").target, "F:\\Save\\Docs");
}

TEST(LineRoots, AreTheSameHoweverTheLineSpellsItsPlaces) {
    for (const char* source : {R"(E:\Docs\.)", R"(E:\Docs\Mai\..)", R"(E:\.\Docs)", "E:/Docs",
                               R"(E:\\Docs\\.)", R"(E:\..\Docs)", R"(\\?\E:\Docs)"}) {
        for (const char* destination :
             {R"(F:\Save)", R"(F:\Save\.)", "F:/Save", R"(F:\\Save)", R"(F:\Autre\..\Save)"}) {
            expectRoots(normal(source, destination), R"(E:\Docs)", R"(F:\Save)", R"(F:\Save\Docs)");
            expectRoots(reversed(source, destination), R"(F:\Save\Docs)", "E:\\", R"(E:\Docs)");
        }
    }
    for (const char* source : {R"(E:\.)", R"(E:\Docs\..)", R"(E:\..)", "E:/", R"(E:\\.\)"}) {
        expectRoots(normal(source, R"(F:\..)"), "E:\\", "F:\\", R"(F:\E)");
    }
    EXPECT_EQ(normal(R"(\\nas\photos\..)", "F:").target, R"(F:\photos)");
}

TEST(LineRoots, KeepTheBlanksOfNames) {
    expectRoots(normal(R"(C:\ Docs \a. )", R"(F:\Save )"), R"(C:\ Docs \a. )", R"(F:\Save )",
                R"(F:\Save \a. )");
}

TEST(LineRoots, LeadBackToTheVerySourceWhenReversed) {
    expectRoots(reversed("C:\\Data\\Docs", "F:\\Save"), "F:\\Save\\Docs", "C:\\", "C:\\Data\\Docs");
    expectRoots(reversed("E:\\", "F:\\Save"), "F:\\Save\\E", "E:\\", "E:\\");
    expectRoots(reversed("C:\\Docs\\a.txt", "F:\\Save"), "F:\\Save\\a.txt", "C:\\",
                "C:\\Docs\\a.txt");
    expectRoots(reversed("C:\\Docs\\", "F:\\Save\\"), "F:\\Save\\Docs", "C:\\", "C:\\Docs\\");
}

TEST(LineRoots, WantOnlyTheShareToExistWhenReversed) {
    expectRoots(reversed("\\\\nas\\photos\\2024\\Mai", "F:\\Save"), "F:\\Save\\Mai",
                "\\\\nas\\photos", "\\\\nas\\photos\\2024\\Mai");
    expectRoots(reversed("\\\\nas\\photos", "F:\\Save"), "F:\\Save\\photos", "\\\\nas\\photos",
                "\\\\nas\\photos");
}

TEST(CopyName, IsTheLastComponentOrTheLetter) {
    EXPECT_EQ(copyName("C:\\Data\\Docs"), "Docs");
    EXPECT_EQ(copyName("C:\\Data\\Docs\\"), "Docs");
    EXPECT_EQ(copyName("C:\\Docs"), "Docs");
    EXPECT_EQ(copyName("e:\\"), "e");
    EXPECT_EQ(copyName("E:"), "E");
    EXPECT_EQ(copyName("\\\\nas\\photos\\"), "photos");
}

TEST(Volume, IsTheDriveRootOrTheShare) {
    EXPECT_EQ(volumeOf("C:\\Data\\Docs"), "C:\\");
    EXPECT_EQ(volumeOf("C:"), "C:\\");
    EXPECT_EQ(volumeOf("\\\\nas\\photos\\2024"), "\\\\nas\\photos");
    EXPECT_EQ(volumeOf("\\\\nas\\photos\\"), "\\\\nas\\photos");
    EXPECT_EQ(volumeOf("\\\\nas\\photos"), "\\\\nas\\photos");
    EXPECT_EQ(volumeOf("\\\\nas"), "\\\\nas");
}

// ---- lines that would harm themselves ----------------------------------------------------------

TEST_F(Engine, NeverEntersItsOwnTarget) {
    disk().file("C:\\Docs\\a", "x");
    disk().directory("C:\\Docs\\Save");
    for (int times = 0; times < 3; ++times) run("C:\\Docs", "C:\\Docs\\Save");
    EXPECT_THAT(list("C:\\"),
                ElementsAre("C:\\Docs", "C:\\Docs\\a", "C:\\Docs\\Save", "C:\\Docs\\Save\\Docs",
                            "C:\\Docs\\Save\\Docs\\Save", "C:\\Docs\\Save\\Docs\\a"));
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(Engine, NeverEntersItsTargetInTheSamePassThatMadeIt) {
    disk().file("C:\\Docs\\a", "x");
    act("C:\\Docs", "C:\\Docs");
    EXPECT_THAT(list("C:\\"),
                ElementsAre("C:\\Docs", "C:\\Docs\\a", "C:\\Docs\\Docs", "C:\\Docs\\Docs\\a"));
}

// A listing need not give identities, and to ask for one costs a call.
TEST_F(Engine, AsksWhichDirectoryItMeetsOnlyWhereItCanBeTheTarget) {
    for (const char* path : {"C:\\Docs\\Save\\Docs", "C:\\Docs\\Photos", "F:\\Save\\Docs"}) {
        disk().directory(path);
    }
    disk().link("C:\\Docs\\Lien", "C:\\Docs\\Save");
    FileEntry met;
    met.attributes = attribute::directory;
    LineGuard guard(faulty);
    const auto asked = [&](const std::string& path, const FileEntry& entry) {
        faulty.restart();
        EXPECT_FALSE(guard.isTarget(path, entry));
        return faulty.callCount();
    };
    guard.watch(lineRoots("C:\\Docs", "C:\\Docs\\Save", Layout::normal));
    EXPECT_EQ(asked("C:\\Docs\\Photos", met), 1U);
    EXPECT_TRUE(guard.isTarget("C:\\Docs\\Save\\Docs", met));
    EXPECT_TRUE(guard.isTarget("C:\\Docs\\Lien\\Docs", met));

    guard.watch(lineRoots("C:\\Docs", "F:\\Save", Layout::normal));
    EXPECT_EQ(asked("C:\\Docs\\Photos", met), 0U);
    FileEntry link = met;
    link.attributes |= attribute::link;
    EXPECT_EQ(asked("C:\\Docs\\Lien", link), 1U);
    EXPECT_EQ(asked("C:\\Docs\\Lien\\Docs", met), 1U);

    // A server may show there what another one holds.
    for (const char* path : {"\\\\nas\\docs\\Photos", "F:\\Save\\docs"}) disk().directory(path);
    guard.watch(lineRoots("\\\\nas\\docs", "F:\\Save", Layout::normal));
    EXPECT_EQ(asked("\\\\nas\\docs\\Photos", met), 1U);
}

TEST_F(Engine, KnowsItsTargetUnderAnotherPath) {
    disk().file("C:\\Docs\\a", "x");
    disk().directory("C:\\Docs\\Save");
    disk().link("F:\\Lien", "C:\\Docs\\Save");
    for (int times = 0; times < 2; ++times) run("C:\\Docs", "F:\\Lien");
    EXPECT_TRUE(disk().exists("C:\\Docs\\Save\\Docs\\a"));
    EXPECT_FALSE(disk().exists("C:\\Docs\\Save\\Docs\\Save\\Docs"));
}

// ---- refused lines
// -------------------------------------------------------------------------------

/// The line is refused in every pass, named once, and nothing is written.
void expectRefused(EngineBench& bench, const std::string& source, const std::string& destination) {
    bench.system.options.ContinueOnError = -1;
    bench.makeTree(source, destination);
    bench.analyse(source, destination);
    bench.act(source, destination);
    bench.system.operationKind = OperationKind::comparison;
    bench.analyse(source, destination);
    EXPECT_EQ(bench.statistics.errorCount, 1);
    EXPECT_THAT(bench.window.journal,
                ElementsAre(HasSubstr("refusée"), "Erreur: 87 - Fichier: " + source));
    EXPECT_EQ(bench.statistics.totalBytes, 0);
    EXPECT_THAT(bench.window.comparison, IsEmpty());
    EXPECT_THAT(bench.memory.files().writes(), IsEmpty());
}

TEST_F(Engine, RefusesATargetThatIsItsSource) {
    disk().file("C:\\Data\\Docs\\a", "x");
    expectRefused(*this, "C:\\Data\\Docs", "C:\\Data");
}

TEST_F(Engine, RefusesATargetThatIsAnAncestorOfItsSource) {
    disk().file("C:\\Docs\\Plus\\Docs\\a", "x");
    expectRefused(*this, "C:\\Docs\\Plus\\Docs", "C:\\");
}

TEST_F(Engine, RefusesASingleFileThatIsItsOwnTarget) {
    disk().file("C:\\Docs\\a.txt", "x");
    expectRefused(*this, "C:\\Docs\\a.txt", "C:\\Docs");
    EXPECT_EQ(disk().content("C:\\Docs\\a.txt"), "x");
}

TEST_F(Engine, RefusesATargetThatIsItsSourceThroughALink) {
    disk().file("F:\\Save\\Docs\\a", "x");
    disk().link("C:\\Docs", "F:\\Save\\Docs");
    expectRefused(*this, "C:\\Docs", "F:\\Save");
}

TEST_F(Engine, RefusesAnAncestorThatOnlyItsIdentityTells) {
    // One place mounted twice: two spellings, one identity.
    disk().file("C:\\Data\\Docs\\Docs\\a", "x");
    disk().directory("F:\\Docs").id = disk().find("C:\\Data\\Docs")->id;
    expectRefused(*this, "C:\\Data\\Docs\\Docs", "F:\\");
}

TEST(EngineWithoutCase, RefusesItsSourceInAnotherCase) {
    EngineBench bench(MemoryDisk::Names::caseInsensitive);
    bench.disk().file("C:\\Data\\Docs\\a", "x");
    expectRefused(bench, "C:\\DATA\\docs", "C:\\Data");
}

TEST_F(Engine, StopsAtARefusedLine) {
    disk().file("C:\\Docs\\a", "x");
    run("C:\\Docs", "C:\\");
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_EQ(control.lastErrorNumber, error_number::invalidParameter);
}

TEST_F(Engine, CopiesTheSourceOfARefusedLineInAnother) {
    disk().file("C:\\Docs\\a", "x");
    system.options.ContinueOnError = -1;
    run("C:\\Docs", "C:\\", 0);
    run("C:\\Docs", "F:\\", 1);
    EXPECT_EQ(disk().content("F:\\Docs\\a"), "x");
}

TEST_F(Engine, TakesASiblingWithALongerNameForNoAncestor) {
    disk().file("C:\\Docs2\\a", "x");
    disk().directory("C:\\Docs\\Save");
    run("C:\\Docs2", "C:\\Docs\\Save");
    run("C:\\Docs", "C:\\Docs2");  // the target C:\Docs2\Docs is no ancestor of C:\Docs
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_EQ(disk().content("C:\\Docs\\Save\\Docs2\\a"), "x");
}

}  // namespace
}  // namespace coffrelune
