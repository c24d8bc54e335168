// Whether an existing file may be replaced, and the line that is a single file.
#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using enum ReplacementAnswer;

const std::uint64_t old = fileTimeAt(2024, 7, 10);

class ReplacementRule : public Engine {
  protected:
    ReplacementRule() {
        for (const std::string name : {"a", "b", "c"}) {
            disk().file("C:\\Docs\\" + name, "new", old + oneSecond);
            disk().file("F:\\Docs\\" + name, "old", old);
        }
        disk().file("C:\\Docs\\d", "new", old);
        control.askBeforeReplacing = true;
    }

    void actWith(std::deque<ReplacementAnswer> answers) {
        window.answers = std::move(answers);
        act("C:\\Docs", "F:\\");
        EXPECT_THAT(window.answers, IsEmpty());
    }

    /// Contents of a, b, c and d on the destination, blank for none.
    std::vector<std::string> contents() {
        std::vector<std::string> texts;
        for (const std::string name : {"a", "b", "c", "d"}) {
            texts.push_back(disk().content("F:\\Docs\\" + name).value_or(""));
        }
        return texts;
    }
};

TEST_F(ReplacementRule, IsAskedForEachExistingFileAndNoNewOne) {
    actWith({yes, no, yes});
    EXPECT_THAT(window.questions, ElementsAre("a", "b", "c"));
    EXPECT_THAT(contents(), ElementsAre("new", "old", "new", "new"));
    EXPECT_TRUE(control.askBeforeReplacing);
    EXPECT_EQ(statistics.bytesDone, 9) << "a refused file is not done";
}

TEST_F(ReplacementRule, IsAskedWithTheFolderAndBothFiles) {
    disk().file("C:\\Docs\\a", std::string(1536, 'x'), fileTimeAt(2025, 3, 3, 8, 5, 12));
    disk().file("F:\\Docs\\a", "old", fileTimeAt(2025, 3, 3, 8, 5, 10));
    disk().file("C:\\Docs\\b", "new", fileTimeAt(2019, 12, 31, 23, 59, 58));
    actWith({no, no, no});
    ASSERT_THAT(window.questions, ElementsAre("c", "a", "b")) << "rewritten files are listed last";
    EXPECT_THAT(window.facts[1],
                ElementsAre("Dossier : F:\\Docs",
                            "Fichier en place : 3 octets, lun. 3 mars 2025 à 08:05:10",
                            "Remplacé par : 1,50 Ko (1 536 octets), lun. 3 mars 2025 à 08:05:12, "
                            "plus récent"));
    EXPECT_THAT(window.facts[2][2], testing::EndsWith("à 23:59:58, plus ancien"));
}

TEST_F(ReplacementRule, IsAskedBeforeCaptionsThatShowThisFile) {
    disk().file("C:\\Docs\\Sub\\e", "new", old + oneSecond);
    disk().file("F:\\Docs\\Sub\\e", "old", old);
    actWith({no, no, no, no});
    EXPECT_EQ(window.sources.back(), "C:\\Docs\\Sub\\");
    EXPECT_EQ(window.destinations.back(), "F:\\Docs\\Sub\\");
    EXPECT_EQ(window.files.back(), "Fichier: e");
}

TEST_F(ReplacementRule, IsAskedNoMoreAfterYesToAll) {
    actWith({no, yesToAll});
    EXPECT_THAT(window.questions, ElementsAre("a", "b"));
    EXPECT_THAT(contents(), ElementsAre("old", "new", "new", "new"));
    EXPECT_FALSE(control.askBeforeReplacing);
}

