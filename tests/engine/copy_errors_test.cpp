#include "engine/copy_errors.h"

#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

class CopyErrorsTest : public testing::Test, protected EngineBench {};

TEST_F(CopyErrorsTest, NamesTheNumberAndTheFile) {
    errors.failed(error_number::sharingViolation, "D:\\Mes documents\\a.doc",
                  "D:\\Mes documents\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 32 - Fichier: D:\\Mes documents\\a.doc"));
    EXPECT_EQ(statistics.errorCount, 1);
    ASSERT_EQ(statistics.errors.size(), 1U);
    EXPECT_EQ(statistics.errors[0].number, 32U);
    EXPECT_EQ(statistics.errors[0].path, "D:\\Mes documents\\a.doc");
}

TEST_F(CopyErrorsTest, ShowsTheFirstErrorBeforeItsLine) {
    system.options.ContinueOnError = -1;
    errors.failed(5, "C:\\a", "C:\\");
    errors.failed(5, "C:\\b", "C:\\");
    EXPECT_THAT(window.order, ElementsAre("first error", "Erreur: 5 - Fichier: C:\\a",
                                          "Erreur: 5 - Fichier: C:\\b"));
    EXPECT_EQ(window.events, 2);
}

TEST_F(CopyErrorsTest, StopsTheRunWithItsNumber) {
    errors.failed(error_number::diskFull, "C:\\Docs\\a", "C:\\Docs\\");
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_EQ(control.lastErrorNumber, error_number::diskFull);
    EXPECT_EQ(control.sharingPath, "");
}

TEST_F(CopyErrorsTest, KeepsTheDirectoryOfAFileInUse) {
    for (const auto number : {error_number::sharingViolation, error_number::lockViolation}) {
        control.sharingPath.clear();
        errors.failed(number, "C:\\Docs\\a", "C:\\Docs\\");
        EXPECT_EQ(control.sharingPath, "C:\\Docs\\") << number;
        EXPECT_EQ(control.lastErrorNumber, number);
    }
}

TEST_F(CopyErrorsTest, GoesOnWhenTheUserChoseSo) {
    system.options.ContinueOnError = -1;
    errors.failed(error_number::sharingViolation, "C:\\Docs\\a", "C:\\Docs\\");
    EXPECT_FALSE(control.interruptionRequested);
    EXPECT_EQ(control.lastErrorNumber, 0U);
    EXPECT_EQ(control.sharingPath, "");
    EXPECT_EQ(statistics.errorCount, 1);
}

TEST_F(CopyErrorsTest, NamesADirectoryOncePerRun) {
    errors.unread(5, "C:\\Docs");
    errors.unread(5, "C:\\Docs\\");
    errors.failedOnce(5, "C:\\Docs\\");
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_FALSE(control.interruptionRequested);
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 5 - Fichier: C:\\Docs"));
}

TEST_F(CopyErrorsTest, NamesADriveRootInFull) {
    errors.failedOnce(21, "E:");
    errors.failedOnce(21, "E:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 21 - Fichier: E:\\"));
}

TEST_F(CopyErrorsTest, StopsTheRunAtTheFirstCountOfADirectory) {
    errors.failedOnce(error_number::sharingViolation, "C:\\Docs");
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_EQ(control.lastErrorNumber, 32U);
    EXPECT_EQ(control.sharingPath, "C:\\Docs");
}

TEST_F(CopyErrorsTest, NamesWhatALineCannotWriteOncePerLine) {
    system.options.ContinueOnError = -1;
    errors.startLine(1);
    errors.failedInLine(19, "C:\\Docs");
    errors.failedInLine(19, "C:\\Docs\\");
    EXPECT_TRUE(errors.hasFailedInLine("C:\\Docs\\"));
    errors.startLine(2);
    EXPECT_FALSE(errors.hasFailedInLine("C:\\Docs\\"));
    errors.failedInLine(112, "C:\\Docs");
    EXPECT_THAT(window.journal,
                ElementsAre("Erreur: 19 - Fichier: C:\\Docs", "Erreur: 112 - Fichier: C:\\Docs"));
    ASSERT_EQ(statistics.errors.size(), 2U);
    EXPECT_EQ(statistics.errors[0].line, 1);
    EXPECT_EQ(statistics.errors[1].line, 2);
}

