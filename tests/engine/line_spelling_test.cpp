// Lines whose paths hold ".", "..", "/" or doubled backslashes, as a hand-written settings file has
// them, and what must never come of them: a copy in the destination itself or beside it.
#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class SpelledLine : public Engine, public testing::WithParamInterface<const char*> {
  protected:
    SpelledLine() {
        disk().file(R"(E:\Docs\a.txt)", "a");
        disk().file(R"(E:\Docs\Mai\b.txt)", "b");
        disk().file(R"(E:\Autre\live.txt)", "live");
        disk().file(R"(F:\Photos\p.jpg)", "of nobody's line");
        disk().file(R"(F:\p.jpg)", "of nobody's line");
    }
    void cleanIt(Layout layout) { clean(lineRoots(GetParam(), "F:\\", layout)); }
};

TEST_P(SpelledLine, IsCopiedUnderItsSourcesName) {
    run(GetParam(), "F:\\");
    EXPECT_EQ(disk().content(R"(F:\Docs\a.txt)"), "a");
    EXPECT_EQ(disk().content(R"(F:\Docs\Mai\b.txt)"), "b");
    EXPECT_FALSE(disk().exists(R"(F:\a.txt)"));
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_P(SpelledLine, LosesItsOwnExcessFilesAlone) {
    run(GetParam(), "F:\\");
    disk().file(R"(F:\Docs\gone.txt)", "x");
    cleanIt(Layout::normal);
    EXPECT_FALSE(disk().exists(R"(F:\Docs\gone.txt)"));
    EXPECT_TRUE(disk().exists(R"(F:\Docs\a.txt)"));
    EXPECT_TRUE(disk().exists(R"(F:\Photos\p.jpg)"));
    EXPECT_TRUE(disk().exists(R"(F:\p.jpg)"));
}

TEST_P(SpelledLine, ComesBackToItsSourceAlone) {
    run(GetParam(), "F:\\");
    disk().remove(R"(E:\Docs\a.txt)");
    disk().file(R"(E:\Docs\later.txt)", "not in the copy");
    cleanIt(Layout::reversed);
    pass(lineRoots(GetParam(), "F:\\", Layout::reversed), Pass::copy);
    EXPECT_EQ(disk().content(R"(E:\Docs\a.txt)"), "a");
    EXPECT_FALSE(disk().exists(R"(E:\Docs\later.txt)"));
    EXPECT_EQ(disk().content(R"(E:\Autre\live.txt)"), "live");
    EXPECT_FALSE(disk().exists(R"(E:\Docs\p.jpg)"));
    EXPECT_EQ(statistics.errorCount, 0);
}

INSTANTIATE_TEST_SUITE_P(Spellings, SpelledLine,
                         testing::Values(R"(E:\Docs\.)", R"(E:\Docs\.\)", R"(E:\Docs\Mai\..)",
                                         R"(E:\..\Docs)", R"(E:\.\Docs)", "E:/Docs/.",
                                         R"(E:\\Docs\\.)", R"(E:\Autre\..\Docs\\)"));

// ---- lines that have no place for their copy
// -----------------------------------------------------------------------

class PlacelessCopy : public Engine {
  protected:
    PlacelessCopy() {
        disk().file(R"(E:\Docs\a.txt)", "a");
        disk().file(R"(F:\Photos\p.jpg)", "of nobody's line");
        disk().file(R"(F:\Save\p.jpg)", "of nobody's line");
        disk().file(R"(\\nas\..\a.txt)", "a");
        system.options.ContinueOnError = -1;
    }

    /// Neither pass of the line writes or deletes anything; the journal names it once.
    void expectRefused(const LineRoots& roots) {
        window.journal.clear();
        statistics.errorCount = 0;
        memory.files().clearCalls();
        const int line = ++lines_;
        pass(roots, Pass::tree, line);
        clean(roots, {}, line);
        pass(roots, Pass::analysis, line);
        pass(roots, Pass::copy, line);
        clean(roots, {}, line);
        EXPECT_THAT(window.journal, ElementsAre(HasSubstr("refusée"), HasSubstr("Erreur: 87")))
            << roots.copy();
        EXPECT_EQ(statistics.errorCount, 1);
        EXPECT_THAT(memory.files().writes(), IsEmpty()) << roots.copy();
        EXPECT_TRUE(disk().exists(R"(F:\Photos\p.jpg)"));
        EXPECT_TRUE(disk().exists(R"(F:\Save\p.jpg)"));
    }

  private:
    int lines_ = 0;
};

TEST_F(PlacelessCopy, IsRefusedInEveryPass) {
    const std::string docs = R"(E:\Docs)";
    const std::string save = R"(F:\Save)";
    for (const char* target : {R"(F:\Save\.)", R"(F:\Save\..)", R"(F:\Save)", R"(F:\Save\)",
                               R"(F:\Photos)", R"(F:\Save\..\Photos)", R"(F:\)", ""}) {
        expectRefused({docs, save, target, Layout::normal});
    }
}

TEST_F(PlacelessCopy, IsRefusedWhenItIsReadBack) {
    for (const char* source : {R"(F:\Save\.)", R"(F:\Save\..)", R"(F:\)", R"(F:\Save\..\Photos)"}) {
        expectRefused({source, "E:\\", R"(E:\Docs)", Layout::reversed});
    }
}

TEST_F(PlacelessCopy, IsRefusedForASourceThatHasNoName) {
    for (const char* source : {"..", ".", R"(Docs\..)", R"(\\nas\..)", "C:x\\.."}) {
        expectRefused(lineRoots(source, R"(F:\Save)", Layout::normal));
    }
}

}  // namespace
}  // namespace coffrelune