TEST_F(ReplacementRule, EndsTheRunWhenItIsCancelled) {
    actWith({yes, cancel});
    EXPECT_THAT(contents(), ElementsAre("new", "old", "old", ""));
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(ReplacementRule, IsGrantedWithoutTheQuestionWhenAskingIsOff) {
    control.askBeforeReplacing = false;
    actWith({});
    EXPECT_THAT(contents(), ElementsAre("new", "new", "new", "new"));
}

TEST_F(ReplacementRule, IsNeitherAskedNorDoneWhenExistingFilesAreKept) {
    switches.keepExisting = true;
    analyse("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.totalBytes, 3);
    actWith({});
    EXPECT_THAT(contents(), ElementsAre("old", "old", "old", "new"));
}

TEST_F(ReplacementRule, IsNotAskedInTheAnalysis) {
    analyse("C:\\Docs", "F:\\");
    EXPECT_THAT(window.questions, IsEmpty());
    EXPECT_EQ(statistics.totalBytes, 12);
}

// A look-up that failed must not pass for absence where the user may want the file kept.
TEST_F(ReplacementRule, IsAskedAlsoWhenTheFirstLookUpFailed) {
    faulty.fail("find", "F:\\Docs\\a", error_number::ioDevice);
    actWith({no, no, no});
    EXPECT_THAT(contents(), ElementsAre("old", "old", "old", "new"));
}

TEST_F(ReplacementRule, IsNotDoneWhenTheFileCannotBeLookedUp) {
    for (const bool keep : {true, false}) {
        switches.keepExisting = keep;
        control.askBeforeReplacing = false;
        system.options.RecentSeul = -1;
        system.options.ContinueOnError = -1;
        disk().file("F:\\Docs\\a", "newer", old + 2 * oneSecond);
        faulty.restart();
        faulty.fail("find", "F:\\Docs\\a", error_number::ioDevice);
        faulty.fail("lookUp", "F:\\Docs\\a", error_number::ioDevice);
        actWith({});
        EXPECT_EQ(disk().content("F:\\Docs\\a"), "newer");
        EXPECT_EQ(window.journal.back(), "Erreur: 1117 - Fichier: C:\\Docs\\a");
    }
}

// ---- a line that is a single file
// ----------------------------------------------------------------

class SingleFile : public Engine {
  protected:
    SingleFile() {
        disk().file("C:\\Docs\\a.txt", "12345", old, attribute::readOnly);
        disk().directory("F:\\Save");
    }
    void analyseIt() { analyse("C:\\Docs\\a.txt", "F:\\Save"); }
    void actOnIt() { act("C:\\Docs\\a.txt", "F:\\Save"); }
};

TEST_F(SingleFile, AddsItsSizeInTheAnalysis) {
    analyseIt();
    EXPECT_EQ(statistics.totalBytes, 5);
    EXPECT_EQ(statistics.directoriesRead, 0);
    EXPECT_THAT(memory.files().writes(), IsEmpty());
}

TEST_F(SingleFile, IsCopiedChangedOrNotAndUnasked) {
    control.askBeforeReplacing = true;
    actOnIt();
    actOnIt();
    EXPECT_EQ(memory.files().calls("copyFile").size(), 3U) << "its read-only copy needs a second";
    EXPECT_EQ(disk().content("F:\\Save\\a.txt"), "12345");
    EXPECT_EQ(disk().lastWrite("F:\\Save\\a.txt"), old);
    EXPECT_EQ(statistics.bytesDone, 10);
    EXPECT_EQ(statistics.tallies[0].files, 2U);
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(SingleFile, LosesItsReadOnlyBitWithTheOption) {
    system.options.DelReadOnly = -1;
    actOnIt();
    EXPECT_EQ(disk().attributes("F:\\Save\\a.txt"), attribute::normal);
}

TEST_F(SingleFile, IsKeptWhereExistingFilesAre) {
    switches.keepExisting = true;
    disk().file("F:\\Save\\a.txt", "old");
    analyseIt();
    actOnIt();
    EXPECT_EQ(statistics.totalBytes, 0);
    EXPECT_EQ(disk().content("F:\\Save\\a.txt"), "old");
    disk().remove("F:\\Save\\a.txt");
    actOnIt();
    EXPECT_EQ(disk().content("F:\\Save\\a.txt"), "12345");
}

TEST_F(SingleFile, IsNotCopiedWhenNobodyCanTellWhetherThereIsOneToKeep) {
    switches.keepExisting = true;
    disk().file("F:\\Save\\a.txt", "old");
    faulty.fail("lookUp", "F:\\Save\\a.txt", error_number::ioDevice);
    analyseIt();
    EXPECT_EQ(statistics.totalBytes, 0);
    EXPECT_EQ(disk().content("F:\\Save\\a.txt"), "old");
    EXPECT_EQ(statistics.errorCount, 1);
}

TEST_F(SingleFile, IsNamedWhenItCannotBeCopied) {
    system.options.ContinueOnError = -1;
    disk().setUnreadable("C:\\Docs\\a.txt");
    actOnIt();
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 5 - Fichier: C:\\Docs\\a.txt"));
    EXPECT_EQ(statistics.bytesDone, 5);
    EXPECT_EQ(statistics.tallies[0].files, 0U);
}

TEST_F(SingleFile, IsNoLineOfAComparison) {
    system.operationKind = OperationKind::comparison;
    analyseIt();
    EXPECT_THAT(window.comparison, IsEmpty());
    EXPECT_EQ(statistics.totalBytes, 5);
    EXPECT_EQ(statistics.filesToCopy, 0);
}

TEST_F(SingleFile, MovesThePercentageAsItIsCopied) {
    statistics.totalBytes = 5;
    memory.files().setChunkSize(1);
    actOnIt();
    ASSERT_EQ(window.percentages.size(), 5U);
    EXPECT_EQ(window.percentages.front().first, 20);
    EXPECT_EQ(window.percentages.back().first, 100);
}

TEST_F(SingleFile, ComesBackIntoADirectoryThatIsGone) {
    disk().file("F:\\Save\\a.txt", "saved");
    disk().remove("C:\\Docs");
    system.operationKind = OperationKind::restore;
    pass(lineRoots("C:\\Docs\\a.txt", "F:\\Save", Layout::reversed), Pass::copy);
    EXPECT_EQ(disk().content("C:\\Docs\\a.txt"), "saved");
    EXPECT_EQ(statistics.errorCount, 0);
}

}  // namespace
}  // namespace coffrelune
