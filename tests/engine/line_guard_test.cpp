// Lines that would harm themselves.
#include "engine/line_guard.h"

#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

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