// ---- what an error says of its line

TEST_F(CopyErrorsTest, MakeTheirLineIncomplete) {
    system.options.ContinueOnError = -1;
    errors.startLine(1);
    errors.failed(5, "C:\\Docs\\a", "C:\\Docs\\");
    errors.startLine(2);
    errors.failedOnce(5, "C:\\B");
    errors.startLine(3);
    errors.failedInLine(5, "C:\\C");
    errors.startLine(4);
    errors.unread(5, "C:\\D");
    for (int line = 1; line <= 4; ++line) EXPECT_TRUE(state.tally(line).incomplete) << line;
    EXPECT_FALSE(state.tally(0).incomplete);
    EXPECT_EQ(statistics.errors.size(), 4U);
}

TEST_F(CopyErrorsTest, MakeEveryLineIncompleteThatMeetsWhatWasNamedBefore) {
    for (int line = 1; line <= 2; ++line) {
        errors.startLine(line);
        errors.unread(5, "C:\\Docs\\Secret");
        EXPECT_TRUE(state.tally(line).incomplete) << line;
    }
    EXPECT_EQ(statistics.errorCount, 1);
}

TEST_F(CopyErrorsTest, TellForEachTreeWhyItsExcessFilesStayAndCountTheCauseOnce) {
    errors.keptExcess("Conservés dans F:\\Docs : motif.", 13, "C:\\Docs");
    errors.keptExcess("Conservés dans G:\\Docs : motif.", 13, "C:\\Docs\\");
    EXPECT_THAT(window.journal,
                ElementsAre("Conservés dans F:\\Docs : motif.", "Erreur: 13 - Fichier: C:\\Docs",
                            "Conservés dans G:\\Docs : motif."));
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_FALSE(state.tally(0).incomplete) << "what is copied is complete all the same";
    EXPECT_FALSE(control.interruptionRequested);
}

TEST_F(CopyErrorsTest, RefuseALineOnceAndByItsNumber) {
    errors.startLine(2);
    errors.refused("motif.", 33, "C:\\Docs");
    errors.refused("motif.", 33, "C:\\Docs\\");
    EXPECT_THAT(window.journal,
                ElementsAre("Ligne 3 refusée : motif.", "Erreur: 33 - Fichier: C:\\Docs"));
    EXPECT_TRUE(state.tally(2).incomplete);
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_EQ(control.sharingPath, "C:\\Docs");
}

// ---- through a run
// -------------------------------------------------------------------------------

class FailingFiles : public Engine {
  protected:
    FailingFiles() {
        for (const char* name : {"a", "b", "c"}) {
            disk().file(std::string("C:\\Docs\\") + name, "12345");
            disk().setInUse(std::string("C:\\Docs\\") + name);
        }
    }
};

TEST_F(FailingFiles, AreThreeErrorsOfARunThatGoesOn) {
    system.options.ContinueOnError = -1;
    run("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.errorCount, 3);
    EXPECT_EQ(window.journal.size(), 3U);
    EXPECT_EQ(window.firstErrors, 1);
    EXPECT_FALSE(control.interruptionRequested);
    EXPECT_EQ(statistics.bytesDone, 15) << "a failed file counts as handled";
    EXPECT_EQ(statistics.tallies[0].files, 0U);
}

TEST_F(FailingFiles, StopTheRunAtTheFirst) {
    run("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 32 - Fichier: C:\\Docs\\a"));
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_EQ(control.lastErrorNumber, 32U);
    EXPECT_EQ(control.sharingPath, "C:\\Docs\\");
}

TEST_F(FailingFiles, AreNamedWithTheirDirectoryWhenALineIsOneFile) {
    run("C:\\Docs\\b", "F:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 32 - Fichier: C:\\Docs\\b"));
    EXPECT_EQ(control.sharingPath, "C:\\Docs\\");
    EXPECT_EQ(statistics.bytesDone, 5);
}

}  // namespace
}  // namespace coffrelune
